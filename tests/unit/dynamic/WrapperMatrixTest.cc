// The wrapper over a dynamic entity beside that of the compiled class: every class, attribute and
// operation, with each right and wrong key and value. What comes back, what is refused and in which
// words, and what is held afterwards is the same.
#include "Described.h"
#include "Tree.h"

#include <qor/core/Exception.h>
#include <qor/dynamic/DynamicEntity.h>
#include <qor/generic/GenericException.h>

#include <gtest/gtest.h>

#include <typeinfo>

namespace {

using Qor::GenericIf;
using Qor::Name;
using Qor::QorType;
using Tree::Wrapper;

// The same argument for both sides.
struct Pair {
    Wrapper compiled;
    Wrapper described;
};

Pair value(QorType& type, std::string const& text) {
    bool const isOurs = type.fullName().view().starts_with("Vgw::");
    QorType& twin = isOurs ? Described::twin(type) : type;
    return {Tree::valueOf(type, text), Tree::valueOf(twin, Described::renamed(text))};
}

Pair value(char const* type, char const* text) { return value(*QorType::type(type), text); }

Pair listOf(Pair const& argument) {
    return {Tree::listOf(argument.compiled), Tree::listOf(argument.described)};
}

Pair instanceOf(QorType& type, char const* name, bool isConst = false) {
    auto const compiled = type.newInstance(Name(name));
    auto const described = Described::twin(type).newInstance(Name(name));
    return {compiled->fwkType()->genericIf_(compiled.ptr(), isConst),
            described->fwkType()->genericIf_(described.ptr(), isConst)};
}

Pair noEntity(QorType& type) {
    return {type.genericIf_(nullptr, false), Described::twin(type).genericIf_(nullptr, false)};
}

// Keys or values for an attribute: of its own type, of other types, and none.
std::vector<Pair> argumentsFor(QorType* type, Tree::Random& random) {
    std::vector<Pair> result{Pair{},
                             value("U16", "1"),
                             value("Qor::String8", "'a'"),
                             value("bool", "true"),
                             value("Vgw::VtepListType", "'sendToAny'"),
                             listOf(value("Qor::Name", "'child'")),
                             listOf(value("U32", "1")),
                             listOf(Pair{})};
    if (!type || type->fullName() == "void*") return result;
    bool const isValue = type->isValue();
    if (isValue) {
        auto const text = Tree::textOf(random, *type);
        result.push_back(value(*type, text.size() < 1000 ? text : "'short'"));
    } else if (type->fullName().view().starts_with("Vgw::")) {
        result.push_back(instanceOf(*type, "row"));
        result.push_back(instanceOf(*type, "row", true));
        result.push_back(noEntity(*type));
        result.push_back(instanceOf(*QorType::type("Vgw::Config"), "other"));
    }
    return result;
}

std::string outcome(Wrapper const& at, GenericIf::AttributeOp const& op, Wrapper const& key,
                    Wrapper const& argument) {
    try {
        Wrapper const result = at->attributeOp(op, key, argument);
        if (!result) return "no result";
        return Tree::plain(result->fwkType()->fullName().view()) + " " +
               Tree::plain(result->strRep().view()) + (result->isConst() ? " const" : "");
    } catch (Qor::Exception const& refused) {
        return std::string(typeid(refused).name()) + " " + Tree::plain(refused.what());
    }
}

class WrapperMatrix : public testing::TestWithParam<char const*> {
  protected:
    QorType& type() const { return *QorType::type(GetParam()); }

    void compare(Pair const& at, QorType* keyType, QorType* valueType,
                 GenericIf::AttributeOp const& op) {
        auto const values = argumentsFor(valueType, random);
        for (Pair const& key : argumentsFor(keyType, random)) {
            for (Pair const& argument : values) {
                ASSERT_EQ(outcome(at.described, op, key.described, argument.described),
                          outcome(at.compiled, op, key.compiled, argument.compiled))
                    << GetParam() << " attribute " << op.attributeId << " operation " << op.opId;
                ++compared;
            }
        }
    }

