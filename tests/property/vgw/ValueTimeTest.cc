// Texts of values, however long: they are read, printed or refused in time that grows with them.
#include <tests/support/LinearCost.h>
#include <tests/support/Settings.h>

#include <qor/core/Strep.h>
#include <vgw/VgwTypes.h>

#include <gtest/gtest.h>

#include <string>

namespace {

using Qor::String8;

// Short enough for the processor's caches, so that they don't count; read again and again.
constexpr std::size_t unit = 1U << 12;
constexpr int times = Settings::volume(150, 10, 10);

template <class Work>
double timeOfMany(Work const& work) {
    return timeOf([&] {
        for (int i = 0; i < times; ++i) work();
    });
}

// A pattern again and again, `size` bytes of it, between two others.
std::string textOf(std::string const& before, std::string_view pattern, std::size_t size,
                   std::string const& behind = {}) {
    std::string text = before;
    while (text.size() < size) text += pattern;
    return text + behind;
}

template <class V>
void expectLinearlyRead(std::string const& before, std::string_view pattern,
                        std::string const& behind, bool isGood) {
    expectLinearCost(unit, [&](std::size_t size) {
        String8 const text(std::string_view(textOf(before, pattern, size, behind)));
        return timeOfMany([&] {
            try {
                static_cast<void>(Qor::strepToValue<V>(text));
                EXPECT_TRUE(isGood);
            } catch (Qor::RangeException const&) {
                EXPECT_FALSE(isGood);
            }
        });
    });
}

TEST(ValueTime, TextsAreReadInLinearTime) {
    expectLinearlyRead<String8>("'", "x", "'", true);
    expectLinearlyRead<String8>("'", "\\x41", "'", true);
    expectLinearlyRead<String8>("'", "\\\\", "'", true);
    expectLinearlyRead<String8>("'", "\xC3\xA9", "'", true);
}

TEST(ValueTime, TextsWithoutAnEndAreRefusedInLinearTime) {
    expectLinearlyRead<String8>("'", "x", "", false);
    expectLinearlyRead<String8>("'", "\\\\", "", false);
}

TEST(ValueTime, TextsArePrintedInLinearTime) {
    for (char const character : {'x', '\'', '\\', '\0', '\xE9', '\n'}) {
        expectLinearCost(unit, [&](std::size_t size) {
            String8 const text(std::string_view(std::string(size, character)));
            return timeOfMany([&] { EXPECT_GE(valueToStrep(text).length(), size); });
        });
    }
}

// What is no value is long and said so after going through it a few times at most.
template <class V>
class ValueTime : public testing::Test {};
using Types = testing::Types<Qor::U32, Qor::U64, bool, Kelp::IpAddr, Kelp::EthAddr, Vxlan::Vni,
                             Vgw::EncapsulationType, Vgw::MacVniPair, Vgw::PhysicalLocatorKey>;
TYPED_TEST_SUITE(ValueTime, Types);

TYPED_TEST(ValueTime, LongTextsAreRefusedInLinearTime) {
    for (char const* const pattern : {"1", "0", " ", "(", "'", "1.", "00:", "true", "\\x31"}) {
        expectLinearlyRead<TypeParam>("", pattern, "", false);
        expectLinearlyRead<TypeParam>("'", pattern, "'", false);
    }
}

}  // namespace
