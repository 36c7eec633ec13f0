// What the attribute log needs of each kind of described attribute: the descriptors that
// <qor/attrlog/family/StreamAttribute.h> asks for, of the attribute at hand.
#ifndef QOR_DYNAMIC_DYNAMIC_STREAMS_H
#define QOR_DYNAMIC_DYNAMIC_STREAMS_H

#include <qor/attrlog/family/StreamAttribute.h>
#include <qor/dynamic/DynamicAttributes.h>

namespace Qor {

template <class A, StreamKind k>
struct DynamicStream {
    using Attr = A;
    using Entity = DynamicEntity;
    using Value = typename A::Value;
    static constexpr auto id = A::id;
    static constexpr auto name = A::name;
    static constexpr StreamKind kind = k;
    static constexpr bool isKeyed = isKeyedKind(k);
    static void on(auto& adapter) { adapter.onAttr(id); }
    static void on(auto& adapter, DynamicKey const& key) { adapter.onAttrKey(id, key); }
};

struct DynamicValueStream : DynamicStream<DynamicValueAttr, StreamKind::scalar> {
    static AnyValue const& get(DynamicEntity const& entity) { return Attr::field(entity); }
    static void set(DynamicEntity& entity, DynamicValue value) {
        setScalar<Attr>(entity, std::move(value));
    }
};

struct DynamicTextStream : DynamicStream<DynamicValueAttr, StreamKind::text> {
    static String8 const& get(DynamicEntity const& entity) {
        return Attr::field(entity).as<String8>();
    }
    static void set(DynamicEntity& entity, String8 const& text) {
        setScalar<Attr>(entity, DynamicValue(AnyValue(*DynamicScope::attribute().value, &text)));
    }
};

template <class A, StreamKind k>
struct DynamicKeyedStream : DynamicStream<A, k> {
    using Key = typename A::Key;
    using Member = typename A::Member;
    static void set(DynamicEntity& entity, Key const& key, typename A::Value const& value) {
        setKeyed<A>(entity, key, value);
    }
    static void del(DynamicEntity& entity, Key const& key) { delKeyed<A>(entity, key); }
};

struct DynamicFlagStream : DynamicKeyedStream<DynamicFlagAttr, StreamKind::flagMember> {};

struct DynamicTextMemberStream : DynamicKeyedStream<DynamicTextAttr, StreamKind::textMember> {
    static void set(DynamicEntity& entity, Key const& key, String8 const& value) {
        Attr::set(entity, key, value);
    }
};

struct DynamicReferenceStream : DynamicKeyedStream<DynamicReferenceAttr, StreamKind::reference> {
    using Target = Qor::Entity;
    static void set(DynamicEntity& entity, Key const& key, Ptr<Target> const& target) {
        setDynamicReference(entity, key, target);
    }
};

struct DynamicChildMemberStream : DynamicKeyedStream<DynamicChildMapAttr, StreamKind::childMember> {
    using Target = Qor::Entity;
    static void set(DynamicEntity& entity, Name const& name) {
        setDynamicChildMember(entity, name);
    }
    static void del(DynamicEntity& entity, Key const& key) { delDynamicChildMember(entity, key); }
};

struct DynamicChildStream : DynamicStream<DynamicChildAttr, StreamKind::child> {
    using Target = Qor::Entity;
    static Ptr<Target> const& get(DynamicEntity const& entity) { return Attr::field(entity); }
    static void set(DynamicEntity& entity, Name const& name) { setDynamicChild(entity, name); }
    static void del(DynamicEntity& entity) { delDynamicChild(entity); }
};

using DynamicNondestructingStream = StreamNondestructing<DynamicEntity>;

/// What StreamList is to a compiled class, for the class at hand.
struct DynamicStreamList {
    static constexpr std::size_t size = 1;  // isNondestructing at least
    static constexpr bool hasChildren = true;

    /// Visits the attribute at hand.
    template <class Visit>
    static auto visitOne(Visit& visit) {
        switch (DynamicScope::attribute().sort) {
            case DynamicSort::nondestructing:
                return visit.template operator()<DynamicNondestructingStream>();
            case DynamicSort::text:
                return visit.template operator()<DynamicTextStream>();
            case DynamicSort::flagMember:
                return visit.template operator()<DynamicFlagStream>();
            case DynamicSort::textMember:
                return visit.template operator()<DynamicTextMemberStream>();
            case DynamicSort::reference:
                return visit.template operator()<DynamicReferenceStream>();
            case DynamicSort::childMember:
                return visit.template operator()<DynamicChildMemberStream>();
            case DynamicSort::child:
                return visit.template operator()<DynamicChildStream>();
            case DynamicSort::value:
            case DynamicSort::constant:
            case DynamicSort::operation:
                break;
        }
        return visit.template operator()<DynamicValueStream>();
    }
    template <class Visit>
    static bool whileTrue(Visit&& visit) {
        DynamicType const& type = DynamicScope::type();
        for (DynamicAttribute const& attribute : type.table()) {
            if (!attribute.isStreamed()) continue;
            DynamicScope const scope(type, &attribute);
            if (!visitOne(visit)) return false;
        }
        return true;
    }
    template <class Visit>
    static void forEach(Visit&& visit) {
        whileTrue([&visit]<class S>() {
            visit.template operator()<S>();
            return true;
        });
    }
    static bool has(AttributeId id) noexcept {
        DynamicAttribute const* const attribute = DynamicScope::type().attribute(id);
        return attribute && attribute->isStreamed();
    }
    static AttributeId first() noexcept { return DynamicScope::type().firstStreamed(); }
    static AttributeId after(AttributeId id) noexcept {
        return DynamicScope::type().streamedAfter(id);
    }
};

}  // namespace Qor

#endif