    Tree::Random random{7};
    unsigned compared = 0;
    static constexpr unsigned operations[] = {0, 1, 2, 3, 127, 128, 129, 200, 256, 257, 262, 300};
};

TEST_P(WrapperMatrix, DoesAndRefusesWhatTheCompiledOneDoes) {
    Pair const writable = instanceOf(type(), "x");
    Pair const readOnly = instanceOf(type(), "x", true);
    for (auto const& attribute : type().attributes()) {
        bool const isOperation = attribute->introspection().isFunction() && attribute->id() >= 256;
        for (unsigned const number : operations) {
            auto const opId = static_cast<Tree::OpId>(number);
            // To call is what a description can't do.
            if (isOperation && opId == Tree::OpId::opGet) continue;
            GenericIf::AttributeOp const op{attribute->id(), opId};
            compare(writable, attribute->keyType(), attribute->valueType(), op);
            compare(readOnly, attribute->keyType(), attribute->valueType(), op);
        }
        ASSERT_EQ(Tree::dump(writable.described->entity()), Tree::dump(writable.compiled->entity()))
            << GetParam() << " after " << attribute->name().charPtr();
    }
    for (unsigned const number : operations) {
        GenericIf::AttributeOp const op{9999, static_cast<Tree::OpId>(number)};
        compare(writable, nullptr, nullptr, op);
        compare(noEntity(type()), nullptr, nullptr, op);
        compare(noEntity(type()), nullptr, nullptr, {6, op.opId});
    }
    EXPECT_GT(compared, 3000U);
}

TEST_P(WrapperMatrix, NamesAttributesAlike) {
    Pair const at = instanceOf(type(), "x");
    for (auto const& attribute : type().attributes()) {
        EXPECT_EQ(at.described->attributeId(attribute->name()), attribute->id());
        EXPECT_EQ(at.described->attributeString(attribute->id()),
                  at.compiled->attributeString(attribute->id()));
    }
    EXPECT_EQ(at.described->attributeString(9999), "unknown");
    EXPECT_THROW(at.described->attributeId("nothing"), Qor::Exception);
}

TEST_P(WrapperMatrix, WalksFromTheSameKeysInTheSameOrder) {
    Pair const at = instanceOf(type(), "x");
    for (auto const* attribute : Tree::attributesOf(type())) {
        if (!attribute->flags().isCollection()) continue;
        bool const isValues = !attribute->flags().isEntity();
        for (int i = 0; isValues && i < 8; ++i) {
            auto const key =
                value(*attribute->keyType(), Tree::keyOf(random, *attribute->keyType()));
            bool const isFlag = attribute->valueType()->fullName() == "bool";
            auto const held = value(*attribute->valueType(), isFlag ? "true" : "'text'");
            at.compiled->attributeOp(attribute->id(), Tree::OpId::opSet, key.compiled,
                                     held.compiled);
            at.described->attributeOp(attribute->id(), Tree::OpId::opSet, key.described,
                                      held.described);
        }
        auto const from = value(*attribute->keyType(), Tree::keyOf(random, *attribute->keyType()));
        auto one = at.compiled->attributeIteratorKeyConst(attribute->id(), from.compiled);
        auto other = at.described->attributeIteratorKeyConst(attribute->id(), from.described);
        auto const copy = other;
        for (; one && other; ++one, ++other) {
            EXPECT_EQ(Tree::plain(other.key()->strRep().view()),
                      Tree::plain(one.key()->strRep().view()));
            EXPECT_EQ(other.value()->strRep(), one.value()->strRep());
            EXPECT_TRUE(other.key()->isConst());
        }
        EXPECT_EQ(static_cast<bool>(other), static_cast<bool>(one));
        EXPECT_EQ(static_cast<bool>(copy), static_cast<bool>(at.compiled->attributeIteratorKeyConst(
                                               attribute->id(), from.compiled)));
    }
}

INSTANTIATE_TEST_SUITE_P(
    EveryClass, WrapperMatrix,
    testing::Values("Vgw::OvsdbDataModel", "Vgw::Global", "Vgw::Manager", "Vgw::BackupManager",
                    "Vgw::PhysicalSwitch", "Vgw::PhysicalPort", "Vgw::LogicalBindingStats",
                    "Vgw::LogicalSwitch", "Vgw::UcastMacsLocal", "Vgw::McastMacsLocal",
                    "Vgw::UcastMacsRemote", "Vgw::McastMacsRemote", "Vgw::PhysicalLocator",
                    "Vgw::PhysicalLocatorSet", "Vgw::HwVtepOvsdb", "Vgw::OvsdbSessionStatus",
                    "Vgw::Status", "Vgw::Config", "Vgw::CliConfig"));

// Values: text forms, members and operators.
TEST(DescribedValues, ReadPrintAndRefuseTheTextsOfTheirClasses) {
    for (char const* const name : {"Vgw::MacVniPair", "Vgw::PhysicalLocatorKey", "Vgw::CliDefaults",
                                   "Vgw::VtepListType", "Vgw::EncapsulationType"}) {
        QorType& type = *QorType::type(name);
        QorType& twin = Described::twin(type);
        for (std::string const text :
             {"", "'sendToAny'", "'nothing'", "sendToAny", "'vxlan_over_ipv4' x",
              "Value('Vgw::MacVniPair', ** {'mac': '00:00:5e:00:53:01', 'vni': 7})",
              "Value('Vgw::MacVniPair', ** {'vni': 7, 'vni': 8})",
              "Value('Vgw::MacVniPair', ** {'vni': 16777216})",
              "Value('Vgw::MacVniPair', ** {'vni': 7", "Value('Vgw::MacVniPair', ** {'x': 7})",
              "Value('Vgw::PhysicalLocatorKey', ** {'dstIp': '192.0.2.1'})",
              "Value('Vgw::PhysicalLocatorKey', ** {'encapType': 'none'})"}) {
            auto const read = [](QorType& of, std::string const& from) -> std::string {
                try {
                    return Tree::plain(of.genericIfFromStrep(from.c_str(), false)->strRep().view());
                } catch (Qor::Exception const& refused) {
                    return std::string(typeid(refused).name()) + Tree::plain(refused.what());
                }
            };
            bool const isConstants = type.fullName() == "Vgw::CliDefaults";
            if (isConstants) continue;
            EXPECT_EQ(read(twin, Described::renamed(text)), read(type, text)) << name << text;
        }
        Pair const initial{type.genericIf(static_cast<void const*>(nullptr), true),
                           twin.genericIf(static_cast<void const*>(nullptr), true)};
        EXPECT_EQ(Tree::plain(initial.described->strRep().view()),
                  Tree::plain(initial.compiled->strRep().view()));
        for (auto const& member : type.attributes()) {
            for (unsigned const op : {0U, 1U, 128U}) {
                GenericIf::AttributeOp const asked{member->id(), static_cast<Tree::OpId>(op)};
                EXPECT_EQ(outcome(initial.described, asked, nullptr, nullptr),
                          outcome(initial.compiled, asked, nullptr, nullptr))
                    << name << " " << member->name().charPtr();
            }
        }
    }
}

TEST(DescribedValues, ConstEnumeratorIsAskedNothingElseFirst) {
    auto const readOnly =
        Described::twin("Vgw::VtepListType").genericIf(static_cast<void const*>(nullptr), true);
    for (int const id : {0, 1, 9999}) {
        for (unsigned const op : {128U, 129U, 255U}) {
            GenericIf::AttributeOp const asked{id, static_cast<Tree::OpId>(op)};
            EXPECT_THROW(readOnly->attributeOp(asked, nullptr, nullptr), Qor::ConstException);
        }
    }
    EXPECT_TRUE(readOnly->attributeOp(1));
    EXPECT_THROW(readOnly->attributeOp(9999), Qor::UnknownAttrException);
}

TEST(DescribedValues, EnumeratorsOneAttributeIsNamedValue) {
    auto const at = value("Vgw::VtepListType", "'sendToAll'");
    EXPECT_EQ(at.described->attributeId("value"), 1);
    for (int const id : {0, 1, 2}) {
        EXPECT_EQ(at.described->attributeString(id), at.compiled->attributeString(id)) << id;
    }
    EXPECT_EQ(at.described->attributeString(1), "value");
}

TEST(DescribedValues, CompareAsTheirClassesDo) {
    auto const one = value("Vgw::MacVniPair", "Value('Vgw::MacVniPair', ** {'vni': 7})");
    auto const same = value("Vgw::MacVniPair", "Value('Vgw::MacVniPair', ** {'vni': 7})");
    auto const other = value("Vgw::MacVniPair", "Value('Vgw::MacVniPair', ** {'vni': 8})");
    for (unsigned const op : {256U, 257U, 262U, 263U}) {
        for (Pair const& rhs : {same, other, Pair{}, value("U32", "7")}) {
            GenericIf::AttributeOp const asked{0, static_cast<Tree::OpId>(op)};
            EXPECT_EQ(outcome(one.described, asked, rhs.described, nullptr),
                      outcome(one.compiled, asked, rhs.compiled, nullptr))
                << op;
        }
    }
}

TEST(DescribedValues, AreMadeFromArguments) {
    auto const mac = value("Kelp::EthAddr", "'00:00:5e:00:53:01'");
    auto const vni = value("Vxlan::Vni", "7");
    QorType& type = *QorType::type("Vgw::MacVniPair");
    auto const made = [](QorType& of, std::vector<Wrapper> const& arguments) -> std::string {
        GenericIf::List::Queue queue;
        for (Wrapper const& argument : arguments) queue.enq(argument);
        auto const list = Qor::make<GenericIf::List_>(queue);
        try {
            return Tree::plain(of.genericIf(list.ptr(), false)->strRep().view());
        } catch (Qor::Exception const& refused) {
            return std::string(typeid(refused).name()) + refused.what();
        }
    };
    for (std::vector<Wrapper> const& arguments : {std::vector<Wrapper>{mac.compiled, vni.compiled},
                                                  {mac.compiled},
                                                  {vni.compiled},
                                                  {nullptr, vni.compiled},
                                                  {mac.compiled, vni.compiled, vni.compiled}}) {
        EXPECT_EQ(made(Described::twin(type), arguments), made(type, arguments));
    }
}

}  // namespace
