// Descriptions that can't be: each is refused by name, and leaves no trace.
#include "Described.h"

#include <qor/core/Exception.h>
#include <qor/core/Format.h>
#include <qor/dynamic/DescriptionCheck.h>
#include <qor/registry/Builtin.h>

#include <gtest/gtest.h>

namespace {

using Qor::AttributeId;
using Qor::Name;
using Qor::QorType;
using Qor::TypeDescription;
using Kind = TypeDescription::Kind;

TypeDescription entity(char const* name, char const* base = "Qor::Entity") {
    TypeDescription result;
    result.fullName = Name(name);
    result.base = Name(base);
    result.kind = Kind::entity;
    result.constructorArgs = {{"name", "Qor::Name"}};
    return result;
}

TypeDescription::Attribute scalar(AttributeId id, char const* name, char const* type) {
    return {id,
            Name(name),
            Name(type),
            Name(),
            Qor::FlagClasses::scalar.flags,
            Qor::FlagClasses::scalar.introspection,
            Name(),
            {}};
}

TypeDescription::Attribute field(AttributeId id, char const* name, char const* type) {
    return {id,
            Name(name),
            Name(type),
            Name(),
            Qor::FlagClasses::constField.flags,
            Qor::FlagClasses::constField.introspection,
            Name(),
            {}};
}

TypeDescription value(char const* name) {
    TypeDescription result;
    result.fullName = Name(name);
    result.kind = Kind::value;
    return result;
}

// What is said of the set; empty if it is taken.
std::string refusalOf(std::vector<TypeDescription> const& descriptions) {
    auto const before = QorType::types();
    std::size_t const referring = Qor::Builtin<Qor::U32>::_fwkType()->referringAttrs().size();
    std::size_t const derived = Qor::Entity::_fwkType()->derivedTypes().size();
    try {
        Described::take(descriptions);
        return "";
    } catch (Qor::Exception const& refused) {
        EXPECT_EQ(QorType::types(), before);
        EXPECT_EQ(Qor::Builtin<Qor::U32>::_fwkType()->referringAttrs().size(), referring);
        EXPECT_EQ(Qor::Entity::_fwkType()->derivedTypes().size(), derived);
        return refused.what();
    }
}

TEST(HostileDescriptions, BasesInACircle) {
    EXPECT_EQ(refusalOf({entity("H::A", "H::B"), entity("H::B", "H::A")}),
              "the description of H::A: its bases go round in a circle, or do not end");
    EXPECT_EQ(refusalOf({entity("H::A", "H::A")}),
              "the description of H::A: its bases go round in a circle, or do not end");
}

TEST(HostileDescriptions, BasesThatDoNotEnd) {
    std::vector<TypeDescription> chain{entity("H::L0")};
    for (int i = 1; i < 80; ++i) {
        chain.push_back(
            entity(Qor::format("H::L%d", i).charPtr(), Qor::format("H::L%d", i - 1).charPtr()));
    }
    EXPECT_NE(refusalOf(chain).find("its bases go round in a circle, or do not end"),
              std::string::npos);
}

TEST(HostileDescriptions, BaseThatIsNone) {
    EXPECT_EQ(refusalOf({entity("H::A", "H::Gone")}),
              "the description of H::A: its base H::Gone is no entity that is known");
    EXPECT_EQ(refusalOf({entity("H::A", "U32")}),
              "the description of H::A: its base U32 is no entity that is known");
}

TEST(HostileDescriptions, NumbersAndNamesThatStandTwice) {
    auto twice = entity("H::A");
    twice.attributes = {scalar(258, "a", "U32"), scalar(258, "b", "U32")};
    EXPECT_EQ(refusalOf({twice}), "the description of H::A: b stands twice, by name or number");
    twice.attributes = {scalar(258, "a", "U32"), scalar(259, "a", "U32")};
    EXPECT_EQ(refusalOf({twice}), "the description of H::A: a stands twice, by name or number");
}

TEST(HostileDescriptions, NumberOfABaseWithAnotherMeaning) {
    auto base = entity("H::Base");
    base.attributes = {scalar(258, "a", "U32")};
    auto derived = entity("H::Derived", "H::Base");
    derived.attributes = {scalar(258, "b", "U32")};
    EXPECT_EQ(refusalOf({base, derived}),
              "the description of H::Derived: b has the number 258 of a");
}

TEST(HostileDescriptions, NamesWithOtherThanLettersAndDigits) {
    EXPECT_EQ(refusalOf({entity("H::\x01")}), "the description of a type without a proper name");
    EXPECT_EQ(refusalOf({entity("")}), "the description of a type without a proper name");
    EXPECT_EQ(refusalOf({entity(std::string(300, 'H').c_str())}),
              "the description of a type without a proper name");
    auto control = entity("H::A");
    control.attributes = {scalar(258, "a\n", "U32")};
    EXPECT_EQ(refusalOf({control}), "the description of H::A: an attribute without a proper name");
    control.attributes = {scalar(-258, "a", "U32")};
    EXPECT_EQ(refusalOf({control}), "the description of H::A: a has a number below zero");
    control.attributes = {scalar(258, "a", "")};
    EXPECT_EQ(refusalOf({control}), "the description of H::A: a has no proper type");
}

TEST(HostileDescriptions, AttributeOfATypeThatIsNotKnown) {
    auto lost = entity("H::A");
    lost.attributes = {scalar(258, "a", "H::Lost")};
    EXPECT_EQ(refusalOf({lost}), "the description of H::A: a is of a type that is not known");
}

TEST(HostileDescriptions, ValuesInACircle) {
    auto one = value("H::V");
    one.attributes = {field(2, "f", "H::W")};
    auto other = value("H::W");
    other.attributes = {field(2, "f", "H::V")};
    EXPECT_NE(refusalOf({one, other}).find("its fields go round in a circle, or do not end"),
              std::string::npos);
    one.attributes = {field(2, "f", "H::V")};
    EXPECT_EQ(refusalOf({one}),
              "the description of H::V: its fields go round in a circle, or do not end");
}

TEST(HostileDescriptions, ValuesThatDoubleWithEachLevel) {
    std::vector<TypeDescription> levels;
    for (int i = 0; i < 40; ++i) {
        auto level = value(Qor::format("H::D%d", i).charPtr());
        auto const below = i == 0 ? Qor::String8("U32") : Qor::format("H::D%d", i - 1);
        level.attributes = {field(2, "a", below.charPtr()), field(3, "b", below.charPtr())};
        levels.push_back(level);
    }
    EXPECT_NE(refusalOf(levels).find("more fields than a value may have"), std::string::npos);
}

TEST(HostileDescriptions, EntityWithinAValue) {
    auto odd = value("H::V");
    odd.attributes = {field(2, "f", "Qor::Entity")};
    EXPECT_EQ(refusalOf({odd}), "the description of H::V: f is an entity within a value");
}

TEST(HostileDescriptions, LiteralOfAnotherType) {
    TypeDescription odd;
    odd.fullName = Name("H::E");
    odd.kind = Kind::enumeration;
    odd.attributes = {scalar(0, "a", "U32")};
    EXPECT_EQ(refusalOf({odd}), "the description of H::E: a is no attribute of such a type");
}

TEST(HostileDescriptions, InitialValueThatIsNone) {
    auto odd = entity("H::A");
    odd.attributes = {scalar(258, "a", "U32")};
    odd.initials = {{258, "'text'"}};
    std::string const said = refusalOf({odd});
    EXPECT_TRUE(said.starts_with("the description of H::A: ")) << said;
}

// Types end in any order then, and those of values may go first.
TEST(HostileDescriptions, SetWithCompositeValuesThatIsRefusedAtItsLastInitialValueEnds) {
    auto inner = value("H::A1Inner");
    inner.attributes = {field(2, "f", "U32")};
    auto outer = value("H::A2Outer");
    outer.attributes = {field(2, "f", "H::A1Inner")};
    auto odd = entity("H::Z");
    odd.attributes = {scalar(258, "key", "H::A2Outer"), scalar(259, "a", "U32")};
    odd.initials = {{258, "Value('H::A2Outer', ** {})"}, {259, "'text'"}};
    EXPECT_NE(refusalOf({inner, outer, odd}), "");
}

TEST(HostileDescriptions, MoreAttributesThanASetMayHave) {
    auto base = entity("H::Wide");
    for (AttributeId id = 258; id < 258 + 2000; ++id) {
        base.attributes.push_back(scalar(id, Qor::format("a%d", id).charPtr(), "U32"));
    }
    std::vector<TypeDescription> many{base};
    for (int i = 0; i < 40; ++i) {
        many.push_back(entity(Qor::format("H::W%d", i).charPtr(), "H::Wide"));
    }
    EXPECT_NE(refusalOf(many).find("more attributes than a type, or a set of them, may have"),
              std::string::npos);
}

TEST(HostileDescriptions, MorePartsThanATypeMayHave) {
    auto const refused = [](std::string_view what) {
        return "the description of H::A: more " + std::string(what) + " than it may have";
    };
    auto one = entity("H::A");
    one.constructorArgs.assign(65, {"name", "Qor::Name"});
    EXPECT_EQ(refusalOf({one}), refused("arguments"));
    one = entity("H::A");
    one.attributes = {scalar(258, "a", "U32")};
    one.attributes.front().arguments.assign(65, {"name", "Qor::Name"});
    EXPECT_EQ(refusalOf({one}), refused("arguments"));
    one = entity("H::A");
    one.attributes.assign(2049, scalar(258, "a", "U32"));
    EXPECT_EQ(refusalOf({one}), refused("attributes"));
    one = entity("H::A");
    one.initials.assign(2049, {258, "1"});
    EXPECT_EQ(refusalOf({one}), refused("initial values"));
    one = value("H::A");
    one.hashOrder.assign(1025, 0);
    EXPECT_EQ(refusalOf({one}), refused("fields of a hash"));
}

TEST(HostileDescriptions, TypeThatCameTwice) {
    EXPECT_EQ(refusalOf({entity("H::A"), entity("H::A")}),
              "the description of H::A: it came twice");
}

TEST(HostileDescriptions, MoreTypesThanTheQuota) {
    Qor::DescribedTypes::Quota quota;
    quota.types = 1;
    Qor::DescribedTypes types(quota);
    Described::take(types, entity("H::A"));
    EXPECT_THROW(Described::take(types, entity("H::B")), Qor::RangeException);
}

TEST(HostileDescriptions, MoreBytesThanTheQuota) {
    Qor::DescribedTypes::Quota quota;
    quota.bytes = 60;
    Qor::DescribedTypes types(quota);
    EXPECT_THROW(
        {
            Described::take(types, entity("H::A"));
            Described::take(types, entity("H::B"));
        },
        Qor::RangeException);
}

TEST(HostileDescriptions, OfAnUnknownKindOrCutShort) {
    auto odd = entity("H::A");
    odd.kind = static_cast<Kind>(9);
    EXPECT_EQ(refusalOf({odd}), "a type of an unknown kind: H::A");
    auto const in = Qor::make<Qor::NboAttrLog::In>();
    in->receive(std::string_view("\0\0\0\x04H::A\xff\xff\xff\xff", 12));
    Qor::DescribedTypes types{Qor::DescribedTypes::Quota()};
    EXPECT_THROW(types.take(*in), Qor::AttrLogRecordException);
}

TEST(HostileDescriptions, CompiledClassThatIsDescribedOtherwise) {
    auto const ls = TypeDescription::of(*QorType::type("Vgw::LogicalSwitch"));
    EXPECT_EQ(refusalOf({ls}), "") << "what agrees is taken, and the compiled class stays";
    EXPECT_FALSE(QorType::type("Vgw::LogicalSwitch")->isDescribed());
    auto other = ls;
    for (auto& attribute : other.attributes) {
        if (attribute.name == "tunnelKey") attribute.valueType = Name("U64");
    }
    EXPECT_EQ(refusalOf({other}),
              "the description of Vgw::LogicalSwitch: tunnelKey is not what it is in the class "
              "compiled in here");
    other = ls;
    other.base = Name("Qor::Entity");
    EXPECT_EQ(refusalOf({other}),
              "the description of Vgw::LogicalSwitch: not what is compiled in here");
    other = ls;
    other.attributes.push_back(scalar(390, "newer", "U32"));
    EXPECT_EQ(refusalOf({other}), "") << "either side may have more";
}

TEST(HostileDescriptions, SecondDescriptionThatDiffersIsForNewEntities) {
    auto first = entity("H::Changing");
    first.attributes = {scalar(258, "a", "U32")};
    ASSERT_EQ(refusalOf({first}), "");
    QorType* const before = QorType::type("H::Changing");
    auto const old = before->newInstance(Name("old"));
    auto second = first;
    second.attributes.push_back(scalar(259, "b", "U32"));
    ASSERT_EQ(refusalOf({second}), "");
    QorType* const after = QorType::type("H::Changing");
    EXPECT_NE(after, before);
    EXPECT_EQ(old->fwkType(), before);
    EXPECT_FALSE(before->attr(259));
    EXPECT_TRUE(after->newInstance(Name("new"))->fwkType()->attr(259));
}

TEST(HostileDescriptions, TypeThatBuildsOnAChangedOneIsMadeAnewWithIt) {
    TypeDescription state;
    state.fullName = Name("H::State");
    state.kind = Kind::enumeration;
    state.attributes = {{0,
                         Name("off"),
                         Name("H::State"),
                         Name(),
                         Qor::FlagClasses::literal.flags,
                         {},
                         Name(),
                         {}}};
    auto lamp = entity("H::Lamp");
    lamp.attributes = {scalar(258, "state", "H::State")};
    ASSERT_EQ(refusalOf({state, lamp}), "");
    QorType* const before = QorType::type("H::Lamp");
    state.attributes.push_back(
        {1, Name("on"), Name("H::State"), Name(), Qor::FlagClasses::literal.flags, {}, Name(), {}});
    ASSERT_EQ(refusalOf({state, lamp}), "");
    QorType* const after = QorType::type("H::Lamp");
    EXPECT_NE(after, before);
    EXPECT_EQ(after->attr(258)->valueType(), QorType::type("H::State"));
    EXPECT_EQ(after->attr(258)->valueType()->genericIfFromStrep("'on'", true)->strRep(), "'on'");
}

TEST(HostileDescriptions, TypeWithoutItsLibraryIsAName) {
    TypeDescription color;
    color.fullName = Name("H::Color");
    color.kind = Kind::builtin;
    color.size = 3;
    auto lamp = entity("H::ColoredLamp");
    lamp.attributes = {scalar(258, "color", "H::Color"), scalar(259, "level", "U32")};
    ASSERT_EQ(refusalOf({color, lamp}), "");
    QorType* const type = QorType::type("H::ColoredLamp");
    EXPECT_EQ(type->attr(258)->valueType()->fullName(), "H::Color");
    auto const one = type->newInstance(Name("one"));
    auto const wrapper = type->genericIf_(one.ptr(), false);
    EXPECT_EQ(wrapper->attributeOp(259)->strRep(), "0");
    EXPECT_THROW(wrapper->attributeOp(258), Qor::Exception);
    lamp.initials = {{259, "0"}};
    EXPECT_EQ(TypeDescription::of(*type), lamp) << "it can be described on";
}

}  // namespace
