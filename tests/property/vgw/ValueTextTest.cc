// Of a million values of each type: text and wire give the same value back. And of texts near a
// good one: each is read, and then prints what reads the same again, or is refused by a range
// exception.
#include <tests/support/Settings.h>

#include <gtest/gtest.h>

#include <qor/attrlog/NboAttrLogIn.h>
#include <qor/attrlog/NboAttrLogOut.h>
#include <vgw/OvsdbDataTypes.h>
#include <vgw/VgwTypes.h>
#include <random>

namespace {

using Random = std::mt19937_64;

constexpr Qor::U64 whole = 1000000;

template <class E>
requires std::is_enum_v<E> E randomValue(Random& random, E*) {
    return static_cast<E>(random() % Qor::EnumTable<E>::names.size());
}

// Small numbers are as likely as great ones.
Qor::U64 number(Random& random, int bits) {
    Qor::U64 const drawn = random();
    auto const used = static_cast<int>(drawn % static_cast<unsigned>(bits)) + 1;
    return random() >> (64 - used);
}

Vgw::MacVniPair randomValue(Random& random, Vgw::MacVniPair*) {
    return {Kelp::EthAddr::fromNumber(number(random, 48)),
            Vxlan::Vni(static_cast<Qor::U32>(number(random, 24)))};
}

Vgw::PhysicalLocatorKey randomValue(Random& random, Vgw::PhysicalLocatorKey*) {
    return {static_cast<Vgw::EncapsulationType>(random() % 2),
            Kelp::IpAddr(static_cast<Qor::U32>(number(random, 32)))};
}

template <class V>
class TextAndWire : public testing::Test {
  protected:
    TextAndWire() : trace_(__FILE__, __LINE__, Settings::seedText()) {}
    static V drawn(Random& random) { return randomValue(random, static_cast<V*>(nullptr)); }

  private:
    testing::ScopedTrace trace_;
};

using Types = testing::Types<Vgw::MacVniPair, Vgw::PhysicalLocatorKey, Vgw::OvsdbDataType,
                             Vgw::EncapsulationType, Vgw::VtepListType, Vgw::OvsdbRequestType,
                             Vgw::SessionState, Vgw::OvsdbLogLevel>;
TYPED_TEST_SUITE(TextAndWire, Types);

TYPED_TEST(TextAndWire, TextComesBack) {
    Random random(Settings::seed());
    for (Qor::U64 i = Settings::values(whole); i > 0; --i) {
        auto const value = this->drawn(random);
        ASSERT_EQ(Qor::strepToValue<TypeParam>(valueToStrep(value)), value);
    }
}

TYPED_TEST(TextAndWire, WireComesBack) {
    if constexpr (!std::is_enum_v<TypeParam>) {
        Random random(Settings::seed());
        Qor::Ptr<Qor::NboAttrLog::Out> const out = Qor::make<Qor::NboAttrLog::Out>();
        Qor::NboAttrLog::In in(97);
        for (Qor::U64 i = Settings::values(whole); i > 0; --i) {
            auto const value = this->drawn(random);
            out << value;
            ASSERT_EQ(in.receive(out->unsent()), out->unsent().size());
            out->sentInc(out->unsent().size());
            ASSERT_EQ(TypeParam(&in, Qor::StreamBogon()), value);
            in.releaseRead();
        }
    }
}

// A good text with a few bytes replaced, put in, left out or doubled.
std::string damaged(std::string text, Random& random) {
    constexpr char alphabet[] = "'0129afg.:,-*(){} \\\t\xff";
    for (auto count = random() % 3 + 1; count > 0 && !text.empty(); --count) {
        auto const at = random() % text.size();
        char const byte = alphabet[random() % (sizeof alphabet - 1)];
        switch (random() % 4) {
            case 0:
                text[at] = byte;
                break;
            case 1:
                text.insert(at, 1, byte);
                break;
            case 2:
                text.erase(at, random() % 4 + 1);
                break;
            default:
                text.insert(at, text.substr(at, random() % 20));
        }
    }
    return text;
}

TYPED_TEST(TextAndWire, DamagedTextIsReadAsWhatItSaysOrRefused) {
    Random random(Settings::seed());
    int refused = 0;
    for (Qor::U64 i = Settings::values(whole) / 50; i > 0; --i) {
        std::string const text =
            damaged(std::string(valueToStrep(this->drawn(random)).view()), random);
        try {
            auto const value = Qor::strepToValue<TypeParam>(std::string_view(text));
            ASSERT_EQ(Qor::strepToValue<TypeParam>(valueToStrep(value)), value) << text;
        } catch (Qor::RangeException const&) {
            ++refused;
        }
    }
    EXPECT_GT(refused, 0);
}

// Bytes that nobody wrote: read whole, or refused by name.
TYPED_TEST(TextAndWire, AnyBytesOnTheWireAreReadOrRefused) {
    if constexpr (!std::is_enum_v<TypeParam>) {
        Random random(Settings::seed());
        int read = 0;
        int refused = 0;
        for (Qor::U64 i = Settings::values(whole) / 50; i > 0; --i) {
            std::string bytes(random() % 12, '\0');
            for (char& byte : bytes) {
                byte = static_cast<char>(random() % 3 ? random() % 3 : random());
            }
            Qor::NboAttrLog::In in(64);
            in.receive(bytes);
            try {
                TypeParam const value(&in, Qor::StreamBogon());
                ++read;
                ASSERT_EQ(Qor::strepToValue<TypeParam>(valueToStrep(value)), value);
            } catch (Qor::RangeException const&) {
                ++refused;
            } catch (Qor::AttrLogRecordException const&) {
                ++refused;
            }
        }
        EXPECT_GT(read, 0);
        EXPECT_GT(refused, 0);
    }
}

}  // namespace
