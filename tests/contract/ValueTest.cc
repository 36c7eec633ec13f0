// Enumerations and composite values: every one.
#include <sstream>

#include <gtest/gtest.h>

#include <qor/attrlog/NboAttrLogIn.h>
#include <qor/attrlog/NboAttrLogOut.h>
#include <qor/attrlog/PlainForm.h>
#include <vgw/OvsdbDataTypesList.h>
#include <vgw/VgwTypesList.h>

#include "Accessors.h"
#include "Samples.h"

namespace Contract {
namespace {

template <class... Lists>
struct Joined;

template <class... A, class... B>
struct Joined<Qor::TypeList<A...>, Qor::TypeList<B...>> {
    using Types = testing::Types<A..., B...>;
};

using Values = Joined<Vgw::OvsdbDataTypesValues, Vgw::VgwTypesValues>;
using Enums = Joined<Vgw::OvsdbDataTypesEnumerations, Vgw::VgwTypesEnumerations>;

/// The names of types in the messages of typed tests.
struct TypeNames {
    template <class T>
    static std::string GetName(int) {
        if constexpr (std::is_enum_v<T>) {
            return Qor::EnumTable<T>::type;
        } else {
            return T::qorShortName;
        }
    }
};

template <class E>
class EveryEnumeration : public testing::Test {};
TYPED_TEST_SUITE(EveryEnumeration, Enums::Types, TypeNames);

template <class Call>
std::string refusal(Call&& call) {
    try {
        call();
    } catch (Qor::RangeException const& exception) {
        EXPECT_TRUE(exception.ids().contains(Qor::Exception::rangeId));
        return exception.what();
    }
    return "not refused";
}

TYPED_TEST(EveryEnumeration, NumbersAndNamesGiveEachOther) {
    using E = TypeParam;
    auto const& names = Qor::EnumTable<E>::names;
    for (unsigned number = 0; number < names.size(); ++number) {
        E const value = EnumAccess<E>::instance(number);
        EXPECT_EQ(static_cast<unsigned>(value), number);
        EXPECT_EQ(stringValue(value), names[number]);
        EXPECT_EQ(EnumAccess<E>::instance(Qor::String8(names[number])), value);
    }
}

TYPED_TEST(EveryEnumeration, TextComesBack) {
    using E = TypeParam;
    for (unsigned number = 0; number < Qor::EnumTable<E>::names.size(); ++number) {
        auto const value = static_cast<E>(number);
        std::string const name(stringValue(value).view());
        EXPECT_EQ(valueToStrep(value), "'" + name + "'");
        EXPECT_EQ(Qor::strepToValue<E>(valueToStrep(value)), value);
        EXPECT_EQ(Qor::strepToValue<E>(valueToStrep(value), static_cast<E*>(nullptr)), value);
        std::ostringstream out;
        out << value;
        EXPECT_EQ(out.str(), name);
    }
}

TYPED_TEST(EveryEnumeration, NumberOutsideTheTableIsRefusedByTheTypesName) {
    using E = TypeParam;
    unsigned const size = Qor::EnumTable<E>::names.size();
    for (unsigned const number : {size, size + 1, 0x7FFFFFFFU, 0x80000000U, 0xFFFFFFFFU}) {
        EXPECT_EQ(refusal([&] { EnumAccess<E>::instance(number); }), Qor::EnumTable<E>::type);
    }
}

TYPED_TEST(EveryEnumeration, NameOutsideTheTableIsRefusedByTheTypesName) {
    using E = TypeParam;
    std::string const first = Qor::EnumTable<E>::names[0];
    std::string upper = first;
    upper[0] = static_cast<char>(upper[0] - 'a' + 'A');
    std::string const nul = first + '\0';
    for (std::string const& name : {std::string(), upper, first + " ", " " + first,
                                    "'" + first + "'", first.substr(1), nul}) {
        EXPECT_EQ(refusal([&] { EnumAccess<E>::instance(Qor::String8(std::string_view(name))); }),
                  Qor::EnumTable<E>::type)
            << name;
    }
}

TYPED_TEST(EveryEnumeration, FallbackFormTellsTheSignedNumberAndDoesNotReadBack) {
    using E = TypeParam;
    std::string const type = Qor::EnumTable<E>::type;
    auto const next = static_cast<E>(Qor::EnumTable<E>::names.size());
    std::string const text = type + "(" + std::to_string(Qor::EnumTable<E>::names.size()) + ")";
    EXPECT_EQ(stringValue(next), text);
    EXPECT_EQ(stringValue(static_cast<E>(0xFFFFFFFF)), type + "(-1)");
    EXPECT_EQ(refusal([&] { EnumAccess<E>::instance(Qor::String8(std::string_view(text))); }),
              type);
    EXPECT_EQ(refusal([&] { Qor::strepToValue<E>(valueToStrep(next)); }), type);
}

TYPED_TEST(EveryEnumeration, TakesThirtyTwoBits) { EXPECT_EQ(sizeof(TypeParam), 4U); }

template <class V>
class EveryValue : public testing::Test {};
TYPED_TEST_SUITE(EveryValue, Values::Types, TypeNames);

// Values that differ in one field alone, and the default.
template <class V>
std::vector<V> valuesOf() {
    std::vector<V> all{V()};
    if constexpr (V::QorFields::size > 0) {
        for (unsigned i = 0; i < 8; ++i) {
            all.push_back(numbered<V>(i));
        }
        V::QorFields::forEach([&]<class F>() {
            for (auto const& field : samples<typename F::Type>()) {
                V value = numbered<V>(0);
                F::field(value) = field;
                all.push_back(value);
            }
        });
    }
    return all;
}

TYPED_TEST(EveryValue, ReadersGiveTheFieldsOfTheConstructor) {
    using V = TypeParam;
    if constexpr (V::QorFields::size > 0) {
        V const value = numbered<V>(3);
        V::QorFields::forEach([&]<class F>() {
            EXPECT_EQ(FieldAccess<F>::get(value), numbered<typename F::Type>(3)) << F::name;
        });
    }
}

TYPED_TEST(EveryValue, TextComesBack) {
    using V = TypeParam;
    if constexpr (V::QorFields::size > 0) {
        for (V const& value : valuesOf<V>()) {
            EXPECT_EQ(Qor::strepToValue<V>(valueToStrep(value)), value) << textOf(value);
            EXPECT_EQ(Qor::strepToValue<V>(valueToStrep(value), static_cast<V*>(nullptr)), value);
        }
    }
}

TYPED_TEST(EveryValue, StreamsItsText) {
    using V = TypeParam;
    for (V const& value : valuesOf<V>()) {
        std::ostringstream out;
        out << value;
        EXPECT_EQ(out.str(), textOf(value));
    }
}

TYPED_TEST(EveryValue, WireFormComesBackAndTakesNoMore) {
    using V = TypeParam;
    for (V const& value : valuesOf<V>()) {
        Qor::Ptr<Qor::NboAttrLog::Out> const out = Qor::make<Qor::NboAttrLog::Out>();
        EXPECT_EQ(&(out << value), &out);
        auto const in = Qor::make<Qor::NboAttrLog::In>();
        in->receive(out->unsent());
        in->receive("behind");
        EXPECT_EQ(V(in.ptr(), Qor::StreamBogon()), value) << textOf(value);
        EXPECT_EQ(in->available(), 6U);
    }
}

TYPED_TEST(EveryValue, IsStoredInAClaimedRecordAsItIsPut) {
    using V = TypeParam;
    if constexpr (Qor::NboAttrLog::HasPlainForm<V>) {
        for (V const& value : valuesOf<V>()) {
            Qor::Ptr<Qor::NboAttrLog::Out> const out = Qor::make<Qor::NboAttrLog::Out>();
            out << value;
            std::string stored(Qor::NboAttrLog::PlainForm<V>::size, 'x');
            Qor::NboAttrLog::storeOnWire(reinterpret_cast<unsigned char*>(stored.data()), value);
            EXPECT_EQ(stored, out->unsent()) << textOf(value);
        }
    }
}

TYPED_TEST(EveryValue, WireFormThatIsCutIsRefused) {
    using V = TypeParam;
    Qor::Ptr<Qor::NboAttrLog::Out> const out = Qor::make<Qor::NboAttrLog::Out>();
    out << valuesOf<V>().back();
    auto const whole = out->unsent();
    for (std::size_t length = 0; length < whole.size(); ++length) {
        auto const in = Qor::make<Qor::NboAttrLog::In>();
        in->receive(whole.substr(0, length));
        EXPECT_THROW(V(in.ptr(), Qor::StreamBogon()), Qor::AttrLogRecordException) << length;
    }
}

TYPED_TEST(EveryValue, EqualityIsThatOfAllFields) {
    using V = TypeParam;
    for (V const& left : valuesOf<V>()) {
        for (V const& right : valuesOf<V>()) {
            bool equal = true;
            V::QorFields::forEach([&]<class F>() {
                equal = equal && FieldAccess<F>::get(left) == FieldAccess<F>::get(right);
            });
            EXPECT_EQ(left == right, equal);
            EXPECT_EQ(left != right, !equal);
        }
    }
}

TYPED_TEST(EveryValue, OrderIsStrictAndTheOtherComparisonsFollowFromIt) {
    using V = TypeParam;
    if constexpr (requires(V const& v) { v < v; }) {
        for (V const& a : valuesOf<V>()) {
            EXPECT_FALSE(a < a);
            for (V const& b : valuesOf<V>()) {
                EXPECT_FALSE(a < b && b < a);
                EXPECT_EQ(a <= b, !(b < a));
                EXPECT_EQ(a > b, !(a <= b));
                EXPECT_EQ(a >= b, !(a < b));
                for (V const& c : valuesOf<V>()) {
                    EXPECT_TRUE(!(a < b && b < c) || a < c);
                }
            }
        }
    }
}

TYPED_TEST(EveryValue, EqualValuesHaveEqualHashes) {
    using V = TypeParam;
    if constexpr (requires(V const& v) { v.hash(); }) {
        for (V const& value : valuesOf<V>()) {
            EXPECT_EQ(V(value).hash(), value.hash());
        }
        EXPECT_NE(numbered<V>(0).hash(), numbered<V>(1).hash());
    }
}

TYPED_TEST(EveryValue, EmptyListOfFieldsGivesTheDefault) {
    using V = TypeParam;
    std::string const text = std::string("Value('") + V::qorTypeName + "', ** {})";
    EXPECT_EQ(Qor::strepToValue<V>(std::string_view(text)), V());
}

TYPED_TEST(EveryValue, UnknownFieldIsRefusedByItsName) {
    using V = TypeParam;
    std::string const text = std::string("Value('") + V::qorTypeName + "', ** {'colour': 'red'})";
    EXPECT_EQ(refusal([&] { Qor::strepToValue<V>(std::string_view(text)); }),
              std::string(V::qorShortName) + " has no such attribute: colour");
}

TYPED_TEST(EveryValue, TextThatEndsWithinTheListIsRefused) {
    using V = TypeParam;
    std::string const text = std::string("Value('") + V::qorTypeName + "', ** { ";
    EXPECT_EQ(refusal([&] { Qor::strepToValue<V>(std::string_view(text)); }),
              std::string("premature end of value type ") + V::qorShortName);
}

TYPED_TEST(EveryValue, RestBehindTheTextIsJunk) {
    using V = TypeParam;
    std::string const text = std::string("Value('") + V::qorTypeName + "', ** {}) more";
    EXPECT_EQ(refusal([&] { Qor::strepToValue<V>(std::string_view(text)); }),
              "junk at column " + std::to_string(text.size() - 4) + " deserializing " + text);
}

}  // namespace
}  // namespace Contract
