// How the classes of one description are registered: a table of rows for each class, made by the
// compiler of descriptions, and the steps over these tables, which stand here once.
//
// A unit has three layers: a type object per class, built when it is first asked for; a describing
// routine, run at most once, which fills the type objects with their attributes; and an
// initialiser, run when the library is loaded, which publishes the types by name and keeps handles
// to their attributes. Everything runs on the loading thread, without a lock.
//
// The tables are constant-initialised and have no destructors of their own, so that the order in
// which units are initialised does not matter. Handles are released at the end of the process, the
// last made first.
#ifndef QOR_REGISTRY_TYPE_UNIT_H
#define QOR_REGISTRY_TYPE_UNIT_H

#include <ios>
#include <span>

#include <qor/core/Trace.h>
#include <qor/registry/IntrospectionReactor.h>

namespace Qor {

class TypeUnit;

/// Gives the type object of a class: X::_fwkType.
using TypeOf = QorType* (*)();

struct ArgumentRow {
    char const* name;
    char const* type;
};

/// One attribute of a class. A row with arguments is made with attrIs, any other defined in one
/// step.
// NOLINTNEXTLINE(clang-analyzer-optin.performance.Padding): in the order in which rows are written.
struct AttributeRow {
    char const* name;
    AttributeId id;
    TypeOf valueType;
    TypeOf keyType;  // null for what is no collection
    FlagClass flags;
    std::span<ArgumentRow const> arguments = {};
    /// Its members keep their keys themselves, under the attribute `name` of theirs.
    bool hasInternalIndex() const noexcept { return flags.introspection.hasInternalIndex(); }
};

/// A class in the order in which the type objects of a unit are built.
struct BuildRow {
    TypeOf type;
    /// Of entities: makes the accesses of their counted pointers exist out of line; else null.
    void (*pointerAccess)() = nullptr;
};

/// Makes the record of a class: `T` is its X::_Type.
template <class T>
Ptr<QorType> makeType(Name const& shortName, QorType* base) {
    return make<T>(shortName, nullptr, base, U32{0});
}

enum class TypeSort : U8 { enumeration, value, entity };

/// One class, and its state in this process.
struct TypeRecord {
    char const* fullName;
    TypeSort sort;
    U32 size;
    TypeOf self;
    TypeOf base;  // null for enumerations and values
    /// A new X::_Type.
    Ptr<QorType> (*make)(Name const& shortName, QorType* base);
    std::span<ArgumentRow const> constructorArguments = {};
    std::span<AttributeRow const> attributes = {};
    /// The attributes to which handles are kept, by name.
    std::span<char const* const> handleNames = {};
    /// As many, and in the same order.
    std::span<Ptr<QorAttr>> handles = {};

    QorType* type = nullptr;
    bool isNamed = false;

    /// The part of the full name behind its name space.
    char const* shortName() const noexcept;
    /// The handle of the attribute with that id; null while nothing is described, or for an id
    /// without one.
    QorAttr* handle(AttributeId id) const noexcept;
};

class QOR_EXPORT TypeUnit {
  public:
    /// `records` are in the order of registration, `byName` in that in which the type objects are
    /// built. All of it outlives the unit's use.
    constexpr TypeUnit(char const* nameSpace, std::span<TypeRecord* const> records,
                       std::span<BuildRow const> byName) noexcept
        : nameSpace_(nameSpace), records_(records), byName_(byName) {}
    TypeUnit(TypeUnit const&) = delete;
    TypeUnit& operator=(TypeUnit const&) = delete;

    /// The type object of one of the unit's classes, built if there is none; never null.
    QorType* typeOf(TypeRecord& record);
    /// Fills the type objects, unless that has been done or introspection is off. What fails comes
    /// out as an exception, and is not tried again.
    void describe();
    /// The unit's part in the loading of its library. Also fills the handles again when
    /// introspection is switched on later.
    void initialise();

    bool isDescribed() const noexcept { return isDescribed_; }
    bool isInitialised() const noexcept { return isInitialised_; }
    std::span<TypeRecord* const> records() const noexcept { return records_; }

  private:
    void publish(TypeRecord& record);
    void describeBases() const;

    char const* nameSpace_;
    std::span<TypeRecord* const> records_;
    std::span<BuildRow const> byName_;
    bool isDescribed_ = false;
    bool isInitialised_ = false;
};

/// Loads and unloads a unit: to be a static object of the file that has its tables.
class QOR_EXPORT TypeUnitLoader {
  public:
    explicit TypeUnitLoader(TypeUnit& unit);
    TypeUnitLoader(TypeUnitLoader const&) = delete;
    TypeUnitLoader& operator=(TypeUnitLoader const&) = delete;

  private:
    std::ios_base::Init const streams_;  // in front: what is loaded may print, and until the end
    TraceHandle trace_;
};

/// Makes the library hold a copy of an operation that is inlined wherever it is called: one whose
/// address is taken has to stand somewhere. A debugger can then call it.
template <class Operation>
void forcePointerAccess(Operation operation) {
    [[maybe_unused]] Operation volatile const taken = operation;
}

/// The same of both accesses of a counted pointer.
template <class X>
void forcePointerAccesses() {
    forcePointerAccess(&Ptr<X>::operator*);
    forcePointerAccess(&Ptr<X>::operator->);
}

}  // namespace Qor

#endif
