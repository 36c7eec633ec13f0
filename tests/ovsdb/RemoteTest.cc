#include <ovsdb/remote/Remote.h>

#include <gtest/gtest.h>

namespace Ovsdb {
namespace {

std::string refusal(std::string_view text) {
    try {
        static_cast<void>(parseRemotes(text));
    } catch (RemoteError const& e) {
        return e.what();
    }
    return "";
}

TEST(Remote, EveryKindIsReadAndWrittenTheSame) {
    for (char const* const text :
         {"unix:/run/db.sock", "tcp:192.0.2.1:6640", "tcp:[2001:db8::1]:6641",
          "ssl:leaf-1.example:1", "ssl:[2001:db8::2]:65535"})
        EXPECT_EQ(parseRemote(text).text(), text);
}

TEST(Remote, TheKindsCarryTheirParts) {
    Remote const v6 = parseRemote("ssl:[2001:db8::1]:7000");
    EXPECT_EQ(v6.kind, Remote::Kind::ssl);
    EXPECT_EQ(v6.host, "2001:db8::1");
    EXPECT_EQ(v6.port, 7000);
    EXPECT_EQ(parseRemote("unix:db.sock").path, "db.sock");
}

TEST(Remote, AMissingPortIsTheRegisteredOne) {
    EXPECT_EQ(parseRemote("tcp:192.0.2.1").port, 6640);
    EXPECT_EQ(parseRemote("tcp:[2001:db8::1]").port, 6640);
}

TEST(Remote, AListKeepsItsOrder) {
    std::vector<Remote> const list = parseRemotes("tcp:192.0.2.1:1,unix:/a,ssl:192.0.2.2:2");
    ASSERT_EQ(list.size(), 3U);
    EXPECT_EQ(list[0].text(), "tcp:192.0.2.1:1");
    EXPECT_EQ(list[1].text(), "unix:/a");
    EXPECT_EQ(list[2].text(), "ssl:192.0.2.2:2");
}

TEST(Remote, WhatCannotBeReadIsNamed) {
    EXPECT_EQ(refusal(""), "remote \"\": expected unix:PATH, tcp:HOST:PORT or ssl:HOST:PORT");
    EXPECT_EQ(refusal("udp:192.0.2.1:1"),
              "remote \"udp:192.0.2.1:1\": expected unix:PATH, tcp:HOST:PORT or ssl:HOST:PORT");
    EXPECT_EQ(refusal("unix:"), "remote \"unix:\": expected the path of a socket");
    EXPECT_EQ(refusal("tcp::6640"), "remote \"tcp::6640\": expected a host");
    EXPECT_EQ(refusal("tcp:192.0.2.1:"),
              "remote \"tcp:192.0.2.1:\": \"\" is no port, expected 1 to 65535");
    EXPECT_EQ(refusal("tcp:192.0.2.1:65536"),
              "remote \"tcp:192.0.2.1:65536\": \"65536\" is no port, expected 1 to 65535");
    EXPECT_EQ(refusal("tcp:192.0.2.1:0"),
              "remote \"tcp:192.0.2.1:0\": \"0\" is no port, expected 1 to 65535");
    EXPECT_EQ(refusal("tcp:2001:db8::1:6640"),
              "remote \"tcp:2001:db8::1:6640\": an IPv6 address stands in brackets: [2001:db8::1]");
    EXPECT_EQ(refusal("tcp:[2001:db8::1:6640"),
              "remote \"tcp:[2001:db8::1:6640\": expected ] behind the IPv6 address");
    EXPECT_EQ(refusal("tcp:[2001:db8::1]6640"),
              "remote \"tcp:[2001:db8::1]6640\": expected : behind ]");
    EXPECT_EQ(refusal("unix:/a,,unix:/b"),
              "remote \"\": expected unix:PATH, tcp:HOST:PORT or ssl:HOST:PORT");
    EXPECT_EQ(
        refusal("unix:" + std::string(108, 'x')),
        "remote \"unix:" + std::string(108, 'x') + "\": a socket's path has at most 107 bytes");
}

}  // namespace
}  // namespace Ovsdb
