#include <qor/core/Format.h>

#include <gtest/gtest.h>

#include <string>

namespace {

TEST(Format, FillsInNumbersAndTexts) {
    EXPECT_EQ(Qor::format("ssl:%s:%d", "192.0.2.1", 6632), "ssl:192.0.2.1:6632");
    EXPECT_EQ(Qor::format("junk at column %lld", 0x100000000LL), "junk at column 4294967296");
    EXPECT_EQ(Qor::format("OvsdbDataType(%d)", -1), "OvsdbDataType(-1)");
}

TEST(Format, GivesTheEmptyStringForNothing) { EXPECT_EQ(Qor::format("%s", "").data(), nullptr); }

TEST(Format, KeepsLongTextsWholeAtEveryLength) {
    for (std::size_t length = 250; length < 262; ++length) {
        std::string const text(length, 'x');
        EXPECT_EQ(Qor::format("%s", text.c_str()), std::string_view(text));
    }
    std::string const large(1000000, 'y');
    EXPECT_EQ(Qor::format("<%s>", large.c_str()).length(), 1000002U);
}

}  // namespace
