// The base of everything that has a name and a place in the tree: rows, containers, directories.
// An entity is owned by whoever counts it; its parent is a plain pointer that the owner sets when
// it takes the entity in and clears when it lets it go. An entity belongs to one thread at a time;
// only its count word may be changed on any thread.
#ifndef QOR_ENTITY_ENTITY_H
#define QOR_ENTITY_ENTITY_H

#include <qor/collections/BitSet.h>
#include <qor/core/Name.h>
#include <qor/core/Ptr.h>
#include <qor/core/VFPtrInterface.h>

namespace Qor {

namespace NboAttrLog {
class Out;
}

class QOR_EXPORT Entity : public VFPtrInterface {
  public:
    class NotifieeConst;  // <qor/notify/EntityNotifiee.h>
    class Notifiee;
    class QorNboAttrLogSa;  // <qor/attrlog/flow/EntityAdapter.h>

    using Ptr = Qor::Ptr<Entity>;
    using PtrConst = Qor::Ptr<Entity const>;

    explicit Entity(Name name);
    ~Entity() override;

    /// The record of this class, built on first use; never null.
    static QorType* _fwkType();
    QorType* fwkType() const override;

    /// The entity's name; empty for one that is known by something else.
    virtual Name name() const;
    /// The owning entity, or null.
    virtual Qor::Ptr<Entity const> parent() const;
    virtual Qor::Ptr<Entity> parent();
    /// Sets the owner or, with null, clears it, and calls handleParent when that is a change.
    virtual void parentIs(Qor::Ptr<Entity> const& parent);
    /// The record of the owner's attribute that holds this entity; null without an owner, and while
    /// introspection is off.
    virtual QorAttr const* parentAttr() const;
    /// The id of the owner's attribute that holds this entity; 0 while no owner has set one.
    virtual AttributeId parentAttrId() const;
    virtual void parentAttrIdIs(AttributeId parentAttrId);
    /// Path from the root, such as /vgw/status/ovsdb/logicalSwitch/NAME. Bytes of a name that could
    /// be taken for structure or that do not print are written as %XX.
    virtual String8 uriPath() const;
    /// The path without its leading slash.
    virtual String8 fullName() const;
    /// The name of the attribute with that id, "unknown" if there is none.
    virtual String8 attributeString(AttributeId id) const;
    /// Hook of the notification layer for adapters of other entities.
    virtual void qorNotifieeAdapterIs(Qor::Ptr<Entity const> const& adapter);

  protected:
    /// Called when the owner has changed.
    virtual void handleParent(Qor::Ptr<Entity> const& parent);

  public:
    /// The stream adapter that serves `out`, or null. Nothing is kept: the result is borrowed.
    virtual QorNboAttrLogSa const* qorNboAttrLogSa(
        Qor::Ptr<NboAttrLog::Out const> const& out) const;
    /// Whether entities of this class can be streamed as an attribute log. The operations on stream
    /// adapters that follow answer null, or raise InternalException, where it cannot.
    virtual bool qorHasAttrLogInterface() const;
    virtual QorNboAttrLogSa* qorNboAttrLogSa(Qor::Ptr<NboAttrLog::Out const> const& out);
    /// An adapter, other than the given one, on the same message channel, or null.
    virtual QorNboAttrLogSa* qorNboAttrLogSaForMsgChannel(
        Qor::Ptr<QorNboAttrLogSa> const& other) const;
    /// Finds or makes the adapter for `out`. `bits` are its flags, `owner` the message channel's
    /// entry or null. A null `out` raises the range exception "null ValidPtr".
    virtual Qor::Ptr<QorNboAttrLogSa> qorNboAttrLogSaIs(BitSet<27, U32> bits, U32 version,
                                                        Qor::Ptr<NboAttrLog::Out> const& out,
                                                        PtrInterface* owner);
    /// Removes the adapter for `out` from its demuxer and hands it over; null if there is none.
    virtual Qor::Ptr<QorNboAttrLogSa> qorNboAttrLogSaDel(
        Qor::Ptr<NboAttrLog::Out const> const& out);

    /// Whether the attribute holds several entities by key, so that a path needs the key as well.
    virtual bool qorIsCollection(AttributeId id) const;
    /// How a path names `child`, which this entity holds in attribute `id`.
    virtual String8 qorChildPath(AttributeId id, Entity const& child) const;

    /// One step down a path: the entity that this one holds under the first of `elements`, which
    /// are `count` and decoded. `used` receives how many of them named it. Null when there is none.
    virtual Qor::Ptr<Entity> qorPathStep(String8 const* elements, std::size_t count,
                                         std::size_t* used);

    /// The name without a copy.
    Name const& qorName() const noexcept { return name_; }
    /// The parent without a count.
    Entity* qorParent() const noexcept { return parent_; }

  private:
    AttributeId parentAttrId_ = 0;
    Name name_;
    Entity* parent_ = nullptr;
};

/// One element of a path: bytes other than letters, digits and -_.~:@!$'()*,+ become %XX.
QOR_EXPORT String8 pathElement(String8 const& name);

}  // namespace Qor

#endif
