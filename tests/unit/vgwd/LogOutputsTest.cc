#include <vgwd/agent/LogOutputs.h>

#include <gtest/gtest.h>
#include <spdlog/sinks/ostream_sink.h>

#include <algorithm>
#include <iostream>
#include <sstream>

namespace Vgwd {
namespace {

// The console alone, which writes there.
LogOutputs::Openers consoleAt(std::ostream& stream) {
    auto const none = [] { return std::make_shared<spdlog::sinks::ostream_sink_st>(std::cout); };
    return {[&] { return std::make_shared<spdlog::sinks::ostream_sink_st>(stream); }, none, none};
}

TEST(LogOutputs, NoTextBeginsALineOrSpeaksToATerminal) {
    std::ostringstream console;
    LogOutputs log(consoleAt(console));
    log.levelIs(LogDestination::console, Vgw::OvsdbLogLevel::debug);
    log.log(Ovsdb::LogLevel::info, "caf\xc3\xa9\n2026 vgwd info: in step\x1b[31m\x7f\xff");
    log.logFatal("the end\r");
    std::string const text = console.str();
    EXPECT_NE(text.find("info: caf\xc3\xa9\\x0a2026 vgwd info: in step\\x1b[31m\\x7f\\xff\n"),
              std::string::npos)
        << text;
    EXPECT_NE(text.find("the end\\x0d\n"), std::string::npos) << text;
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 2);
}

}  // namespace
}  // namespace Vgwd
