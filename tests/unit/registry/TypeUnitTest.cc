#include <gtest/gtest.h>

#include <stdexcept>
#include <vector>

#include "SampleUnit.h"

namespace Sample {
namespace {

using Names = std::vector<std::string>;

Names namesOf(Qor::QorType const& type) {
    Names names;
    for (auto const& attribute : type.attributes()) {
        names.emplace_back(attribute->name().view());
    }
    return names;
}

Names inherited() { return namesOf(*Qor::Entity::_fwkType()); }

Names behindInherited(Names own) {
    Names all = inherited();
    all.insert(all.end(), own.begin(), own.end());
    return all;
}

class TypeUnit : public testing::Test {
  protected:
    ~TypeUnit() override { reactor->isOnIs(true); }
    Qor::IntrospectionReactor::Ptr const reactor = Qor::IntrospectionReactor::global();
};

TEST_F(TypeUnit, FirstCallForAnyTypeDescribesThemAll) {
    using Unit = Lamps<__LINE__>;
    Qor::QorType* const lamp = Unit::lampType();
    EXPECT_TRUE(Unit::unit.isDescribed());
    EXPECT_EQ(namesOf(*lamp), behindInherited({"isOn", "colour", "isEqualTo", "hall"}));
    EXPECT_EQ(Unit::lampType(), lamp);
    EXPECT_EQ(lamp->size(), 64U);
    EXPECT_TRUE(lamp->isNondestructing());
    EXPECT_EQ(reactor->depth(), 0U);
}

TEST_F(TypeUnit, RedefinitionReplacesWhatIsInherited) {
    using Unit = Lamps<__LINE__>;
    Qor::QorType* const hall = Unit::hallType();
    EXPECT_EQ(namesOf(*hall), behindInherited({"isOn", "colour", "hall", "isEqualTo", "lamp"}));
    auto const own = hall->attr(Qor::Name("isEqualTo"));
    EXPECT_EQ(own->definedBy(), hall);
    EXPECT_EQ(own->flags(), Qor::FlagClasses::function.flags);
    EXPECT_EQ(Unit::lampType()->attr(Qor::Name("isEqualTo"))->flags(),
              Qor::FlagClasses::functionBase.flags);
    auto const copy = hall->attr(Qor::Name("isOn"));
    EXPECT_NE(copy, Unit::lampType()->attr(Qor::Name("isOn")));
    EXPECT_EQ(copy->definedBy(), Unit::lampType());
    EXPECT_EQ(copy->owner(), hall);
    EXPECT_EQ(copy->id(), 258);
}

TEST_F(TypeUnit, CallFromInsideTheDescriptionBuildsAndDescribesNothingTwice) {
    using Unit = Lamps<__LINE__>;
    auto const before = reactor->typesHeard();
    Unit::inDescription = [] { EXPECT_TRUE(Unit::hallType()); };
    Unit::colourType();
    EXPECT_EQ(reactor->typesHeard(), before + 3);
}

TEST_F(TypeUnit, TypesThatNameEachOtherEnd) {
    using Unit = Lamps<__LINE__>;
    Unit::hallType();
    EXPECT_EQ(Unit::lampType()->attr(Qor::Name("hall"))->valueType(), Unit::hallType());
    EXPECT_EQ(Unit::hallType()->attr(Qor::Name("lamp"))->valueType(), Unit::lampType());
    EXPECT_EQ(Unit::colourType()->attr(Qor::Name("red"))->valueType(), Unit::colourType());
}

TEST_F(TypeUnit, EachBaseKnowsWhatDerivesFromItOnce) {
    using Unit = Lamps<__LINE__>;
    Unit::unit.initialise();
    Unit::unit.describe();
    auto const derived = Unit::lampType()->derivedTypes();
    ASSERT_EQ(derived.size(), 1U);
    EXPECT_EQ(derived[0], Unit::hallType());
}

TEST_F(TypeUnit, InitialiserPublishesTheTypesAndKeepsTheHandles) {
    using Unit = Lamps<__LINE__>;
    EXPECT_FALSE(Unit::unit.isInitialised());
    Unit::unit.initialise();
    EXPECT_TRUE(Unit::unit.isInitialised());
    EXPECT_EQ(Qor::QorType::type("Acme::Colour"), Unit::colourType());
    EXPECT_EQ(Qor::QorType::type("Acme::Lamp"), Unit::lampType());
    EXPECT_EQ(Qor::QorType::type("Acme::Hall"), Unit::hallType());
    EXPECT_EQ(Unit::lampType()->name(), "Lamp");
    EXPECT_EQ(Unit::lampHandles[0], Unit::lampType()->attr(Qor::Name("hall")));
    EXPECT_EQ(Unit::lampHandles[1], Unit::lampType()->attr(Qor::Name("isOn")));
    EXPECT_FALSE(Unit::lampHandles[2]);
    EXPECT_EQ(Unit::lamp.handle(258), Unit::lampHandles[1]);
    EXPECT_EQ(Unit::lamp.handle(259), nullptr) << "none is kept to it";
    EXPECT_EQ(Unit::accesses, 2);
}

TEST_F(TypeUnit, FoundOffGivesTypesWithoutAttributes) {
    using Unit = Lamps<__LINE__>;
    reactor->isOnIs(false);
    auto const before = reactor->typesHeard();
    Unit::unit.initialise();
    EXPECT_FALSE(Unit::unit.isDescribed());
    EXPECT_TRUE(Unit::unit.isInitialised());
    ASSERT_TRUE(Unit::hallType());
    EXPECT_EQ(Unit::hallType()->base(), Unit::lampType());
    EXPECT_TRUE(Unit::hallType()->attributes().empty());
    EXPECT_EQ(Qor::QorType::type("Acme::Lamp"), Unit::lampType());
    EXPECT_FALSE(Unit::lampHandles[1]);
    EXPECT_EQ(Unit::lamp.handle(258), nullptr);
    EXPECT_EQ(reactor->typesHeard(), before);
}

TEST_F(TypeUnit, SwitchedOnLaterIsFilledWithItsHandlesOnce) {
    using Unit = Lamps<__LINE__>;
    reactor->isOnIs(false);
    Unit::unit.initialise();
    Unit::unit.describe();
    Qor::QorType* const lamp = Unit::lampType();
    auto const before = reactor->typesHeard();
    reactor->isOnIs(true);
    EXPECT_EQ(reactor->typesHeard(), before + 3);
    EXPECT_EQ(Unit::lampType(), lamp);
    EXPECT_EQ(namesOf(*lamp), behindInherited({"isOn", "colour", "isEqualTo", "hall"}));
    EXPECT_EQ(Unit::lamp.handle(258), lamp->attr(Qor::Name("isOn")));
    reactor->isOnIs(false);
    reactor->isOnIs(true);
    EXPECT_EQ(reactor->typesHeard(), before + 3);
}

TEST_F(TypeUnit, SwitchedOnAndAskedForATypeBeforeItsTurnIsFilledAsWell) {
    using Unit = Lamps<__LINE__>;
    reactor->isOnIs(false);
    Unit::unit.initialise();
    Unit::inDescription = [] { EXPECT_TRUE(Unit::unit.isDescribed()); };
    reactor->isOnIs(true);
    EXPECT_EQ(namesOf(*Unit::hallType()).back(), "lamp");
}

TEST_F(TypeUnit, BaseOfAnotherUnitIsDescribedBeforeWhatDerivesFromIt) {
    using Base = Lamps<__LINE__>;
    using Derived = Lanterns<Base>;
    reactor->isOnIs(false);
    Derived::unit.initialise();
    Base::unit.initialise();
    auto const before = reactor->typesHeard();
    reactor->isOnIs(true);
    EXPECT_EQ(namesOf(*Derived::type()),
              behindInherited({"isOn", "colour", "isEqualTo", "hall", "fuel"}));
    auto const inherited = Derived::type()->attr(Qor::Name("isOn"));
    ASSERT_TRUE(inherited);
    EXPECT_EQ(inherited->definedBy(), Base::lampType());
    EXPECT_EQ(Base::lamp.handle(258), Base::lampType()->attr(Qor::Name("isOn")));
    EXPECT_EQ(reactor->typesHeard(), before + 4) << "each once";
}

TEST_F(TypeUnit, SwitchedOffAgainKeepsWhatWasDescribed) {
    using Unit = Lamps<__LINE__>;
    Unit::unit.initialise();
    reactor->isOnIs(false);
    EXPECT_EQ(namesOf(*Unit::hallType()).back(), "lamp");
    EXPECT_TRUE(Unit::unit.isDescribed());
}

TEST_F(TypeUnit, FailureInTheDescriptionComesOutAndIsNotTriedAgain) {
    using Unit = Lamps<__LINE__>;
    Unit::inDescription = [] { throw std::runtime_error("no type"); };
    EXPECT_THROW(Unit::hallType(), std::runtime_error);
    EXPECT_TRUE(Unit::unit.isDescribed());
    EXPECT_EQ(reactor->depth(), 0U) << "all scopes are closed";
    Unit::inDescription = nullptr;
    EXPECT_NO_THROW(Unit::hallType());
    EXPECT_FALSE(Unit::hallType()->attr(Qor::Name("lamp")));
}

TEST_F(TypeUnit, FailureOfOneUnitKeepsNoOtherFromBeingDescribed) {
    using Broken = Lamps<__LINE__>;
    using Sound = Lamps<__LINE__ + 1000>;
    reactor->isOnIs(false);
    Broken::unit.initialise();
    Sound::unit.initialise();
    Broken::inDescription = [] { throw std::runtime_error("no type"); };
    EXPECT_THROW(reactor->isOnIs(true), std::runtime_error);
    EXPECT_EQ(namesOf(*Sound::hallType()).back(), "lamp");
    EXPECT_EQ(reactor->depth(), 0U);
}

TEST_F(TypeUnit, EnumerationsValueStandsApartFromItsLiterals) {
    using Unit = Lamps<__LINE__>;
    Qor::QorType* const colour = Unit::colourType();
    EXPECT_EQ(namesOf(*colour), (Names{"red", "blue"}));
    ASSERT_TRUE(colour->valAttr());
    EXPECT_EQ(colour->valAttr()->id(), 1);
    EXPECT_EQ(colour->valAttr(), colour->attr(Qor::Name("value")).ptr());
    EXPECT_EQ(colour->attr(Qor::AttributeId(1))->name(), "blue");
}

TEST_F(TypeUnit, LoaderRunsTheInitialiser) {
    using Unit = Lamps<__LINE__>;
    Qor::TypeUnitLoader const loader(Unit::unit);
    EXPECT_TRUE(Unit::unit.isInitialised());
    EXPECT_EQ(Qor::QorType::type("Acme::Hall"), Unit::hallType());
}

}  // namespace
}  // namespace Sample
