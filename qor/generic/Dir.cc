#include <qor/generic/Dir.h>

namespace Qor {

namespace {

constexpr AttributeRow rows[] = {
    {"isNondestructing", isNondestructingId, &Builtin<bool>::_fwkType, nullptr,
     FlagClasses::nondestructing},
    {"qorHasAttrLogInterface", hasAttrLogInterfaceId, &Builtin<bool>::_fwkType, nullptr,
     FlagClasses::functionBase},
    {"entry", Dir::EntryAttr::id, &Entity::_fwkType, &Name::_fwkType, FlagClasses::refMap},
};
constexpr ArgumentRow arguments[] = {{"name", "Qor::Name"}};

constinit TypeRecord dirRecord{.fullName = Dir::qorTypeName,
                               .sort = TypeSort::entity,
                               .size = sizeof(Dir),
                               .self = &Dir::_fwkType,
                               .base = &Entity::_fwkType,
                               .make = &makeType<Dir::_Type>,
                               .constructorArguments = arguments,
                               .attributes = rows};
constinit TypeRecord* const dirRecords[] = {&dirRecord};
constinit TypeUnit dirUnit("Qor", dirRecords, {});
TypeUnitLoader const dirLoader(dirUnit);

}  // namespace

QorType* Dir::_fwkType() { return dirUnit.typeOf(dirRecord); }
QorType* Dir::fwkType() const { return _fwkType(); }

Qor::Ptr<Entity> Dir::_Type::newEntity(Name const& name, Dir*) { return validPtr(make<Dir>(name)); }

Dir::GenericIf_::GenericIf_(Qor::Ptr<Entity> const& entity, bool isConst)
    : EntityWrapper(entity, isConst) {}
Dir::GenericIf_::~GenericIf_() = default;

void Dir::GenericIf_::onIsNondestructing() { qorHeard(isNondestructingId); }
void Dir::GenericIf_::onEntry(Name key) { qorHeardKey<EntryAttr>(key); }
void Dir::GenericIf_::onEntryqorImmediate() {}
void Dir::GenericIf_::onEntry() { onAttribute(EntryAttr::id); }

}  // namespace Qor
