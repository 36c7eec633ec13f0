#include <qor/entity/Entity.h>

#include <qor/core/Exception.h>

#include <string>

namespace Qor {

Entity::Entity(Name name) : name_(std::move(name)) {}

Entity::~Entity() = default;

Name Entity::name() const { return name_; }

Qor::Ptr<Entity const> Entity::parent() const { return Qor::Ptr<Entity const>(parent_); }

Qor::Ptr<Entity> Entity::parent() { return Qor::Ptr<Entity>(parent_); }

void Entity::parentIs(Qor::Ptr<Entity> const& parent) {
    if (parent_ == parent.ptr()) {
        return;
    }
    parent_ = parent.ptr();
    handleParent(parent);
}

AttributeId Entity::parentAttrId() const { return parentAttrId_; }

void Entity::parentAttrIdIs(AttributeId parentAttrId) { parentAttrId_ = parentAttrId; }

String8 Entity::uriPath() const {
    if (!parent_) {
        return String8("/") + pathElement(name_);
    }
    return parent_->uriPath() + "/" + parent_->qorChildPath(parentAttrId_, *this);
}

String8 Entity::fullName() const { return String8(uriPath().view().substr(1)); }

String8 Entity::attributeString(AttributeId) const { return "unknown"; }

void Entity::qorNotifieeAdapterIs(Qor::Ptr<Entity const> const&) {}

bool Entity::qorHasAttrLogInterface() const { return false; }

Entity::QorNboAttrLogSa const* Entity::qorNboAttrLogSa(
    Qor::Ptr<NboAttrLog::Out const> const& out) const {
    return const_cast<Entity*>(this)->qorNboAttrLogSa(out);
}

Entity::QorNboAttrLogSa* Entity::qorNboAttrLogSa(Qor::Ptr<NboAttrLog::Out const> const&) {
    return nullptr;
}

Entity::QorNboAttrLogSa* Entity::qorNboAttrLogSaForMsgChannel(
    Qor::Ptr<QorNboAttrLogSa> const&) const {
    return nullptr;
}

Qor::Ptr<Entity::QorNboAttrLogSa> Entity::qorNboAttrLogSaIs(BitSet<27, U32>, U32,
                                                            Qor::Ptr<NboAttrLog::Out> const&,
                                                            PtrInterface*) {
    throwInternalException(fullName() + " has no attribute log interface");
}

Qor::Ptr<Entity::QorNboAttrLogSa> Entity::qorNboAttrLogSaDel(
    Qor::Ptr<NboAttrLog::Out const> const&) {
    throwInternalException(fullName() + " has no attribute log interface");
}

bool Entity::qorIsCollection(AttributeId) const { return false; }

String8 Entity::qorChildPath(AttributeId id, Entity const& child) const {
    String8 path = attributeString(id);
    if (qorIsCollection(id)) {
        path += "/";
        path += pathElement(child.qorName());
    }
    return path;
}

Qor::Ptr<Entity> Entity::qorPathStep(String8 const*, std::size_t, std::size_t*) { return nullptr; }

void Entity::handleParent(Qor::Ptr<Entity> const&) {}

String8 pathElement(String8 const& name) {
    static constexpr std::string_view plain = "-_.~:@!$'()*,+";
    static constexpr char const* digits = "0123456789ABCDEF";
    std::string out;
    out.reserve(name.length());
    for (char const c : name.view()) {
        bool const alphanumeric =
            (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
        if (alphanumeric || plain.find(c) != std::string_view::npos) {
            out += c;
        } else {
            auto const byte = static_cast<unsigned char>(c);
            out += '%';
            out += digits[byte >> 4];
            out += digits[byte & 15];
        }
    }
    return String8(std::string_view(out));
}

}  // namespace Qor
