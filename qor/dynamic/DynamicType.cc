#include <qor/dynamic/DynamicType.h>

#include <qor/dynamic/DynamicRows.h>
#include <qor/dynamic/DynamicWrapper.h>
#include <qor/generic/GenericList.h>
#include <qor/registry/Builtin.h>
#include <qor/tree/EntityPath.h>

#include <algorithm>
#include <optional>

namespace Qor {

namespace {

// What is below is the framework's own, and answered for every entity alike.
constexpr AttributeId leastOfClasses = 256;

std::optional<DynamicSort> sortOfMember(QorAttr const& attribute) {
    if (attribute.flags().isEntity()) {
        return attribute.flags().isInstantiating() ? DynamicSort::childMember
                                                   : DynamicSort::reference;
    }
    if (attribute.valueType() == Builtin<bool>::_fwkType()) return DynamicSort::flagMember;
    if (attribute.valueType() == Builtin<String8>::_fwkType()) return DynamicSort::textMember;
    return std::nullopt;
}

std::optional<DynamicSort> sortOf(QorAttr const& attribute) {
    AttrFlags const flags = attribute.flags();
    if (attribute.id() == isNondestructingId) return DynamicSort::nondestructing;
    if (attribute.id() < leastOfClasses) return std::nullopt;
    if (attribute.introspection().isFunction()) return DynamicSort::operation;
    if (!flags.isStored()) return std::nullopt;
    if (flags.isCollection()) return sortOfMember(attribute);
    if (flags.isConstructed()) return DynamicSort::constant;
    if (!flags.isWritable()) return std::nullopt;
    if (flags.isEntity()) {
        return flags.isInstantiating() ? std::optional(DynamicSort::child) : std::nullopt;
    }
    bool const isText = attribute.valueType() == Builtin<String8>::_fwkType();
    return isText ? DynamicSort::text : DynamicSort::value;
}

bool hasValue(DynamicSort sort) {
    return sort == DynamicSort::value || sort == DynamicSort::text || sort == DynamicSort::constant;
}

// Null where the process does not know how to hold a value or a key.
std::optional<DynamicAttribute> heldAs(QorAttr const& attribute) {
    std::optional<DynamicSort> const sort = sortOf(attribute);
    if (!sort) return std::nullopt;
    DynamicAttribute result{attribute.id(), attribute.name(), *sort, attribute.valueType()};
    if (hasValue(*sort)) {
        result.value = attribute.valueType()->valueSteps();
        if (!result.value) return std::nullopt;
        result.initial = AnyValue(*result.value);
    }
    if (result.isKeyed()) {
        result.key = attribute.keyType() ? attribute.keyType()->valueSteps() : nullptr;
        if (!result.key) return std::nullopt;
    }
    return result;
}

}  // namespace

DynamicType::DynamicType(Name shortName, QorType* base)
    : QorType(std::move(shortName), nullptr, base, 0) {}

DynamicType::~DynamicType() = default;

void DynamicType::completeIs() {
    table_.clear();
    for (QorAttr::Ptr const& attribute : attributes()) {
        if (auto held = heldAs(*attribute)) table_.push_back(std::move(*held));
    }
    std::sort(table_.begin(), table_.end(),
              [](auto const& one, auto const& other) { return one.id < other.id; });
    genericRows_.clear();
    for (U32 index = 0; DynamicAttribute & attribute : table_) {
        attribute.index = index++;
        if (attribute.sort != DynamicSort::nondestructing) {
            genericRows_.push_back(dynamicRow(attribute));
        }
    }
}

DynamicAttribute const* DynamicType::attribute(AttributeId id) const noexcept {
    auto const found =
        std::lower_bound(table_.begin(), table_.end(), id,
                         [](auto const& one, AttributeId at) { return one.id < at; });
    return found != table_.end() && found->id == id ? &*found : nullptr;
}

AttributeId DynamicType::firstStreamed() const noexcept {
    return streamedAfter(std::numeric_limits<AttributeId>::min());
}

AttributeId DynamicType::streamedAfter(AttributeId id) const noexcept {
    auto const found = std::find_if(table_.begin(), table_.end(), [id](auto const& one) {
        return one.id > id && one.isStreamed();
    });
    return found == table_.end() ? 0 : found->id;
}

void DynamicType::initialIs(AttributeId id, String8 const& text) {
    auto const* const known = attribute(id);
    if (!known || !known->value) return;
    table_[known->index].initial = AnyValue::parsed(*known->value, text);
}

// The attribute that the constructor takes; null where that is a name.
DynamicAttribute const* DynamicType::constructed() const noexcept {
    for (DynamicAttribute const& one : table_) {
        bool const isArgument = one.sort == DynamicSort::constant && !constructorArgs().empty() &&
                                constructorArgs().front().name == one.name;
        if (isArgument) return &one;
    }
    return nullptr;
}

bool DynamicType::canBeMade() const noexcept {
    if (constructorArgs().size() != 1) return false;
    return constructed() || constructorArgs().front().type.view() == "Qor::Name";
}

Qor::Ptr<Entity> DynamicType::newInstance(Name const& name) {
    return make<DynamicEntity>(*this, constructed() ? Name() : name);
}

Qor::Ptr<Entity> DynamicType::newEntity(Name const& name, Dir* directory) {
    if (constructed() || !canBeMade()) return QorType::newEntity(name, directory);
    return newInstance(name);
}

Qor::Ptr<Entity> DynamicType::newEntity(Qor::Ptr<NboAttrLog::In> const& in,
                                        PtrInterface::NotifieeConst::Qor_BitSet, U32,
                                        PtrInterface*) {
    if (!canBeMade()) return nullptr;
    DynamicAttribute const* const argument = constructed();
    if (!argument) return newInstance(Name(in->nextString()));
    auto entity = make<DynamicEntity>(*this, Name());
    entity->constructedIs(*argument, AnyValue(*argument->value, *in));
    return entity;
}

Qor::Ptr<GenericIf> DynamicType::genericIf(GenericIf const* arguments, bool isConst) {
    if (!canBeMade()) return QorType::genericIf(arguments, isConst);
    GenericArguments list(arguments);
    DynamicAttribute const* const fixed = constructed();
    char const* const name = fixed ? fixed->name.charPtr() : "name";
    GenericIf::Ptr const argument = list.next(name);
    list.end(this->name().charPtr());
    if (!argument) GenericIf::throwTypeException(name);
    Qor::Ptr<DynamicEntity> entity;
    if (fixed) {
        entity = make<DynamicEntity>(*this, Name());
        entity->constructedIs(*fixed, AnyValue::of(*fixed->value, *argument));
    } else {
        entity = make<DynamicEntity>(*this, unwrapped<Name>(*argument));
    }
    return genericIf_(entity.ptr(), isConst);
}

Qor::Ptr<GenericIf> DynamicType::genericIf_(PtrInterface* object, bool isConst) {
    auto* entity = dynamic_cast<DynamicEntity*>(object);
    if (entity && &entity->dynamicType() != this) entity = nullptr;
    return make<DynamicEntity::GenericIf_>(*this, Qor::Ptr<Entity>(entity), isConst);
}

Qor::Ptr<GenericIf> DynamicType::genericIfFromStrep(String8 const& text, bool isConst) {
    Expect const expect(Exception::rangeId);
    String8::IteratorConst position(text);
    Qor::Ptr<Entity> const entity = sequenceToValueOfPtr(position, text.end());
    if (position != text.end()) throwJunk(position, text);
    return genericIf_(entity.ptr(), isConst);
}

}  // namespace Qor
