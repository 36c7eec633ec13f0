// An entity of a class that the process knows by a description alone: what a peer announced whose
// class is not compiled in here. It holds what the description names, tells every change, streams
// itself as entities of compiled classes do, and may be written where the peer allows it. It is
// read and written through its wrapper (fwkType()->genericIf_) like any other.
//
// Attributes stand in slots, in the order of their ids. It owns its children, and is their parent.
// Operations have no code here. One thread, as every entity.
#ifndef QOR_DYNAMIC_DYNAMIC_ENTITY_H
#define QOR_DYNAMIC_DYNAMIC_ENTITY_H

#include <memory>
#include <variant>

#include <qor/dynamic/DynamicType.h>
#include <qor/model/Class.h>

namespace Qor {

/// The key of a described collection.
class QOR_EXPORT DynamicKey : public AnyValue {
  public:
    DynamicKey() = default;
    explicit DynamicKey(AnyValue value) noexcept : AnyValue(std::move(value)) {}
    /// The name of a child.
    DynamicKey(Name const& name) : AnyValue(*valueStepsOf<Name>(), &name) {}
    /// Reads a key of the attribute at hand.
    DynamicKey(NboAttrLog::In* in, StreamBogon);
};

/// The value of a described attribute.
class QOR_EXPORT DynamicValue : public AnyValue {
  public:
    DynamicValue() = default;
    explicit DynamicValue(AnyValue value) noexcept : AnyValue(std::move(value)) {}
    /// Reads a value of the attribute at hand.
    DynamicValue(NboAttrLog::In* in, StreamBogon);
};

struct DynamicAttributeList;

class QOR_EXPORT DynamicEntity : public Entity {
  public:
    using Ptr = Qor::Ptr<DynamicEntity>;
    using PtrConst = Qor::Ptr<DynamicEntity const>;
    using NotifierRoot = DynamicEntity;
    class NotifieeConst;
    class Notifiee;
    class QorNboAttrLogSa;  // <qor/dynamic/DynamicAdapter.h>
    class GenericIf_;       // <qor/dynamic/DynamicWrapper.h>
    using QorBase = Entity;
    using QorAttributes = DynamicAttributeList;
    static constexpr char const* qorTypeName = "Qor::DynamicEntity";

    using FlagMap = HashMap<ValueMember<DynamicKey, bool>, DynamicKey>;
    using TextMap = HashMap<ValueMember<DynamicKey, String8>, DynamicKey>;
    using EntityMap = HashMap<RefMember<DynamicKey, Entity>, DynamicKey>;
    /// An operation has nothing in its slot.
    using Slot =
        std::variant<std::monostate, AnyValue, Qor::Ptr<Entity>, FlagMap, TextMap, EntityMap>;

    DynamicEntity(DynamicType& type, Name name);
    ~DynamicEntity() override;

    static QorType* _fwkType() { return Entity::_fwkType(); }
    QorType* fwkType() const override { return &type_; }
    DynamicType& dynamicType() const noexcept { return type_; }
    Slot& slot(U32 index) noexcept { return slots_[index]; }
    Slot const& slot(U32 index) const noexcept { return slots_[index]; }
    /// Sets what the constructor takes, and tells nobody.
    void constructedIs(DynamicAttribute const& attribute, AnyValue value);

    void isNondestructingIs(bool isNondestructing) override;
    void zeroReferencesIs(bool zeroReferences) override;
    String8 attributeString(AttributeId id) const override;
    bool qorIsCollection(AttributeId id) const override;
    Qor::Ptr<Entity> qorPathStep(String8 const* elements, std::size_t count,
                                 std::size_t* used) override;
    bool qorHasAttrLogInterface() const override;
    using Entity::qorNboAttrLogSa;
    Entity::QorNboAttrLogSa* qorNboAttrLogSa(Qor::Ptr<NboAttrLog::Out const> const& out) override;
    Entity::QorNboAttrLogSa* qorNboAttrLogSaForMsgChannel(
        Qor::Ptr<Entity::QorNboAttrLogSa> const& other) const override;
    Qor::Ptr<Entity::QorNboAttrLogSa> qorNboAttrLogSaIs(BitSet<27, U32> bits, U32 version,
                                                        Qor::Ptr<NboAttrLog::Out> const& out,
                                                        PtrInterface* owner) override;
    Qor::Ptr<Entity::QorNboAttrLogSa> qorNboAttrLogSaDel(
        Qor::Ptr<NboAttrLog::Out const> const& out) override;
    ListRaw<NotifieeConst>& notifierList() const noexcept { return notifierList_; }

  private:
    DynamicType& type_;
    std::unique_ptr<Slot[]> slots_;
    mutable ListRaw<NotifieeConst> notifierList_;
};

/// Hears of a dynamic entity. Tools rather derive from GenericNotifiee, which hears of all
/// entities.
class QOR_EXPORT DynamicEntity::NotifieeConst : public RootNotifiee<DynamicEntity> {
  public:
    using Ptr = Qor::Ptr<NotifieeConst>;
    static NotifieeKind const qorKind;
    NotifieeConst();
    ~NotifieeConst() override;
    Qor::Ptr<DynamicEntity const> notifier() const;

    /// A single value or a single child has changed.
    virtual void onAttr(AttributeId id);
    /// The member under `key` has come, gone or changed.
    virtual void onAttrKey(AttributeId id, DynamicKey const& key);
    void onIsNondestructing() { onAttr(isNondestructingId); }
};

class QOR_EXPORT DynamicEntity::Notifiee : public DynamicEntity::NotifieeConst {
  public:
    using Ptr = Qor::Ptr<Notifiee>;
    Qor::Ptr<DynamicEntity> notifier() const;
};

}  // namespace Qor

#endif
