#include <qor/registry/QorType.h>

#include <algorithm>
#include <map>
#include <string_view>

#include <qor/core/Assert.h>
#include <qor/core/Exception.h>

namespace Qor {

namespace {

using Published = std::map<std::string_view, QorType*>;

U32 publicationCount = 0;

// Never destroyed: what is unloaded last may still look for types.
Published& published() {
    static auto& types = *new Published;
    return types;
}

[[noreturn]] void throwCannot(QorType const& type, char const* what) {
    throwRangeException(String8(type.fullName()) + ": " + what);
}

}  // namespace

QorType::QorType(Name name, QorType* scope, QorType* base, U32 flags)
    : Entity(std::move(name)),
      scope_(scope),
      base_(base),
      typeFlags_(flags),
      typeAttr_(make<QorAttr>(this, Name(), nullptr, AttrFlags(), 0)) {}

QorType::~QorType() = default;

Qor::Ptr<Entity> QorType::newEntity(Name const&, Dir*) {
    throwCannot(*this, "an instance is not made from a name alone");
}

Qor::Ptr<Entity> QorType::newEntity(Qor::Ptr<NboAttrLog::In> const&,
                                    PtrInterface::NotifieeConst::Qor_BitSet, U32, PtrInterface*) {
    throwCannot(*this, "no entity, so that none is made from a stream");
}

Qor::Ptr<GenericIf> QorType::genericIf(void const*, bool) {
    throwCannot(*this, "no value, so that none is wrapped");
}

Qor::Ptr<GenericIf> QorType::genericIf(GenericIf const*, bool) {
    throwCannot(*this, "an instance is not made from arguments");
}

Qor::Ptr<GenericIf> QorType::genericIfFromStrep(String8 const&, bool) {
    throwCannot(*this, "no text stands for an instance");
}

Qor::Ptr<GenericIf> QorType::genericIf_(PtrInterface*, bool) {
    throwCannot(*this, "no entity, so that none is wrapped");
}

Qor::Ptr<Entity> QorType::newInstance(Name const&) { return nullptr; }

ValueSteps const* QorType::valueSteps() const noexcept { return nullptr; }

bool QorType::isDescribed() const noexcept { return false; }

String8 QorType::fullName() const { return fullName_; }

bool QorType::isA(QorType const& other) const noexcept {
    QorType const* at = this;
    while (at && at != &other) {
        at = at->base_;
    }
    return at != nullptr;
}

// A key's bytes are those of its record's own name, so the old key goes before the name changes.
void QorType::typeNodeIs(QorType* type, Name const& fullName) {
    auto const old = published().find(type->fullName_.view());
    if (old != published().end() && old->second == type) {
        published().erase(old);
    }
    published().erase(fullName.view());
    ++publicationCount;
    type->fullName_ = fullName;
    published().emplace(type->fullName_.view(), type);
}

QorType* QorType::type(Name const& fullName) {
    auto const found = published().find(fullName.view());
    return found == published().end() ? nullptr : found->second;
}

U32 QorType::publications() noexcept { return publicationCount; }

std::vector<QorType*> QorType::types() {
    std::vector<QorType*> result;
    for (auto const& [name, type] : published()) {
        result.push_back(type);
    }
    return result;
}

QorAttr::Ptr QorType::attr(AttributeId id) const {
    for (QorAttr::Ptr const& attribute : attributeQ_) {
        if (attribute->id() == id) {
            return attribute;
        }
    }
    return nullptr;
}

void QorType::isEnumTypeIs(bool isEnumType) {
    isEnumType_ = isEnumType;
    if (isEnumType) {
        typeAttr_->attrIs(Name("value"), this, nullptr, nullptr, FlagClasses::derived.flags, 1);
    }
}

void QorType::constructorArgNameQEnq(Name name) {
    constructorArgQ_.push_back({std::move(name), Name()});
}

// REQUIRES: an argument has been named.
void QorType::constructorArgTypeQEnq(Name type) {
    assertThat(!constructorArgQ_.empty(), "an argument has been named", "Qor/QorType", __LINE__,
               __func__);
    constructorArgQ_.back().type = std::move(type);
}

void QorType::attributeQEnq(QorAttr::Ptr const& attribute) {
    attributeQ_.push_back(attribute);
    if (QorType* const value = attribute->valueType()) {
        value->referringAttrQ_.push_back(attribute.ptr());
    }
}

void QorType::attributeQDel(QorAttr::Ptr const& attribute) {
    if (std::erase(attributeQ_, attribute) != 0 && attribute->valueType()) {
        std::erase(attribute->valueType()->referringAttrQ_, attribute.ptr());
    }
}

void QorType::derivedTypeQEnq(Ptr const& derived) { derivedTypeQ_.push_back(derived.ptr()); }

void QorType::nestedTypeQEnq(Ptr const& nested) { nestedTypeQ_.push_back(nested.ptr()); }

}  // namespace Qor
