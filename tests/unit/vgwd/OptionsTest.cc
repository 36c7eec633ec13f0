#include <vgwd/agent/Options.h>

#include <gtest/gtest.h>

#include <vector>

namespace Vgwd {
namespace {

using Vgw::OvsdbLogLevel;

std::optional<Options> parse(std::vector<char const*> words, int* exitCode = nullptr) {
    words.insert(words.begin(), "vgwd");
    int code = 0;
    auto const options = parseOptions(static_cast<int>(words.size()), words.data(), code);
    if (exitCode != nullptr) *exitCode = code;
    return options;
}

TEST(Options, WithoutWordsTheConsoleIsInformedAndNothingElse) {
    auto const options = parse({});
    ASSERT_TRUE(options);
    EXPECT_EQ(options->logConsole, OvsdbLogLevel::information);
    EXPECT_EQ(options->logSyslog, OvsdbLogLevel::disabled);
    EXPECT_EQ(options->fileLevel(), OvsdbLogLevel::disabled);
    EXPECT_FALSE(options->disabled);
}

TEST(Options, ALogFileFollowsTheConsole) {
    EXPECT_EQ(parse({"--log-file", "x"})->fileLevel(), OvsdbLogLevel::information);
    EXPECT_EQ(parse({"--log-file", "x", "-v", "dbg"})->fileLevel(), OvsdbLogLevel::debug);
}

TEST(Options, EachDestinationHasItsLevel) {
    auto const options = parse({"-vconsole:off", "-v", "syslog:err", "--verbose=file:emer"});
    ASSERT_TRUE(options);
    EXPECT_EQ(options->logConsole, OvsdbLogLevel::disabled);
    EXPECT_EQ(options->logSyslog, OvsdbLogLevel::error);
    EXPECT_EQ(options->fileLevel(), OvsdbLogLevel::emergency);
}

TEST(Options, ALevelOfTheConsoleAloneLeavesTheFileAsItWas) {
    auto const options = parse({"--log-file", "x", "-v", "console:warn"});
    ASSERT_TRUE(options);
    EXPECT_EQ(options->logConsole, OvsdbLogLevel::warning);
    EXPECT_EQ(options->fileLevel(), OvsdbLogLevel::information);
}

TEST(Options, ALaterWordWins) {
    auto const options = parse({"-v", "file:dbg", "-v", "warn", "--log-file", "x"});
    ASSERT_TRUE(options);
    EXPECT_EQ(options->logConsole, OvsdbLogLevel::warning);
    EXPECT_EQ(options->fileLevel(), OvsdbLogLevel::warning);
}

TEST(Options, WhatIsNoLevelOrNoDestinationEndsTheProgram) {
    for (char const* const word : {"loud", "console:", "console:loud", "printer:info", ""}) {
        int code = 0;
        EXPECT_FALSE(parse({"-v", word}, &code)) << word;
        EXPECT_EQ(code, 1) << word;
    }
}

TEST(Options, ListensWhereItIsToldElseInTheRunDirectory) {
    EXPECT_TRUE(parse({})->serves);
    EXPECT_TRUE(parse({})->listen.empty());
    auto const options = parse({"--listen", "unix:/s", "--listen", "ptcp:1", "--tcp-readers"});
    ASSERT_TRUE(options);
    ASSERT_EQ(options->listen.size(), 2U);
    EXPECT_EQ(options->listen[1].text(), "tcp:127.0.0.1:1");
    EXPECT_FALSE(parse({"--listen", "none"})->serves);
    EXPECT_FALSE(parse({"--listen", "none", "--listen", "unix:/s"}));
}

TEST(Options, WhereNobodyCanBeToldApartHasToBeMeant) {
    EXPECT_FALSE(parse({"--listen", "tcp:127.0.0.1:1"}));
    EXPECT_FALSE(parse({"--listen", "tcp:192.0.2.1:1", "--tcp-readers"}));
    EXPECT_FALSE(parse({"--listen", "ssl:192.0.2.1:1"}));
    EXPECT_TRUE(parse({"--listen", "ssl:192.0.2.1:1", "-p", "k", "-c", "c", "-C", "a"}));
}

TEST(Options, TlsRemotesNeedTheirFiles) {
    EXPECT_FALSE(parse({"--ovsdb", "ssl:192.0.2.1:6640"}));
    EXPECT_TRUE(parse({"--ovsdb", "ssl:192.0.2.1:6640", "-p", "k", "-c", "c", "-C", "a"}));
}

}  // namespace
}  // namespace Vgwd
