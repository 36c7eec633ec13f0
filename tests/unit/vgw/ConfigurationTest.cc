#include <gtest/gtest.h>

#include "Accessors.h"
#include "TraceLog.h"

namespace {

using Contract::AllTold;
using Contract::Recorder;
using Kelp::IpAddr;
using Vgw::CliConfig;

class Cli : public testing::Test {
  protected:
    CliConfig::Ptr cli_ = Vgw::cliConfigFactory("cli");
    Qor::Ptr<Recorder<CliConfig>> recorder_ = Qor::make<Recorder<CliConfig>>(cli_);
};

TEST_F(Cli, FactoryMakesANamedOneWithoutParent) {
    EXPECT_EQ(cli_->name(), "cli");
    EXPECT_FALSE(cli_->parent());
}

TEST_F(Cli, NewOneHasNoManagerTarget) { EXPECT_EQ(cli_->managerTarget(), ""); }

TEST_F(Cli, ManagerTargetIsMadeOfAddressAndPort) {
    cli_->managerIpIs(IpAddr("192.0.2.1"));
    EXPECT_EQ(cli_->managerTarget(), "ssl:192.0.2.1:6632");
    cli_->managerPortIs(65535);
    EXPECT_EQ(cli_->managerTarget(), "ssl:192.0.2.1:65535");
    cli_->managerPortIs(0);
    EXPECT_EQ(cli_->managerTarget(), "ssl:192.0.2.1:0");
}

TEST_F(Cli, ZeroAddressHasNoTargetWhateverThePort) {
    cli_->managerPortIs(6640);
    EXPECT_EQ(cli_->managerTarget(), "");
    cli_->managerIpIs(IpAddr("192.0.2.1"));
    cli_->managerIpIs(IpAddr());
    EXPECT_EQ(cli_->managerTarget(), "");
}

TEST_F(Cli, ManagerTargetIsTraced) {
    TraceLog log;
    static_cast<void>(cli_->managerTarget());
    TraceLines const lines = log.take("VgwTypes", "managerTarget");
    ASSERT_EQ(lines.size(), 1U);
    EXPECT_EQ(lines[0].level, 5);
    EXPECT_EQ(lines[0].text, "Qor::String Vgw::CliConfig::managerTarget() const");
}

TEST_F(Cli, ResetOfAFreshOneTellsNobody) {
    cli_->reset();
    EXPECT_EQ(recorder_->take(), AllTold());
}

TEST_F(Cli, ResetTellsOfWhatChangesAndInItsOrder) {
    cli_->logFileIs(Vgw::OvsdbLogLevel::debug);
    cli_->managerPortIs(1);
    recorder_->take();
    cli_->reset();
    EXPECT_EQ(recorder_->take(), (AllTold{{262, ""}, {267, ""}}));
    EXPECT_EQ(cli_->managerPort(), 6632);
    EXPECT_EQ(cli_->logFile(), Vgw::OvsdbLogLevel::disabled);
}

TEST_F(Cli, ResetRestoresEveryAttribute) {
    cli_->logFileIs(Vgw::OvsdbLogLevel::debug);
    cli_->logSyslogIs(Vgw::OvsdbLogLevel::error);
    cli_->logConsoleIs(Vgw::OvsdbLogLevel::warning);
    cli_->persistDatabaseIs(false);
    cli_->managerPortIs(1);
    cli_->managerIpIs(IpAddr("192.0.2.1"));
    cli_->vtepListTypeIs(Vgw::VtepListType::sendToAll);
    cli_->enableOvsdbIs(false);
    cli_->enableAgentIs(true);
    recorder_->take();
    cli_->reset();
    EXPECT_EQ(recorder_->take(), (AllTold{{258, ""},
                                          {259, ""},
                                          {260, ""},
                                          {261, ""},
                                          {262, ""},
                                          {264, ""},
                                          {265, ""},
                                          {266, ""},
                                          {267, ""}}));
    using Defaults = Vgw::CliDefaults;
    EXPECT_EQ(cli_->enableAgent(), Defaults::enableAgent());
    EXPECT_EQ(cli_->enableOvsdb(), Defaults::enableOvsdb());
    EXPECT_EQ(cli_->vtepListType(), Defaults::vtepListType());
    EXPECT_EQ(cli_->managerIp(), Defaults::managerIp());
    EXPECT_EQ(cli_->managerPort(), Defaults::managerPort());
    EXPECT_EQ(cli_->persistDatabase(), Defaults::persistDatabase());
    EXPECT_EQ(cli_->logConsole(), Defaults::logConsole());
    EXPECT_EQ(cli_->logSyslog(), Defaults::logSyslog());
    EXPECT_EQ(cli_->logFile(), Defaults::logFile());
}

TEST_F(Cli, ResetIsTraced) {
    TraceLog log;
    cli_->reset();
    TraceLines const lines = log.take("VgwTypes", "reset");
    ASSERT_EQ(lines.size(), 1U);
    EXPECT_EQ(lines[0].level, 5);
    EXPECT_EQ(lines[0].text, "void Vgw::CliConfig::reset()");
}

TEST_F(Cli, NothingIsChecked) {
    cli_->logFileIs(static_cast<Vgw::OvsdbLogLevel>(99));
    EXPECT_EQ(cli_->logFile(), 99U);
    EXPECT_EQ(recorder_->take(), (AllTold{{267, ""}}));
}

TEST(Config, NewOneHasTwoLimitsAndNoPath) {
    auto const config = Vgw::configFactory("config");
    EXPECT_EQ(config->name(), "config");
    EXPECT_EQ(config->restartSyncLimit(), 100U);
    EXPECT_EQ(config->restartSyncShort(), 10U);
    EXPECT_EQ(config->ovsdbRunDir(), "");
    EXPECT_EQ(config->ovsdbLogDir(), "");
    EXPECT_EQ(config->ovsdbCertDir(), "");
    EXPECT_EQ(config->ovsdbBackupDir(), "");
    EXPECT_EQ(config->ovsdbDataDir(), "");
    EXPECT_EQ(config->ovsdbSocketFile(), "");
    EXPECT_EQ(config->ovsdbCertFile(), "");
    EXPECT_EQ(config->ovsdbPidFile(), "");
}

TEST(Config, CurrentValueTellsNobody) {
    auto const config = Vgw::configFactory("config");
    auto const recorder = Qor::make<Recorder<Vgw::Config>>(config);
    config->ovsdbRunDirIs("");
    EXPECT_EQ(recorder->take(), AllTold());
    config->ovsdbRunDirIs("run");
    config->ovsdbRunDirIs("run");
    EXPECT_EQ(recorder->take(), (AllTold{{258, ""}}));
}

TEST(Config, TheListTypesOfConfigurationAndStatusAreUnrelated) {
    auto const cli = Vgw::cliConfigFactory("cli");
    auto const status = Vgw::statusFactory("status");
    cli->vtepListTypeIs(Vgw::VtepListType::sendToAll);
    EXPECT_EQ(status->vtepListType(), Vgw::VtepListType::sendToAny);
}

}  // namespace
