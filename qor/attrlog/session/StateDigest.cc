#include <qor/attrlog/session/StateDigest.h>

#include <qor/generic/GenericIf.h>
#include <qor/tree/Dir.h>

namespace Qor {

namespace NboAttrLog {

namespace {

// FNV-1a, 64 bits; each text ends with a byte of its own.
class Hash {
  public:
    void add(String8 const& text) {
        for (char const c : text.view()) add(static_cast<unsigned char>(c));
        add(0);
    }
    U64 value() const noexcept { return value_; }

  private:
    void add(unsigned char byte) noexcept { value_ = (value_ ^ byte) * 0x100000001B3; }

    U64 value_ = 0xCBF29CE484222325;
};

GenericIf::Ptr wrapper(Entity& entity) { return entity.fwkType()->genericIf_(&entity, true); }

String8 textOf(GenericIf const* held) { return held != nullptr ? held->strRep() : String8("null"); }

bool holdsChildren(Entity const& entity, QorAttr const& attribute) {
    return attribute.flags().isInstantiating() || dynamic_cast<Dir const*>(&entity) != nullptr;
}

void addValue(Hash& hash, GenericIf& held, QorAttr const& attribute) {
    hash.add(attribute.name());
    if (!attribute.flags().isCollection()) {
        hash.add(textOf(held.attributeOp(attribute.id()).ptr()));
        return;
    }
    for (auto at = held.attributeIteratorConst(attribute.id()); at; ++at) {
        hash.add(textOf(at.key().ptr()));
        hash.add(textOf(at.value().ptr()));
    }
}

void addEntity(Hash& hash, Entity& entity) {
    GenericIf::Ptr const held = wrapper(entity);
    for (auto const& attribute : entity.fwkType()->attributes()) {
        bool const isHeld = attribute->flags().isCollection() || attribute->flags().isStored();
        if (isHeld && !attribute->introspection().isFunction() &&
            !holdsChildren(entity, *attribute)) {
            addValue(hash, *held, *attribute);
        }
    }
}

QorAttr::Ptr collectionOf(Entity const& entity, AttributeId id) {
    QorAttr::Ptr const attribute = entity.fwkType()->attr(id);
    if (!attribute || !attribute->flags().isCollection()) {
        throwRangeException(entity.uriPath() + " has no such collection");
    }
    return attribute;
}

}  // namespace

StateDigest stateDigest(Entity& entity, DigestPage const& page) {
    Hash hash;
    StateDigest digest;
    if (page.attribute == 0) {
        addEntity(hash, entity);
        return {1, hash.value(), {}};
    }
    QorAttr::Ptr const attribute = collectionOf(entity, page.attribute);
    GenericIf::Ptr const held = wrapper(entity);
    bool const ownsMembers = holdsChildren(entity, *attribute);
    auto at = page.from.empty()
                  ? held->attributeIteratorConst(page.attribute)
                  : held->attributeIteratorKeyConst(
                        page.attribute, attribute->keyType()->genericIfFromStrep(page.from, true));
    for (; at && digest.rows < page.most; ++at, ++digest.rows) {
        hash.add(textOf(at.key().ptr()));
        GenericIf::Ptr const member = at.value();
        auto const child = member ? member->entityConst() : nullptr;
        if (ownsMembers && child) {
            addEntity(hash, const_cast<Entity&>(*child));
        } else {
            hash.add(textOf(member.ptr()));
        }
    }
    digest.value = hash.value();
    if (at) digest.next = at.key()->strRep();
    return digest;
}

}  // namespace NboAttrLog

}  // namespace Qor
