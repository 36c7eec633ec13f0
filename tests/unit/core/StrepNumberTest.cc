#include <qor/core/Strep.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <string>

namespace {

using Qor::strepToValue;
using Qor::valueToStrep;

template <class Value>
bool isRefused(char const* text) {
    try {
        strepToValue<Value>(text);
        return false;
    } catch (Qor::RangeException const& exception) {
        return std::string(exception.what()).find("at column ") != std::string::npos;
    }
}

template <class Number>
class StrepOfNumber : public testing::Test {};

using Integers = testing::Types<Qor::U8, Qor::U16, Qor::U32, Qor::U64, unsigned long long, Qor::I32,
                                Qor::I64, long long>;
TYPED_TEST_SUITE(StrepOfNumber, Integers);

TYPED_TEST(StrepOfNumber, BoundsComeBack) {
    using Limits = std::numeric_limits<TypeParam>;
    for (auto const number : {Limits::min(), TypeParam{0}, TypeParam{1}, Limits::max()}) {
        EXPECT_EQ(valueToStrep(number), std::string_view(std::to_string(number)));
        EXPECT_EQ(strepToValue<TypeParam>(valueToStrep(number)), number);
    }
}

TYPED_TEST(StrepOfNumber, OneBeyondTheBoundsIsRefused) {
    using Limits = std::numeric_limits<TypeParam>;
    auto digits = std::to_string(Limits::max());
    ASSERT_NE(digits.back(), '9');
    ++digits.back();
    EXPECT_TRUE(isRefused<TypeParam>(digits.c_str()));
    EXPECT_TRUE(isRefused<TypeParam>((digits + "0").c_str()));
    EXPECT_TRUE(isRefused<TypeParam>("99999999999999999999999999"));
    if (Limits::is_signed) {
        auto least = std::to_string(Limits::min());
        ++least.back();
        EXPECT_TRUE(isRefused<TypeParam>(least.c_str()));
    } else {
        EXPECT_TRUE(isRefused<TypeParam>("-1"));
    }
}

TYPED_TEST(StrepOfNumber, OtherSpellingsAreRefused) {
    for (char const* const text :
         {"", " ", "+1", "01", "00", "-0", "- 1", "0x10", "1e3", "1.0", "1 ", "one", "'1'"}) {
        EXPECT_TRUE(isRefused<TypeParam>(text)) << text;
    }
    EXPECT_EQ(strepToValue<TypeParam>(" 7"), TypeParam{7});
}

TEST(StrepOfBool, IsTrueOrFalse) {
    EXPECT_EQ(valueToStrep(true), "true");
    EXPECT_EQ(valueToStrep(false), "false");
    EXPECT_TRUE(strepToValue<bool>("true"));
    EXPECT_FALSE(strepToValue<bool>(" false"));
    for (char const* const text : {"", "True", "1", "0", "truely", "fals", "'true'"}) {
        EXPECT_TRUE(isRefused<bool>(text)) << text;
    }
}

TEST(StrepOfDouble, IsTheShortestTextThatComesBack) {
    EXPECT_EQ(valueToStrep(0.1), "0.1");
    EXPECT_EQ(valueToStrep(0.0), "0");
    EXPECT_EQ(valueToStrep(1e300), "1e+300");
    EXPECT_EQ(strepToValue<double>("1234.5"), 1234.5);
    EXPECT_EQ(strepToValue<double>("-1e3"), -1000);
}

TEST(StrepOfDouble, SpecialValuesComeBack) {
    auto const infinity = std::numeric_limits<double>::infinity();
    EXPECT_EQ(strepToValue<double>(valueToStrep(infinity)), infinity);
    EXPECT_EQ(strepToValue<double>(valueToStrep(-infinity)), -infinity);
    EXPECT_TRUE(std::isnan(strepToValue<double>(valueToStrep(std::nan("")))));
    EXPECT_TRUE(std::isnan(strepToValue<double>(valueToStrep(-std::nan("")))));
    EXPECT_TRUE(std::signbit(strepToValue<double>(valueToStrep(-0.0))));
}

TEST(StrepOfDouble, OtherTextsAreRefused) {
    for (char const* const text :
         {"", "x", "+1", ".", "-", "e5", "1e400", "infinity", "nan(1)", "1,5"}) {
        EXPECT_TRUE(isRefused<double>(text)) << text;
    }
}

}  // namespace
