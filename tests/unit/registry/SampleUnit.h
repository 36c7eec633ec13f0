// A unit of three small classes, as the compiler of descriptions would table them: an enumeration,
// and two entities that name each other. Each `n` is a unit of its own, with its own state.
#ifndef TESTS_UNIT_REGISTRY_SAMPLE_UNIT_H
#define TESTS_UNIT_REGISTRY_SAMPLE_UNIT_H

#include <functional>

#include <qor/registry/Builtin.h>
#include <qor/registry/TypeUnit.h>

namespace Sample {

template <int n>
struct Lamps {
    static inline std::function<void()> inDescription;
    static inline int accesses = 0;

    static Qor::Ptr<Qor::QorType> make(Qor::Name const& name, Qor::QorType* base) {
        return Qor::make<Qor::QorType>(name, nullptr, base, 0);
    }
    static Qor::QorType* flag() {
        if (inDescription) {
            inDescription();
        }
        return Qor::Builtin<bool>::_fwkType();
    }
    static Qor::QorType* colourType() { return unit.typeOf(colour); }
    static Qor::QorType* lampType() { return unit.typeOf(lamp); }
    static Qor::QorType* hallType() { return unit.typeOf(hall); }
    static void access() { ++accesses; }

    static constexpr Qor::AttributeRow colourRows[] = {
        {"red", 0, &colourType, nullptr, Qor::FlagClasses::literal},
        {"blue", 1, &colourType, nullptr, Qor::FlagClasses::literal},
    };
    static constexpr Qor::ArgumentRow nameArgument[] = {{"name", "Qor::Name"}};
    static constexpr Qor::ArgumentRow rhsArgument[] = {{"rhs", "Acme::Lamp"}};
    static constexpr Qor::AttributeRow lampRows[] = {
        {"isOn", 258, &flag, nullptr, Qor::FlagClasses::scalarBase},
        {"colour", 259, &colourType, nullptr, Qor::FlagClasses::scalar},
        {"isEqualTo", 260, &flag, nullptr, Qor::FlagClasses::functionBase, rhsArgument},
        {"hall", 261, &hallType, nullptr, Qor::FlagClasses::refMap},
    };
    static constexpr Qor::AttributeRow hallRows[] = {
        {"isEqualTo", 260, &flag, nullptr, Qor::FlagClasses::function, rhsArgument},
        {"lamp", 386, &lampType, &Qor::Name::_fwkType, Qor::FlagClasses::childMap, nameArgument},
    };
    static constexpr char const* lampHandleNames[] = {"hall", "isOn", "no such attribute"};
    static inline Qor::Ptr<Qor::QorAttr> lampHandles[3];

    static inline Qor::TypeRecord colour{.fullName = "Acme::Colour",
                                         .sort = Qor::TypeSort::enumeration,
                                         .size = 4,
                                         .self = &colourType,
                                         .base = nullptr,
                                         .make = &make,
                                         .constructorArguments = {},
                                         .attributes = colourRows,
                                         .handleNames = {},
                                         .handles = {}};
    static inline Qor::TypeRecord lamp{.fullName = "Acme::Lamp",
                                       .sort = Qor::TypeSort::entity,
                                       .size = 64,
                                       .self = &lampType,
                                       .base = &Qor::Entity::_fwkType,
                                       .make = &make,
                                       .constructorArguments = nameArgument,
                                       .attributes = lampRows,
                                       .handleNames = lampHandleNames,
                                       .handles = lampHandles};
    static inline Qor::TypeRecord hall{.fullName = "Acme::Hall",
                                       .sort = Qor::TypeSort::entity,
                                       .size = 96,
                                       .self = &hallType,
                                       .base = &lampType,
                                       .make = &make,
                                       .constructorArguments = nameArgument,
                                       .attributes = hallRows,
                                       .handleNames = {},
                                       .handles = {}};
    static constexpr Qor::TypeRecord* records[] = {&colour, &lamp, &hall};
    static constexpr Qor::BuildRow byName[] = {
        {&colourType}, {&hallType, &access}, {&lampType, &access}};
    static inline Qor::TypeUnit unit{"Acme", records, byName};
};

/// A unit of one class, which derives from the lamp of the unit `Base`.
template <class Base>
struct Lanterns {
    static Qor::QorType* type() { return unit.typeOf(lantern); }

    static constexpr Qor::AttributeRow rows[] = {
        {"fuel", 386, &Qor::Builtin<bool>::_fwkType, nullptr, Qor::FlagClasses::scalar},
    };
    static inline Qor::TypeRecord lantern{.fullName = "Acme::Lantern",
                                          .sort = Qor::TypeSort::entity,
                                          .size = 72,
                                          .self = &type,
                                          .base = &Base::lampType,
                                          .make = &Base::make,
                                          .constructorArguments = Base::nameArgument,
                                          .attributes = rows,
                                          .handleNames = {},
                                          .handles = {}};
    static constexpr Qor::TypeRecord* records[] = {&lantern};
    static inline Qor::TypeUnit unit{"Acme", records, {}};
};

}  // namespace Sample

#endif
