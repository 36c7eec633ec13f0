// The base of wrappers over entities: what every entity has by the framework, and the one place
// where operations are dispatched. A class's own attributes stand in a table (GenericAttribute)
// that its wrapper hands in.
#ifndef QOR_GENERIC_GENERIC_IF_ENTITY_H
#define QOR_GENERIC_GENERIC_IF_ENTITY_H

#include <span>

#include <qor/generic/Wrap.h>
#include <qor/model/Attribute.h>
#include <qor/model/Notifier.h>

namespace Qor {

class GenericIfEntity;

inline constexpr AttributeId fwkKeyId = 0;
inline constexpr AttributeId entityNameId = 128;
inline constexpr AttributeId entityFullNameId = 129;
inline constexpr AttributeId entityUriPathId = 130;
inline constexpr AttributeId hasAttrLogInterfaceId = 154;
inline constexpr AttributeId saForMsgChannelId = 155;

/// The steps of a collection's iterator, on an object on the heap.
struct GenericWalk {
    void* (*atStart)(Entity& entity);
    void* (*atKey)(Entity& entity, GenericIf const& key);
    void* (*atHash)(Entity& entity, GenericIf const& key);
    GenericIf::Ptr (*value)(void const* iterator, bool isConst);
    GenericIf::PtrConst (*key)(void const* iterator);
    void (*step)(void* iterator);
    void* (*clone)(void const* iterator);
    bool (*isThere)(void const* iterator);
    void (*end)(void* iterator);
};

/// One attribute of a class as the wrapper works with it: what its kind has no use for is null.
struct GenericAttribute {
    using Get = GenericIf::Ptr (*)(Entity& entity, GenericIf const* key, bool isConst);
    using Set = void (*)(Entity& entity, GenericIf const* key, GenericIf const& value);
    using Make = GenericIf::Ptr (*)(Entity& entity, GenericIf const* arguments, bool isConst);
    using Del = GenericIf::Ptr (*)(Entity& entity, GenericIf const* key, bool isConst);

    AttributeId id = 0;
    char const* name = nullptr;
    AttributeKind kind = AttributeKind::scalar;
    Get get = nullptr;  // of an operation: its call, the key being the arguments
    Set set = nullptr;
    Make make = nullptr;
    Del del = nullptr;
    U32 (*count)(Entity const& entity) = nullptr;
    U32 (*version)(Entity const& entity) = nullptr;
    bool (*exists)(Entity const& entity, GenericIf const& key) = nullptr;
    GenericWalk const* walk = nullptr;

    /// What is named when the key of a member is missing.
    char const* keyName() const noexcept {
        return kind == AttributeKind::childMap ? "name" : "qor_index";
    }
};

class QOR_EXPORT GenericIfEntity : public GenericIf {
  public:
    GenericIfEntity(Qor::Ptr<Entity> const& entity, bool isConst);
    ~GenericIfEntity() override;

    QorType* fwkType() const override;
    Ptr genericClone() const override;
    /// Wraps another entity; one of another class counts as none. What waits for delivery stays.
    void notifierIs(Qor::Ptr<PtrInterface const> const& notifier) override;
    using GenericIf::attributeOp;
    Ptr attributeOp(AttributeOp const& op, PtrConst const& key, Ptr const& value) override;
    void const* genericValue(Qor::Ptr<QorType const> const& type) const override;
    String8 attributeString(AttributeId id) const override;
    String8 strRep() const override;
    Qor::Ptr<Entity const> entityConst() const override;
    Qor::Ptr<Entity> entity() override;

    AttributeIteratorConst attributeIteratorConst(AttributeId id) override;
    AttributeIteratorConst attributeIteratorKeyConst(AttributeId id, PtrConst const& key) override;
    using GenericIf::attributeIterator_iterObj;
    Ptr attributeIterator_iterObj(AttributeIteratorConst const& iterator) override;
    Ptr attributeIterator_iterInc(AttributeIteratorConst const& iterator) override;
    PtrConst attributeIterator_iterKey(AttributeIteratorConst const& iterator) override;
    AttributeIteratorConst attributeIterator_iterClone(
        AttributeIteratorConst const& iterator) override;
    bool attributeIterator_nonNull(AttributeIteratorConst const& iterator) override;
    Ptr attributeIterator_iterDel(AttributeIteratorConst const& iterator) override;

    /// From the first member that has the hash of `key`, or the next in the order: so in front of
    /// all that tie with it.
    virtual AttributeIteratorConst attributeIteratorHashConst(AttributeId id, PtrConst const& key);

    /// A handler's part for an attribute that is no collection, or for a collection as a whole.
    void qorHeard(AttributeId id);
    /// A handler's part for a key of a collection.
    template <class K>
    void qorHeard(AttributeId id, K const& key, PendingKey<K>& pending);

  protected:
    /// The attribute with that id of this class or one above it; null for the framework's.
    virtual GenericAttribute const* qorAttribute(AttributeId id) const;
    /// The step of an operation on an attribute of the table.
    Ptr applied(GenericAttribute const& attribute, AttributeOp const& op, GenericIf const* key,
                GenericIf const* value);
    /// The wrapped entity; raises TypeException with the class's short name when it is null.
    Entity& needEntity() const;
    /// At this level there is no adapter.
    void qorAdapterRegisteredIs(bool) noexcept {}

  private:
    Ptr frameworkOp(AttributeOp const& op, GenericIf const* key, GenericIf const* value);
    Ptr frameworkValue(Entity const& entity, AttributeId id, char const* name) const;
    static bool isFrameworkOperation(AttributeId id) noexcept;
    GenericWalk const& walkOf(AttributeId id) const;
};

template <class K>
void GenericIfEntity::qorHeard(AttributeId id, K const& key, PendingKey<K>& pending) {
    if (!qorOnAttribute(id, pending.note(key))) {
        PtrConst wrapper(wrapped(key, isConst()));
        onAttribute(id, wrapper);
    }
}

/// The table's row of that id, or null.
inline GenericAttribute const* attributeIn(std::span<GenericAttribute const> table,
                                           AttributeId id) noexcept {
    for (GenericAttribute const& attribute : table) {
        if (attribute.id == id) {
            return &attribute;
        }
    }
    return nullptr;
}

}  // namespace Qor

#endif
