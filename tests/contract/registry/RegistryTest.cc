// The running registry against the table, in both directions.
#include <algorithm>
#include <set>

#include <gtest/gtest.h>

#include <qor/registry/QorType.h>

#include "RegistryTable.h"

namespace Contract {

void PrintTo(RegisteredType const& type, std::ostream* out) { *out << type.name; }

namespace {

using Lines = std::vector<std::string>;

std::string joined(std::vector<RegisteredArgument> const& arguments) {
    std::string line = "(";
    for (auto const& argument : arguments) {
        line += " " + argument.name + " : " + argument.type;
    }
    return line + " )";
}

std::vector<RegisteredArgument> argumentsOf(std::span<Qor::QorAttr::Argument const> arguments) {
    std::vector<RegisteredArgument> all;
    for (auto const& argument : arguments) {
        all.push_back({std::string(argument.name.view()), std::string(argument.type.view())});
    }
    return all;
}

std::string nameOf(Qor::QorType const* type) {
    return type ? std::string(type->fullName().view()) : "";
}

std::string line(std::string const& name, int id, std::string const& valueType,
                 std::string const& keyType, Flags const& flags,
                 std::vector<RegisteredArgument> const& arguments) {
    char words[64];
    std::snprintf(words, sizeof words, " 0x%08X 0x%08X", flags.low, flags.high);
    return name + " " + std::to_string(id) + " : " + valueType + "[" + keyType + "]" + words +
           (flags.isFunction ? " function" : "") +
           (flags.isIndependentDomainAttr ? " independent" : "") +
           (flags.hasInternalIndex ? " internal index" : "") + " " + joined(arguments);
}

std::string lineOf(RegisteredAttribute const& a) {
    return line(a.name, a.id, a.valueType, a.keyType, a.flags, a.arguments);
}

std::string lineOf(Qor::QorAttr const& a) {
    auto const word = a.introspection();
    return line(std::string(a.name().view()), a.id(), nameOf(a.valueType()), nameOf(a.keyType()),
                {a.flags().low(), a.flags().high(), word.isFunction(),
                 word.isIndependentDomainAttr(), word.hasInternalIndex()},
                argumentsOf(a.arguments()));
}

Lines linesOf(Qor::QorType const& type, bool own) {
    Lines lines;
    for (auto const& attribute : type.attributes()) {
        if ((attribute->definedBy() == &type) == own) {
            lines.push_back(lineOf(*attribute));
        }
    }
    return lines;
}

class EveryRegisteredType : public testing::TestWithParam<RegisteredType> {
  protected:
    RegisteredType const& row_ = GetParam();
    Qor::QorType* const found_ = Qor::QorType::type(row_.name.c_str());

