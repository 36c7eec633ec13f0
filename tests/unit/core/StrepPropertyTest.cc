#include <qor/core/Strep.h>
#include <tests/support/Settings.h>

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <random>
#include <string>

// Of a million values of each type: what is printed reads back as the same value. And of random
// bytes: a text is either read or refused with the column where reading stopped.
// VGW_TEST_SEED repeats a run, VGW_TEST_VALUES sets the number of values.

namespace {

using Random = std::mt19937_64;

int values() { return static_cast<int>(Settings::values(1000000)); }

// Numbers of all magnitudes, not only of the greatest.
template <class Number>
Number randomNumber(Random& random) {
    return static_cast<Number>(random() >> (random() % 64));
}

Qor::String8 randomText(Random& random) {
    constexpr char alphabet[] = "'\\nx0aé\xc3\xff\x7f\n\t Value(),{}:*";
    std::string text(random() % 24, '\0');
    for (auto& byte : text) {
        auto const choice = random();
        byte = choice % 2 == 0 ? static_cast<char>(choice >> 8)
                               : alphabet[(choice >> 8) % (sizeof alphabet - 1)];
    }
    return std::string_view(text);
}

template <class Value>
void expectToComeBack(Value const& value) {
    auto const text = Qor::valueToStrep(value);
    ASSERT_EQ(Qor::strepToValue<Value>(text), value) << text;
}

template <class Number>
void numbersComeBack() {
    SCOPED_TRACE("seed " + std::to_string(Settings::seed()));
    Random random(Settings::seed());
    for (int i = 0; i < values() && !testing::Test::HasFailure(); ++i) {
        expectToComeBack(randomNumber<Number>(random));
    }
}

TEST(StrepProperty, EveryU8ComesBack) {
    for (int i = 0; i < 256; ++i) expectToComeBack(static_cast<Qor::U8>(i));
}
TEST(StrepProperty, EveryU16ComesBack) {
    for (int i = 0; i < 65536; ++i) expectToComeBack(static_cast<Qor::U16>(i));
}
TEST(StrepProperty, U32ComesBack) { numbersComeBack<Qor::U32>(); }
TEST(StrepProperty, U64ComesBack) { numbersComeBack<Qor::U64>(); }
TEST(StrepProperty, I32ComesBack) { numbersComeBack<Qor::I32>(); }
TEST(StrepProperty, I64ComesBack) { numbersComeBack<Qor::I64>(); }

TEST(StrepProperty, DoubleComesBackBitByBit) {
    SCOPED_TRACE("seed " + std::to_string(Settings::seed()));
    Random random(Settings::seed());
    for (int i = 0; i < values(); ++i) {
        auto const value = std::bit_cast<double>(random());
        auto const back = Qor::strepToValue<double>(Qor::valueToStrep(value));
        if (std::isnan(value)) {
            ASSERT_TRUE(std::isnan(back));
        } else {
            ASSERT_EQ(std::bit_cast<Qor::U64>(back), std::bit_cast<Qor::U64>(value)) << value;
        }
    }
}

TEST(StrepProperty, StringsOfAnyBytesComeBack) {
    SCOPED_TRACE("seed " + std::to_string(Settings::seed()));
    Random random(Settings::seed());
    for (int i = 0; i < values() && !HasFailure(); ++i) expectToComeBack(randomText(random));
}

// The column that the message tells, or -1.
long long columnIn(std::string const& message) {
    constexpr char words[] = " at column ";
    auto const at = message.find(words);
    return at == std::string::npos ? -1 : std::atoll(message.c_str() + at + sizeof words - 1);
}

template <class Value>
void randomBytesAreReadOrRefused() {
    SCOPED_TRACE("seed " + std::to_string(Settings::seed()));
    Random random(Settings::seed());
    int refused = 0;
    for (int i = 0; i < values() / 10; ++i) {
        auto const text = randomText(random);
        try {
            expectToComeBack(Qor::strepToValue<Value>(text));
        } catch (Qor::RangeException const& exception) {
            ++refused;
            auto const column = columnIn(exception.what());
            ASSERT_GE(column, 0) << exception.what();
            ASSERT_LE(column, text.length()) << exception.what();
        }
    }
    EXPECT_GT(refused, 0);
}

TEST(StrepProperty, RandomBytesAreNoString) { randomBytesAreReadOrRefused<Qor::String8>(); }
TEST(StrepProperty, RandomBytesAreNoU32) { randomBytesAreReadOrRefused<Qor::U32>(); }
TEST(StrepProperty, RandomBytesAreNoBool) { randomBytesAreReadOrRefused<bool>(); }
TEST(StrepProperty, RandomBytesAreNoDouble) { randomBytesAreReadOrRefused<double>(); }

}  // namespace
