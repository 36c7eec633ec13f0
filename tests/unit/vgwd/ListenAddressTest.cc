#include <vgwd/serve/ListenAddress.h>

#include <gtest/gtest.h>

namespace Vgwd {
namespace {

std::string textOf(char const* text) { return parseListenAddress(text).text(); }

std::string refusalOf(char const* text) {
    try {
        return "read as " + textOf(text);
    } catch (Ovsdb::RemoteError const& e) {
        return e.what();
    }
}

TEST(ListenAddress, IsReadInOurFormAndInThatOfTheOvsdbTools) {
    EXPECT_EQ(textOf("unix:/run/vgwd.sock"), "unix:/run/vgwd.sock");
    EXPECT_EQ(textOf("punix:/run/vgwd.sock"), "unix:/run/vgwd.sock");
    EXPECT_EQ(textOf("tcp:127.0.0.1:6650"), "tcp:127.0.0.1:6650");
    EXPECT_EQ(textOf("ptcp:6650:127.0.0.9"), "tcp:127.0.0.9:6650");
    EXPECT_EQ(textOf("ssl:192.0.2.1:6650"), "ssl:192.0.2.1:6650");
    EXPECT_EQ(textOf("pssl:6650:[2001:db8::1]"), "ssl:[2001:db8::1]:6650");
    EXPECT_EQ(textOf("ssl:[2001:db8::1]:0"), "ssl:[2001:db8::1]:0");
}

TEST(ListenAddress, WithoutAnAddressPlainTcpIsLocalAndTlsIsAnywhere) {
    EXPECT_EQ(textOf("ptcp:6650"), "tcp:127.0.0.1:6650");
    EXPECT_EQ(textOf("pssl:6650"), "ssl:0.0.0.0:6650");
}

TEST(ListenAddress, PlainTcpIsForTheLoopback) {
    for (char const* const text : {"tcp:192.0.2.1:6650", "ptcp:6650:0.0.0.0", "tcp:[::]:6650"})
        EXPECT_NE(refusalOf(text).find("is for an address of the loopback"), std::string::npos)
            << text;
    EXPECT_EQ(textOf("tcp:[::1]:1"), "tcp:[::1]:1");
}

TEST(ListenAddress, WhatCanNotBeReadIsNamed) {
    EXPECT_EQ(refusalOf("unix:"), "\"unix:\": expected the path of a socket");
    EXPECT_EQ(refusalOf("tcp:127.0.0.1"), "\"tcp:127.0.0.1\": expected ADDRESS:PORT");
    EXPECT_EQ(refusalOf("ssl:host:1"), "\"ssl:host:1\": \"host\" is no address in figures");
    EXPECT_EQ(refusalOf("tcp:127.0.0.1:70000"),
              "\"tcp:127.0.0.1:70000\": \"70000\" is no port, expected 0 to 65535");
    EXPECT_NE(refusalOf("udp:1").find("expected unix:PATH"), std::string::npos);
    std::string const path(108, 'x');
    EXPECT_NE(refusalOf(("unix:" + path).c_str()).find("at most 107 bytes"), std::string::npos);
}

}  // namespace
}  // namespace Vgwd
