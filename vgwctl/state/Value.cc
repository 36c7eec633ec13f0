#include <vgwctl/state/Value.h>

#include <qor/core/Strep.h>
#include <qor/entity/Entity.h>

namespace Vgwctl {
namespace {

using Qor::GenericIf;

bool isQuoted(std::string_view text) {
    return text.size() >= 2 && text.front() == '\'' && text.back() == '\'';
}

Value recordOf(GenericIf::Ptr const& wrapper) {
    Value record{Value::Kind::record, {}, {}};
    for (auto const& attribute : wrapper->fwkType()->attributes()) {
        // What follows from the other fields says nothing new.
        if (!attribute->flags().isStored()) continue;
        record.members.emplace_back(textValue(std::string(attribute->name().view())),
                                    valueOf(wrapper->attributeOp(attribute->id())));
    }
    return record;
}

bool hasFields(Qor::QorType const& type) {
    return type.isValue() && !type.isEnumType() && !type.attributes().empty();
}

Value plainOf(GenericIf const& wrapper) {
    std::string const text(wrapper.strRep().view());
    if (isQuoted(text)) return textValue(unquoted(text));
    bool const isTruth = text == "true" || text == "false";
    return {isTruth ? Value::Kind::boolean : Value::Kind::number, text, {}};
}

Value collectionOf(GenericIf& entity, Qor::QorAttr const& attribute) {
    bool const isSet = attribute.valueType()->fullName() == "bool";
    Value collection{isSet ? Value::Kind::set : Value::Kind::map, {}, {}};
    for (auto at = entity.attributeIteratorConst(attribute.id()); at; ++at) {
        GenericIf::PtrConst const key = at.key();
        Value const held = valueOf(at.value());
        if (isSet && held.text != "true") continue;
        collection.members.emplace_back(valueOf(GenericIf::Ptr(const_cast<GenericIf*>(key.ptr()))),
                                        isSet ? Value() : held);
    }
    return collection;
}

}  // namespace

Value textValue(std::string text) { return {Value::Kind::text, std::move(text), {}}; }

std::string unquoted(std::string_view strep) {
    if (!isQuoted(strep)) return std::string(strep);
    return std::string(Qor::strepToValue<Qor::String8>(Qor::String8(strep)).view());
}

Value valueOf(GenericIf::Ptr const& wrapper) {
    if (!wrapper) return {};
    Qor::QorType const& type = *wrapper->fwkType();
    if (type.isEntity()) {
        auto const entity = wrapper->entityConst();
        if (!entity) return {};
        return {Value::Kind::reference, std::string(entity->uriPath().view()), {}};
    }
    return hasFields(type) ? recordOf(wrapper) : plainOf(*wrapper);
}

Value valueOf(GenericIf& entity, Qor::QorAttr const& attribute) {
    if (attribute.flags().isCollection()) return collectionOf(entity, attribute);
    return valueOf(entity.attributeOp(attribute.id()));
}

}  // namespace Vgwctl
