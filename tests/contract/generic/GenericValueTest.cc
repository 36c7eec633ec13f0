// Wrappers over values: text in and out, members, operators, copies.
#include <set>

#include <qor/generic/Wrap.h>
#include <vgw/OvsdbDataTypesList.h>
#include <vgw/VgwTypesList.h>

#include "EveryWrapper.h"
#include "Samples.h"

namespace Contract {
namespace {

template <class... T>
using Types = Qor::TypeList<T...>;

using PlainTypes =
    Types<bool, Qor::U16, Qor::U32, Qor::U64, double, Qor::String8, Qor::Name, Kelp::IpAddr,
          Kelp::EthAddr, Vxlan::Vni, Vgw::MacVniPair, Vgw::PhysicalLocatorKey>;

/// Calls `visit` for every type that an attribute's value or key can have.
template <class Visit>
void forEachType(Visit visit) {
    PlainTypes::forEach(visit);
    Vgw::OvsdbDataTypesEnumerations::forEach(visit);
    Vgw::VgwTypesEnumerations::forEach(visit);
}

template <class T>
Wrapper wrapperOver(T const& value, bool isConst = false) {
    return Qor::typeOf<T>()->genericIf(static_cast<void const*>(&value), isConst);
}

std::string fullName(Qor::QorType const& type) { return std::string(type.fullName().view()); }

TEST(GenericValue, TextThatCameOutGoesInAgain) {
    forEachType([]<class T>() {
        Qor::QorType* const type = Qor::typeOf<T>();
        SCOPED_TRACE(fullName(*type));
        for (T const& value : samples<T>()) {
            Wrapper const wrapper = wrapperOver(value);
            using Qor::valueToStrep;
            EXPECT_EQ(wrapper->strRep(), valueToStrep(value));
            Wrapper const back = type->genericIfFromStrep(wrapper->strRep(), true);
            EXPECT_EQ(back->fwkType(), type);
            EXPECT_TRUE(back->isConst());
            EXPECT_EQ(*static_cast<T const*>(back->genericValue(type)), value);
        }
    });
}

TEST(GenericValue, EveryTypeOfEveryAttributeIsAmongThem) {
    std::set<std::string> covered;
    forEachType([&]<class T>() { covered.insert(fullName(*Qor::typeOf<T>())); });
    for (Qor::QorType const* const type : Qor::QorType::types()) {
        if (!fullName(*type).starts_with("Vgw::")) {
            continue;
        }
        for (auto const& attribute : type->attributes()) {
            for (Qor::QorType const* const used : {attribute->valueType(), attribute->keyType()}) {
                if (used && used->isValue() && fullName(*used) != "void*") {
                    EXPECT_TRUE(covered.contains(fullName(*used)))
                        << fullName(*used) << " of " << fullName(*type);
                }
            }
        }
    }
}

TEST(GenericValue, TextWithSomethingBehindItIsRefused) {
    forEachType([]<class T>() {
        Qor::QorType* const type = Qor::typeOf<T>();
        SCOPED_TRACE(fullName(*type));
        Qor::String8 const text = wrapperOver(numbered<T>(1))->strRep() + " x";
        EXPECT_THROW(type->genericIfFromStrep(text, false), Qor::RangeException);
        EXPECT_THROW(type->genericIfFromStrep("", false), Qor::RangeException);
    });
}

TEST(GenericValue, CopyIsOfTheSameClassValueAndConstness) {
    forEachType([]<class T>() {
        for (bool const isConst : {false, true}) {
            Wrapper const copy = wrapperOver(numbered<T>(1), isConst)->genericClone();
            EXPECT_EQ(copy->fwkType(), Qor::typeOf<T>());
            EXPECT_EQ(copy->isConst(), isConst);
            EXPECT_EQ(*static_cast<T const*>(copy->genericValue(Qor::typeOf<T>())), numbered<T>(1));
        }
    });
}

struct AnyType {
    Wrapper wrapper;
    Qor::QorType const* type;
    bool isText;
};

TEST(GenericValue, OtherTypeThanItsOwnIsRefusedByItsShortName) {
    std::vector<AnyType> all;
    forEachType([&]<class T>() {
        bool const isText = std::is_base_of_v<Qor::String8, T>;
        all.push_back({wrapperOver(numbered<T>(1)), Qor::typeOf<T>(), isText});
    });
    for (AnyType const& own : all) {
        std::string const refusal = "type " + std::string(own.wrapper->fwkType()->qorName().view());
        for (AnyType const& other : all) {
            if (own.type != other.type && !(own.isText && other.isText)) {
                EXPECT_EQ(raised([&] { own.wrapper->genericValue(other.type); }), refusal);
            }
        }
        EXPECT_EQ(raised([&] { own.wrapper->genericValue(Qor::Entity::_fwkType()); }), refusal);
    }
}

bool answer(Wrapper const& wrapper, unsigned op, Wrapper const& rhs) {
    Wrapper const result = wrapper->attributeOp(0, OpId(op), rhs);
    return *static_cast<bool const*>(result->genericValue(Qor::typeOf<bool>()));
}

TEST(GenericValue, OperatorsAnswerAsTheClassesOwn) {
    EXPECT_FALSE(answer(wrapperOver(Vgw::PhysicalLocatorKey(Vgw::unknownEncapType, Kelp::IpAddr())),
                        262, nullptr))
        << "no address, but a kind of encapsulation of its own";
    Types<Vgw::MacVniPair, Vgw::PhysicalLocatorKey>::forEach([]<class V>() {
        std::vector<V> values = samples<V>();
        values.push_back(V());
        for (V const& a : values) {
            for (V const& b : values) {
                Wrapper const lhs = wrapperOver(a, true);
                Wrapper const rhs = wrapperOver(b);
                EXPECT_EQ(answer(lhs, 256, rhs), a == b);
                EXPECT_EQ(answer(lhs, 257, rhs), a != b);
                EXPECT_EQ(answer(lhs, 258, rhs), a > b);
                EXPECT_EQ(answer(lhs, 259, rhs), a < b);
                EXPECT_EQ(answer(lhs, 260, rhs), a >= b);
                EXPECT_EQ(answer(lhs, 261, rhs), a <= b);
            }
            EXPECT_EQ(answer(wrapperOver(a), 262, nullptr), a == V());
        }
    });
}

TEST(GenericValue, OperatorWithoutItsArgumentIsRefused) {
    for (char const* const type :
         {"Vgw::MacVniPair", "Vgw::PhysicalLocatorKey", "Vgw::CliDefaults"}) {
        Wrapper const value =
            Qor::QorType::type(type)->genericIf(static_cast<void const*>(nullptr), false);
        for (unsigned const op : {256U, 257U}) {
            EXPECT_EQ(raised([&] { answer(value, op, nullptr); }), "type qorOpArg") << type;
            EXPECT_EQ(raised([&] { answer(value, op, valueOf("U16", "7")); }), "type U16") << type;
        }
        EXPECT_TRUE(raised([&] { answer(value, 263, value); }).starts_with("unknown attribute "));
    }
}

TEST(GenericValue, MembersAreReadByTheirNumbers) {
    Vgw::MacVniPair const pair(Kelp::EthAddr("00:00:5e:00:53:01"), Vxlan::Vni(5000));
    Wrapper const wrapper = wrapperOver(pair);
    auto const member = [&](int id) { return wrappedText(wrapper->attributeOp(id).ptr()); };
    EXPECT_EQ(member(2), "'00:00:5e:00:53:01'");
    EXPECT_EQ(member(3), "5000");
    EXPECT_EQ(member(4), std::to_string(pair.hash()));
    EXPECT_EQ(wrapper->attributeId("vni"), 3);
    EXPECT_EQ(wrapper->attributeString(4), "hash");
    Vgw::PhysicalLocatorKey const key(Vgw::unknownEncapType, Kelp::IpAddr("192.0.2.1"));
    EXPECT_EQ(wrappedText(wrapperOver(key)->attributeOp(2).ptr()), "'unknownEncapType'");
    EXPECT_EQ(wrappedText(wrapperOver(key)->attributeOp(3).ptr()), "'192.0.2.1'");
    EXPECT_EQ(wrappedText(wrapperOver(key)->attributeOp(4).ptr()), std::to_string(key.hash()));
}

TEST(GenericValue, MemberTakesNoKeyAndIsNotWritten) {
    Wrapper const wrapper = wrapperOver(Vgw::MacVniPair());
    Wrapper const vni = valueOf("Vxlan::Vni", "1");
    EXPECT_EQ(raised([&] { wrapper->attributeOp(3, OpId::opGet, vni); }), "no key vni");
    EXPECT_EQ(raised([&] { wrapper->attributeOp(3, OpId::opSet, nullptr, vni); }),
              "operation 128 of vni");
    EXPECT_TRUE(raised([&] { wrapper->attributeOp(9); }).starts_with("unknown attribute "));
    Wrapper const readOnly = wrapperOver(Vgw::MacVniPair(), true);
    for (int const id : {0, 3, 9}) {
        for (unsigned const op : {128U, 129U, 255U}) {
            EXPECT_EQ(raised([&] { readOnly->attributeOp(id, OpId(op), nullptr, vni); }),
                      "const attempting to modify a const instance");
        }
    }
    EXPECT_EQ(raised([&] { readOnly->attributeOp(3, OpId(127)); }), "operation 127 of vni");
}

TEST(GenericValue, DefaultsOfTheConfigurationAreItsConstants) {
    Wrapper const defaults = wrapperOver(Vgw::CliDefaults());
    std::pair<char const*, char const*> const expected[] = {
        {"enableAgent", "false"},     {"enableOvsdb", "true"},     {"vtepListType", "'sendToAny'"},
        {"managerIp", "'0.0.0.0'"},   {"managerPort", "6632"},     {"persistDatabase", "true"},
        {"logConsole", "'disabled'"}, {"logSyslog", "'disabled'"}, {"logFile", "'disabled'"}};
    int id = 2;
    for (auto const& [name, text] : expected) {
        EXPECT_EQ(defaults->attributeId(name), id);
        EXPECT_EQ(wrappedText(defaults->attributeOp(id++).ptr()), text) << name;
    }
    EXPECT_TRUE(answer(defaults, 256, wrapperOver(Vgw::CliDefaults())));
    EXPECT_FALSE(answer(defaults, 257, wrapperOver(Vgw::CliDefaults())));
    EXPECT_TRUE(answer(defaults, 262, nullptr));
    for (unsigned const op : {258U, 259U, 260U, 261U}) {
        EXPECT_TRUE(raised([&] {
                        answer(defaults, op, defaults);
                    }).starts_with("operation " + std::to_string(op) + " of "));
    }
}

TEST(GenericValue, TextOfTheDefaultsIsEmptyAndIsNotRead) {
    Qor::QorType* const type = Qor::QorType::type("Vgw::CliDefaults");
    EXPECT_EQ(wrapperOver(Vgw::CliDefaults())->strRep(), "");
    EXPECT_THROW(type->genericIfFromStrep("", false), Qor::RangeException);
    EXPECT_TRUE(type->genericIfFromStrep("Value('Vgw::CliDefaults', ** {})", false));
}

TEST(GenericValue, EnumeratorHasItsValueAndNothingElse) {
    auto const check = []<class E>() {
        for (unsigned i = 0; i < Qor::EnumTable<E>::names.size(); ++i) {
            Wrapper const wrapper = wrapperOver(static_cast<E>(i));
            Wrapper const value = wrapper->attributeOp(1);
            ASSERT_TRUE(value);
            EXPECT_NE(value, wrapper);
            EXPECT_EQ(value->fwkType(), wrapper->fwkType());
            EXPECT_EQ(value->strRep(), wrapper->strRep());
            for (int const id : {0, 2, 3, 258, -1}) {
                EXPECT_EQ(raised([&] { wrapper->attributeOp(id); }),
                          std::string("unknown attribute ") + Qor::EnumTable<E>::type);
            }
        }
    };
    Vgw::OvsdbDataTypesEnumerations::forEach(check);
    Vgw::VgwTypesEnumerations::forEach(check);
}

TEST(GenericValue, ConstEnumeratorIsAskedNothingElseFirst) {
    auto const check = []<class E>() {
        Wrapper const readOnly = wrapperOver(static_cast<E>(0), true);
        for (int const id : {0, 1, 258, -1}) {
            for (unsigned const op : {128U, 129U, 255U}) {
                EXPECT_EQ(raised([&] { readOnly->attributeOp(id, OpId(op)); }),
                          "const attempting to modify a const instance");
            }
            for (unsigned const op : {0U, 127U, 256U}) {
                EXPECT_EQ(raised([&] { readOnly->attributeOp(id, OpId(op)); }),
                          id == 1 ? "nothing"
                                  : std::string("unknown attribute ") + Qor::EnumTable<E>::type);
            }
        }
    };
    Vgw::OvsdbDataTypesEnumerations::forEach(check);
    Vgw::VgwTypesEnumerations::forEach(check);
}

TEST(GenericValue, EnumeratorsOneAttributeIsNamedValue) {
    auto const check = []<class E>() {
        Wrapper const wrapper = wrapperOver(static_cast<E>(0));
        EXPECT_EQ(wrapper->attributeId("value"), 1);
        EXPECT_EQ(wrapper->attributeString(1), "value");
        EXPECT_EQ(wrapper->attributeString(0), Qor::EnumTable<E>::names[0]);
        EXPECT_EQ(wrapper->attributeString(258), "unknown");
    };
    Vgw::OvsdbDataTypesEnumerations::forEach(check);
    Vgw::VgwTypesEnumerations::forEach(check);
}

TEST(GenericValue, KnowsNoEntityAndNoCollection) {
    Wrapper const wrapper = wrapperOver(Vgw::MacVniPair());
    EXPECT_FALSE(wrapper->entity());
    EXPECT_FALSE(wrapper->entityConst());
    EXPECT_TRUE(raised([&] { wrapper->attributeIteratorConst(2); }).starts_with("unknown"));
}

}  // namespace
}  // namespace Contract