    void SetUp() override { ASSERT_TRUE(found_) << "is not published"; }
    Qor::QorType& type() const { return *found_; }
};

struct TypeName {
    std::string operator()(testing::TestParamInfo<RegisteredType> const& info) const {
        return info.param.name.substr(std::string("Vgw::").size());
    }
};

INSTANTIATE_TEST_SUITE_P(Table, EveryRegisteredType, testing::ValuesIn(registryTable()),
                         TypeName());

TEST_P(EveryRegisteredType, AnswersToItsFullNameAndItsLastComponent) {
    EXPECT_EQ(type().fullName(), row_.name.c_str());
    EXPECT_EQ(type().name(), row_.name.substr(std::string("Vgw::").size()).c_str());
}

TEST_P(EveryRegisteredType, IsOfItsSort) {
    EXPECT_EQ(type().isEnumType(), row_.sort == Sort::enumeration);
    EXPECT_EQ(type().isValue(), row_.sort != Sort::entity);
    EXPECT_EQ(type().isEntity(), row_.sort == Sort::entity);
    EXPECT_TRUE(type().hasGenericIfSupport());
    EXPECT_EQ(type().typeFlags(), 0U);
    EXPECT_FALSE(type().scope());
}

TEST_P(EveryRegisteredType, StandsBelowItsBaseOnce) {
    EXPECT_EQ(nameOf(type().base()), row_.base);
    if (type().base()) {
        EXPECT_EQ(std::ranges::count(type().base()->derivedTypes(), &type()), 1);
        EXPECT_TRUE(type().isA(*type().base()));
        EXPECT_FALSE(type().base()->isA(type()));
    }
}

TEST_P(EveryRegisteredType, TellsItsConstructorsArguments) {
    EXPECT_EQ(joined(argumentsOf(type().constructorArgs())), joined(row_.constructorArguments));
}

TEST_P(EveryRegisteredType, HasItsOwnAttributesInTheOrderOfTheirDefinition) {
    Lines expected;
    for (auto const& attribute : row_.own) {
        expected.push_back(lineOf(attribute));
    }
    EXPECT_EQ(linesOf(type(), true), expected);
}

TEST_P(EveryRegisteredType, InheritsInTheBasesOrderWhatItDoesNotDefineAnew) {
    std::set<std::string> own;
    for (auto const& attribute : row_.own) {
        own.insert(attribute.name);
    }
    Lines expected;
    if (type().base()) {
        for (auto const& attribute : type().base()->attributes()) {
            if (!own.contains(std::string(attribute->name().view()))) {
                expected.push_back(lineOf(*attribute));
            }
        }
    }
    EXPECT_EQ(linesOf(type(), false), expected);
}

TEST_P(EveryRegisteredType, HasWhatIsInheritedInFrontOfItsOwn) {
    auto const isOwn = [&](Qor::QorAttr::Ptr const& a) { return a->definedBy() == &type(); };
    EXPECT_TRUE(std::ranges::is_partitioned(type().attributes(), std::not_fn(isOwn)));
}

TEST_P(EveryRegisteredType, FindsEachAttributeByItsNameAndItsNumber) {
    for (auto const& attribute : type().attributes()) {
        EXPECT_EQ(type().attr(attribute->name()), attribute) << attribute->name();
        EXPECT_EQ(type().attr(attribute->id()), attribute) << attribute->name();
        EXPECT_EQ(attribute->owner(), &type()) << attribute->name();
    }
    EXPECT_FALSE(type().attr(Qor::Name("no such attribute")));
    EXPECT_FALSE(type().attr(Qor::AttributeId(31000)));
}

TEST_P(EveryRegisteredType, IsToldToWhatItsAttributesAreMadeOf) {
    for (auto const& attribute : type().attributes()) {
        auto const referring = attribute->valueType()->referringAttrs();
        EXPECT_EQ(std::ranges::count(referring, attribute.ptr()), 1) << attribute->name();
    }
}

TEST_P(EveryRegisteredType, CompletesByHandWhatHasArguments) {
    for (auto const& attribute : row_.own) {
        auto const record = type().attr(Qor::Name(attribute.name.c_str()));
        ASSERT_TRUE(record) << attribute.name;
        EXPECT_EQ(record->arguments().empty(), attribute.made == Made::step) << attribute.name;
        EXPECT_EQ(record->keyAttr() != nullptr, attribute.flags.hasInternalIndex);
        EXPECT_EQ(record->indexAttrName(), attribute.flags.hasInternalIndex ? "name" : "");
        EXPECT_FALSE(record->indexFlag()) << attribute.name;
    }
}

TEST_P(EveryRegisteredType, EnumerationHasAValueApartFromItsLiterals) {
    if (row_.sort != Sort::enumeration) {
        EXPECT_FALSE(type().valAttr());
        return;
    }
    ASSERT_TRUE(type().valAttr());
    EXPECT_EQ(type().valAttr()->name(), "value");
    EXPECT_EQ(type().valAttr()->id(), 1);
    EXPECT_EQ(type().attr(Qor::Name("value")), type().valAttr());
    EXPECT_EQ(type().attributes().size(), row_.own.size()) << "literals alone";
}

TEST_P(EveryRegisteredType, IsNeverDestroyed) { EXPECT_TRUE(type().isNondestructing()); }

TEST(Registry, PublishesNothingBesides) {
    std::set<std::string> expected;
    for (auto const& type : registryTable()) {
        expected.insert(type.name);
    }
    std::set<std::string> published;
    for (Qor::QorType const* const type : Qor::QorType::types()) {
        if (std::string const name = nameOf(type); name.starts_with("Vgw::")) {
            published.insert(name);
        }
    }
    EXPECT_EQ(published, expected);
    EXPECT_FALSE(Qor::QorType::type("Global")) << "a last component is no full name";
    EXPECT_FALSE(Qor::QorType::type("Vgw::Nobody"));
}

TEST(Registry, KeepsTheKeyInExactlyTheClassesThatOwningCollectionsHold) {
    std::set<std::string> owned;
    std::set<std::string> keyed;
    for (auto const& type : registryTable()) {
        for (auto const& attribute : type.own) {
            if (attribute.flags.hasInternalIndex) {
                owned.insert(attribute.valueType);
            }
            if (attribute.name == "fwkKey") {
                keyed.insert(type.name);
            }
        }
    }
    EXPECT_EQ(owned, keyed);
    EXPECT_EQ(keyed.size(), 8U);
}

}  // namespace
}  // namespace Contract
