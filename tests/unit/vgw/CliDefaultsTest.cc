#include <gtest/gtest.h>

#include <sstream>

#include <qor/attrlog/NboAttrLogIn.h>
#include <qor/attrlog/NboAttrLogOut.h>
#include <tests/support/Refusal.h>
#include <vgw/VgwTypes.h>

namespace {

using Vgw::CliDefaults;

TEST(CliDefaults, HoldsTheDefaultsOfTheConfiguration) {
    EXPECT_FALSE(CliDefaults::enableAgent());
    EXPECT_TRUE(CliDefaults::enableOvsdb());
    EXPECT_EQ(CliDefaults::vtepListType(), Vgw::VtepListType::sendToAny);
    EXPECT_EQ(CliDefaults::managerIp(), Kelp::IpAddr());
    EXPECT_EQ(CliDefaults::managerPort(), 6632);
    EXPECT_TRUE(CliDefaults::persistDatabase());
    EXPECT_EQ(CliDefaults::logConsole(), Vgw::OvsdbLogLevel::disabled);
    EXPECT_EQ(CliDefaults::logSyslog(), Vgw::OvsdbLogLevel::disabled);
    EXPECT_EQ(CliDefaults::logFile(), Vgw::OvsdbLogLevel::disabled);
}

// The defaults stand three times over: here, in the constructor, and in reset.
TEST(CliDefaults, AgreesWithAFreshConfiguration) {
    auto const config = Vgw::cliConfigFactory("cli");
    EXPECT_EQ(config->enableAgent(), CliDefaults::enableAgent());
    EXPECT_EQ(config->enableOvsdb(), CliDefaults::enableOvsdb());
    EXPECT_EQ(config->vtepListType(), CliDefaults::vtepListType());
    EXPECT_EQ(config->managerIp(), CliDefaults::managerIp());
    EXPECT_EQ(config->managerPort(), CliDefaults::managerPort());
    EXPECT_EQ(config->persistDatabase(), CliDefaults::persistDatabase());
    EXPECT_EQ(config->logConsole(), CliDefaults::logConsole());
    EXPECT_EQ(config->logSyslog(), CliDefaults::logSyslog());
    EXPECT_EQ(config->logFile(), CliDefaults::logFile());
}

TEST(CliDefaults, AllAreEqual) {
    EXPECT_TRUE(CliDefaults() == CliDefaults());
    EXPECT_FALSE(CliDefaults() != CliDefaults());
}

TEST(CliDefaults, TakesOneByte) { EXPECT_EQ(sizeof(CliDefaults), 1U); }

TEST(CliDefaults, PrintsTheEmptyTextWhichDoesNotReadBack) {
    EXPECT_EQ(Vgw::valueToStrep(CliDefaults()), "");
    std::ostringstream out;
    out << CliDefaults();
    EXPECT_EQ(out.str(), "");
    EXPECT_NE(refusal([] { Qor::strepToValue<CliDefaults>(""); }), "not refused");
}

TEST(CliDefaults, WrittenOutTextParses) {
    EXPECT_EQ(Qor::strepToValue<CliDefaults>("Value('Vgw::CliDefaults', ** {})"), CliDefaults());
}

TEST(CliDefaults, AnyNameIsNoSuchAttribute) {
    EXPECT_EQ(refusal([] {
                  Qor::strepToValue<CliDefaults>("Value('Vgw::CliDefaults', ** {'logFile': 0})");
              }),
              "CliDefaults has no such attribute: logFile");
    EXPECT_EQ(refusal([] { Qor::strepToValue<CliDefaults>("Value('Vgw::CliDefaults', ** {"); }),
              "premature end of value type CliDefaults");
}

TEST(CliDefaults, WireFormIsEmpty) {
    Qor::Ptr<Qor::NboAttrLog::Out> const out = Qor::make<Qor::NboAttrLog::Out>();
    out << CliDefaults();
    EXPECT_EQ(out->written(), 0U);
    auto const in = Qor::make<Qor::NboAttrLog::In>();
    EXPECT_NO_THROW(CliDefaults(in.ptr(), Qor::StreamBogon()));
    EXPECT_EQ(in->readPosition(), 0U);
}

}  // namespace
