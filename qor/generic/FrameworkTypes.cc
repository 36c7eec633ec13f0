// The records of the framework's own types, and of those of the language.
#include <qor/generic/ClassTypes.h>
#include <qor/generic/EntityWrapper.h>

namespace Qor {

namespace {

template <class T>
using WrapperOf =
    std::conditional_t<std::is_base_of_v<String8, T>, TextWrapper<T>, PlainWrapper<T>>;

class EntityRecord : public QorType {
  public:
    using QorType::QorType;
    Qor::Ptr<GenericIf> genericIf_(PtrInterface* object, bool isConst) override {
        return make<GenericIfEntity>(Qor::Ptr<Entity>(dynamic_cast<Entity*>(object)), isConst);
    }
    Qor::Ptr<GenericIf> genericIfFromStrep(String8 const& text, bool isConst) override {
        String8::IteratorConst position(text);
        Qor::Ptr<Entity> const entity = sequenceToValueOfPtr(position, text.end());
        if (position != text.end()) {
            throwJunk(position, text);
        }
        return wrappedEntity(entity.ptr(), this, isConst);
    }
};

// What every entity has. Descriptions define some of it anew for their classes.
constexpr AttributeRow countedRows[] = {
    {"isNondestructing", isNondestructingId, &Builtin<bool>::_fwkType, nullptr,
     FlagClasses::nondestructing},
};
constexpr AttributeRow entityRows[] = {
    {"name", entityNameId, &Name::_fwkType, nullptr, FlagClasses::constField},
    {"fullName", entityFullNameId, &Builtin<String8>::_fwkType, nullptr, FlagClasses::derived},
    {"uriPath", entityUriPathId, &Builtin<String8>::_fwkType, nullptr, FlagClasses::derived},
    {"qorHasAttrLogInterface", hasAttrLogInterfaceId, &Builtin<bool>::_fwkType, nullptr,
     FlagClasses::functionBase},
    {"qorNboAttrLogSaForMsgChannel", saForMsgChannelId, &Builtin<bool>::_fwkType, nullptr,
     FlagClasses::functionBase},
};
constexpr ArgumentRow entityArguments[] = {{"name", "Qor::Name"}};

template <class T>
constexpr char const* languageName = nullptr;
template <>
constexpr char const* languageName<bool> = "bool";
template <>
constexpr char const* languageName<U8> = "U8";
template <>
constexpr char const* languageName<U16> = "U16";
template <>
constexpr char const* languageName<U32> = "U32";
template <>
constexpr char const* languageName<U64> = "U64";
template <>
constexpr char const* languageName<I32> = "I32";
template <>
constexpr char const* languageName<double> = "double";
template <>
constexpr char const* languageName<String8> = "Qor::String8";
template <>
constexpr char const* languageName<Name> = "Qor::Name";

template <class T>
constinit TypeRecord valueRecord{.fullName = languageName<T>,
                                 .sort = TypeSort::value,
                                 .size = sizeof(T),
                                 .self = [] { return typeOf<T>(); },
                                 .base = nullptr,
                                 .make = &makeType<ValueType<T, WrapperOf<T>>>};

// What stands for "no result" has neither values nor wrappers.
constinit TypeRecord voidRecord{.fullName = "void*",
                                .sort = TypeSort::value,
                                .size = sizeof(void*),
                                .self = &Builtin<void*>::_fwkType,
                                .base = nullptr,
                                .make = &makeType<QorType>};
constinit TypeRecord listRecord{.fullName = "Qor::GenericIf::List",
                                .sort = TypeSort::value,
                                .size = sizeof(GenericIf::List::Queue),
                                .self = &GenericIf::List::_fwkType,
                                .base = nullptr,
                                .make = &makeType<QorType>};
constinit TypeRecord countedRecord{.fullName = "Qor::PtrInterface",
                                   .sort = TypeSort::entity,
                                   .size = sizeof(PtrInterface),
                                   .self = &PtrInterface::_fwkType,
                                   .base = nullptr,
                                   .make = &makeType<QorType>,
                                   .attributes = countedRows};
constinit TypeRecord entityRecord{.fullName = "Qor::Entity",
                                  .sort = TypeSort::entity,
                                  .size = sizeof(Entity),
                                  .self = &Entity::_fwkType,
                                  .base = &PtrInterface::_fwkType,
                                  .make = &makeType<EntityRecord>,
                                  .constructorArguments = entityArguments,
                                  .attributes = entityRows};

constinit TypeRecord* const records[] = {
    &valueRecord<bool>, &valueRecord<U8>,  &valueRecord<U16>,    &valueRecord<U32>,
    &valueRecord<U64>,  &valueRecord<I32>, &valueRecord<double>, &valueRecord<String8>,
    &valueRecord<Name>, &voidRecord,       &listRecord,          &countedRecord,
    &entityRecord,
};
constinit TypeUnit unit("Qor", records, {});
TypeUnitLoader const loader(unit);

}  // namespace

template <class T>
QorType* Builtin<T>::_fwkType() {
    return unit.typeOf(valueRecord<T>);
}
template <>
QorType* Builtin<void*>::_fwkType() {
    return unit.typeOf(voidRecord);
}
template class Builtin<bool>;
template class Builtin<U8>;
template class Builtin<U16>;
template class Builtin<U32>;
template class Builtin<U64>;
template class Builtin<I32>;
template class Builtin<double>;
template class Builtin<String8>;

QorType* Name::_fwkType() { return unit.typeOf(valueRecord<Name>); }
QorType* GenericIf::List::_fwkType() { return unit.typeOf(listRecord); }
QorType* PtrInterface::_fwkType() { return unit.typeOf(countedRecord); }
QorType* Entity::_fwkType() { return unit.typeOf(entityRecord); }
QorType* Entity::fwkType() const { return _fwkType(); }

// The type keeps its records: what is borrowed lives as long.
QorAttr const* Entity::parentAttr() const {
    return parent_ ? parent_->fwkType()->attr(parentAttrId_).ptr() : nullptr;
}

}  // namespace Qor
