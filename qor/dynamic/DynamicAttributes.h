// The descriptors of described attributes, one for each kind: what <qor/model/Attribute.h> asks
// for, answered from the attribute at hand (DynamicScope). And the list of them, which visits the
// attributes of the class at hand, each within a scope of its own.
#ifndef QOR_DYNAMIC_DYNAMIC_ATTRIBUTES_H
#define QOR_DYNAMIC_DYNAMIC_ATTRIBUTES_H

#include <qor/dynamic/DynamicEntity.h>
#include <qor/dynamic/DynamicScope.h>

namespace Qor {

template <AttributeKind k>
struct DynamicAttributeBase {
    /// Stands where compiled descriptors have a number.
    struct Id {
        operator AttributeId() const noexcept { return DynamicScope::attribute().id; }
    };
    struct Text {
        operator char const*() const noexcept { return DynamicScope::attribute().name.charPtr(); }
    };

    using Entity = DynamicEntity;
    static constexpr Id id{};
    static constexpr Text name{};
    static constexpr AttributeKind kind = k;
    static constexpr bool isKeyed =
        k == AttributeKind::valueMap || k == AttributeKind::refMap || k == AttributeKind::childMap;

    template <class Held>
    static auto& held(auto& entity) {
        return std::get<Held>(entity.slot(DynamicScope::attribute().index));
    }
    static void tell(auto& hearer) { hearer.onAttr(id); }
    static void tell(auto& hearer, DynamicKey const& key) { hearer.onAttrKey(id, key); }
    static void tellWhole(auto& hearer) { hearer.onAttribute(id); }
    static auto& pending(auto& notifiee) { return notifiee.pending(DynamicScope::attribute()); }
};

struct DynamicValueAttr : DynamicAttributeBase<AttributeKind::scalar> {
    using Value = DynamicValue;
    static auto& field(auto& entity) { return held<AnyValue>(entity); }
};

struct DynamicConstantAttr : DynamicAttributeBase<AttributeKind::constField> {
    using Value = DynamicValue;
    static auto& field(auto& entity) { return held<AnyValue>(entity); }
};

template <AttributeKind k, class V>
struct DynamicKeyedAttr : DynamicAttributeBase<k> {
    using Key = DynamicKey;
    using Value = V;
    using Member = ValueMember<DynamicKey, V>;
    using Map = HashMap<Member, DynamicKey>;
    static auto& map(auto& entity) { return DynamicKeyedAttr::template held<Map>(entity); }
    static decltype(auto) valueOf(Member const& member) noexcept { return member.value(); }
};

struct DynamicFlagAttr : DynamicKeyedAttr<AttributeKind::valueMap, bool> {};
struct DynamicTextAttr : DynamicKeyedAttr<AttributeKind::valueMap, String8> {
    /// Refuses a key beside which a record would have no room for a chunk.
    static void set(DynamicEntity& entity, DynamicKey const& key, String8 const& text);
};
struct DynamicReferenceAttr : DynamicKeyedAttr<AttributeKind::refMap, Ptr<Qor::Entity>> {
    using Target = Qor::Entity;
};
struct DynamicChildMapAttr : DynamicKeyedAttr<AttributeKind::childMap, Ptr<Qor::Entity>> {
    using Target = Qor::Entity;
    static void notify(Qor::Entity& owner, DynamicKey const& key, Ptr<Member> const& member);
};
struct DynamicChildAttr : DynamicAttributeBase<AttributeKind::child> {
    using Target = Qor::Entity;
    using Value = Ptr<Qor::Entity>;
    static auto& field(auto& entity) { return held<Ptr<Qor::Entity>>(entity); }
};
struct DynamicOperationAttr : DynamicAttributeBase<AttributeKind::operation> {};

/// What AttributeList is to a compiled class, for the class at hand.
struct DynamicAttributeList {
    /// Calls `visit.template operator()<A>()` for the attribute at hand.
    template <class Visit>
    static void visitOne(Visit& visit) {
        switch (DynamicScope::attribute().sort) {
            case DynamicSort::nondestructing:
                return;
            case DynamicSort::value:
            case DynamicSort::text:
                return visit.template operator()<DynamicValueAttr>();
            case DynamicSort::constant:
                return visit.template operator()<DynamicConstantAttr>();
            case DynamicSort::flagMember:
                return visit.template operator()<DynamicFlagAttr>();
            case DynamicSort::textMember:
                return visit.template operator()<DynamicTextAttr>();
            case DynamicSort::reference:
                return visit.template operator()<DynamicReferenceAttr>();
            case DynamicSort::childMember:
                return visit.template operator()<DynamicChildMapAttr>();
            case DynamicSort::child:
                return visit.template operator()<DynamicChildAttr>();
            case DynamicSort::operation:
                return visit.template operator()<DynamicOperationAttr>();
        }
    }
    template <class Visit>
    static void forEach(Visit&& visit) {
        DynamicType const& type = DynamicScope::type();
        for (DynamicAttribute const& attribute : type.table()) {
            DynamicScope const scope(type, &attribute);
            visitOne(visit);
        }
    }
    static bool isKeyed(AttributeId id) noexcept {
        DynamicAttribute const* const attribute = DynamicScope::type().attribute(id);
        return attribute && attribute->isKeyed();
    }
};

// What an entity owns. The attribute at hand is that of the children.

/// A new child of the described type, of that name.
Ptr<Entity> newDynamicChild(DynamicEntity& owner, Name const& name);
/// The child of that name, made and told of when there is none.
Ptr<Entity> setDynamicChildMember(DynamicEntity& owner, Name const& name);
Ptr<Entity> delDynamicChildMember(DynamicEntity& owner, DynamicKey const& key);
/// The same of a single child; one of another name is let go.
Ptr<Entity> setDynamicChild(DynamicEntity& owner, Name const& name);
Ptr<Entity> delDynamicChild(DynamicEntity& owner);
/// Makes `key` refer to `target`, which must be of the attribute's type; null removes the key.
void setDynamicReference(DynamicEntity& entity, DynamicKey const& key, Ptr<Entity> const& target);

}  // namespace Qor

#endif
