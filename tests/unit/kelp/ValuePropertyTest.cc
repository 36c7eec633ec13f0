#include "Wire.h"

#include <kelp/EthAddr.h>
#include <kelp/IpAddr.h>
#include <kelp/Vni.h>
#include <qor/core/Strep.h>
#include <tests/support/Settings.h>

#include <gtest/gtest.h>

#include <random>
#include <string>

// Of a million values of each type: text and wire give the same value back. And of random texts
// near a good one: each is read, and then prints as it was, or refused with a column.
// VGW_TEST_SEED repeats a run, VGW_TEST_VALUES sets the number of values.

namespace {

using Random = std::mt19937_64;

int values() { return static_cast<int>(Settings::values(1000000)); }

struct IpAddrs {
    using Value = Kelp::IpAddr;
    static Value random(Random& random) { return Value(static_cast<Qor::U32>(random())); }
    static Value read(Qor::NboAttrLog::In& in) { return Value::fromHostOrder(in.nextU32()); }
};

struct EthAddrs {
    using Value = Kelp::EthAddr;
    static Value random(Random& random) { return Value::fromNumber(random() >> 16); }
    static Value read(Qor::NboAttrLog::In& in) { return Value(&in, Qor::StreamBogon()); }
};

struct Vnis {
    using Value = Vxlan::Vni;
    static Value random(Random& random) { return Value(static_cast<Qor::U32>(random() >> 40)); }
    static Value read(Qor::NboAttrLog::In& in) { return Value(&in, Qor::StreamBogon()); }
};

template <class Kind>
class NetworkValue : public testing::Test {};
using Kinds = testing::Types<IpAddrs, EthAddrs, Vnis>;
TYPED_TEST_SUITE(NetworkValue, Kinds);

TYPED_TEST(NetworkValue, TextComesBack) {
    SCOPED_TRACE("seed " + std::to_string(Settings::seed()));
    Random random(Settings::seed());
    for (int i = 0; i < values(); ++i) {
        auto const value = TypeParam::random(random);
        ASSERT_EQ(Qor::strepToValue<typename TypeParam::Value>(valueToStrep(value)), value);
    }
}

TYPED_TEST(NetworkValue, WireComesBack) {
    SCOPED_TRACE("seed " + std::to_string(Settings::seed()));
    Random random(Settings::seed());
    Qor::Ptr<Qor::NboAttrLog::Out> const out = Qor::make<Qor::NboAttrLog::Out>();
    Qor::NboAttrLog::In in(97);
    for (int i = 0; i < values(); ++i) {
        auto const value = TypeParam::random(random);
        out << value;
        unsigned char stored[8];
        auto const* const end = Qor::NboAttrLog::storeOnWire(stored, value);
        ASSERT_TRUE(std::equal<unsigned char const*>(
            stored, end, out->unsent().begin(), out->unsent().end(),
            [](auto a, auto b) { return a == static_cast<unsigned char>(b); }));
        ASSERT_EQ(in.receive(out->unsent()), out->unsent().size());
        out->sentInc(out->unsent().size());
        ASSERT_EQ(TypeParam::read(in), value);
        in.releaseRead();
    }
}

// A good text with one byte replaced, put in or left out.
std::string damaged(std::string text, Random& random) {
    constexpr char alphabet[] = "'0129afg.:- \\\xff";
    auto const at = random() % text.size();
    char const byte = alphabet[random() % (sizeof alphabet - 1)];
    switch (random() % 3) {
        case 0:
            text[at] = byte;
            break;
        case 1:
            text.insert(at, 1, byte);
            break;
        default:
            text.erase(at, 1);
    }
    return text;
}

TYPED_TEST(NetworkValue, DamagedTextIsReadAsWhatItSaysOrRefused) {
    SCOPED_TRACE("seed " + std::to_string(Settings::seed()));
    Random random(Settings::seed());
    int refused = 0;
    for (int i = 0; i < values() / 10; ++i) {
        auto const good = valueToStrep(TypeParam::random(random));
        auto const text = damaged(std::string(good.view()), random);
        try {
            auto const value = Qor::strepToValue<typename TypeParam::Value>(std::string_view(text));
            auto const printed = valueToStrep(value);
            ASSERT_EQ(Qor::strepToValue<typename TypeParam::Value>(printed), value) << text;
        } catch (Qor::RangeException const& exception) {
            ++refused;
            ASSERT_NE(std::string(exception.what()).find(" at column "), std::string::npos) << text;
        }
    }
    EXPECT_GT(refused, 0);
}

}  // namespace
