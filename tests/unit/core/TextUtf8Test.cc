#include <qor/core/TextUtf8.h>

#include <gtest/gtest.h>

namespace {

using Qor::printableLength;

TEST(Utf8, PrintableAsciiIsOneByte) {
    EXPECT_EQ(printableLength(" "), 1U);
    EXPECT_EQ(printableLength("~"), 1U);
}

TEST(Utf8, ControlCharactersAreNotShown) {
    EXPECT_EQ(printableLength(std::string_view("\0", 1)), 0U);
    EXPECT_EQ(printableLength("\x1f"), 0U);
    EXPECT_EQ(printableLength("\x7f"), 0U);
    EXPECT_EQ(printableLength("\xc2\x80"), 0U);
    EXPECT_EQ(printableLength("\xc2\x9f"), 0U);
}

TEST(Utf8, WellFormedSequencesAreTakenWhole) {
    EXPECT_EQ(printableLength("\xc2\xa0"), 2U);
    EXPECT_EQ(printableLength("\xdf\xbf"
                              "x"),
              2U);
    EXPECT_EQ(printableLength("\xe0\xa0\x80"), 3U);
    EXPECT_EQ(printableLength("\xef\xbf\xbf"), 3U);
    EXPECT_EQ(printableLength("\xf0\x90\x80\x80"), 4U);
    EXPECT_EQ(printableLength("\xf4\x8f\xbf\xbf"), 4U);
}

TEST(Utf8, MalformedSequencesAreNotShown) {
    EXPECT_EQ(printableLength(""), 0U);
    EXPECT_EQ(printableLength("\x80"), 0U) << "a byte that only continues";
    EXPECT_EQ(printableLength("\xc0\x80"), 0U) << "longer than needed";
    EXPECT_EQ(printableLength("\xe0\x9f\xbf"), 0U) << "longer than needed";
    EXPECT_EQ(printableLength("\xf0\x8f\xbf\xbf"), 0U) << "longer than needed";
    EXPECT_EQ(printableLength("\xed\xa0\x80"), 0U) << "a surrogate";
    EXPECT_EQ(printableLength("\xf4\x90\x80\x80"), 0U) << "beyond U+10FFFF";
    EXPECT_EQ(printableLength("\xc3"), 0U) << "cut";
    EXPECT_EQ(printableLength("\xe2\x82"), 0U) << "cut";
    EXPECT_EQ(printableLength("\xc3x"), 0U) << "not continued";
    EXPECT_EQ(printableLength("\xff"), 0U);
}

}  // namespace
