// A directory: named entries, each an entity and a state. It is what the tree of a process begins
// with, and it holds what no other entity owns. A directory counts a reference on the entities in
// it and is their parent; an entity stands in one directory at a time. Entries are walked in the
// order of their names' reversed hashes. A directory belongs to one thread.
#ifndef QOR_TREE_DIR_H
#define QOR_TREE_DIR_H

#include <qor/model/Class.h>

namespace Qor {

class QOR_EXPORT Dir : public Entity {
  public:
    using Ptr = Qor::Ptr<Dir>;
    using PtrConst = Qor::Ptr<Dir const>;
    using NotifierRoot = Dir;
    class NotifieeConst;
    class Notifiee;
    class QorEntry;
    class QorNboAttrLogSa;  // <qor/attrlog/dir/DirAdapter.h>
    class _Type;            // <qor/generic/Dir.h>
    class GenericIf_;       // the same
    template <class N, class W>
    class QorForward;
    struct EntryAttr;
    using QorBase = Entity;
    using QorAttributes = AttributeList<EntryAttr>;
    static constexpr char const* qorTypeName = "Qor::Dir";

    /// How far an entry can be relied on.
    enum class EntryState : U8 {
        ready,     // the entity is whole and kept up to date
        pending,   // announced; its contents have not all arrived
        stale,     // its source is out of reach; the contents are those of the last contact
        released,  // its source has let it go; the contents stay as they were last
    };

    using EntryIterator = AttributeIterator<EntryAttr>;
    using EntryIteratorConst = AttributeIteratorConst<EntryAttr>;
    using QorEntryIterator = AttributeIterator<EntryAttr>;

    explicit Dir(Name name);
    ~Dir() override;

    static QorType* _fwkType();
    QorType* fwkType() const override;

    /// The entity of that name, or null.
    Qor::Ptr<Entity> entry(Name const& name) const;
    /// Puts `entity` under that name, in state ready, in the place of what stood there; null
    /// removes the name. An entity that stands in another place of the tree is the caller's to take
    /// from there. Tells onEntry(name) when that is a change. Raises RangeException for this
    /// directory itself and for what it stands in.
    void entryIs(Name const& name, Qor::Ptr<Entity> const& entity);
    /// Removes the name and hands the entity over; null if absent.
    Qor::Ptr<Entity> entryDel(Name const& name);
    void entryDelAll();
    void entryNotify(Name const& name, Qor::Ptr<QorEntry> const& member);
    /// entryIs() of an entity, by who has looked the name up: `present` is the member that holds it
    /// now, or null. The member that holds the entity, whatever listeners have done to it.
    Qor::Ptr<QorEntry> qorEntryIs(Name const& name, Qor::Ptr<QorEntry> const& present,
                                  Qor::Ptr<Entity> const& entity);
    /// The member that holds the entry, or null.
    Qor::Ptr<QorEntry> qorEntry(Name const& name) const;
    /// Number of entries.
    U32 entrys() const noexcept { return entry_.size(); }
    EntryIterator entryIterator();
    EntryIteratorConst entryIterator() const;
    EntryIteratorConst entryIteratorConst() const;

    /// The state of an entry; stale for a name that is not there.
    EntryState entryState(Name const& name) const;
    /// Changes the state of an entry that is there, and tells onEntry(name) when that is a change.
    void entryStateIs(Name const& name, EntryState state);

    void isNondestructingIs(bool isNondestructing) override;
    void zeroReferencesIs(bool zeroReferences) override;
    String8 attributeString(AttributeId id) const override;
    bool qorIsCollection(AttributeId id) const override;
    String8 qorChildPath(AttributeId id, Entity const& child) const override;
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
    HashMap<QorEntry, Name> entry_;
    mutable ListRaw<NotifieeConst> notifierList_;
};

/// One entry of a directory.
class QOR_EXPORT Dir::QorEntry : public VFPtrInterface {
  public:
    QorEntry(Name name, Qor::Ptr<Entity> entity)
        : placing_(nextPlacing()),
          hash_(rhash(name)),
          name_(std::move(name)),
          entity_(std::move(entity)) {}

    Name const& key() const noexcept { return name_; }
    Qor::Ptr<Entity> const& value() const noexcept { return entity_; }
    EntryState state() const noexcept { return state_; }
    /// Different for each time that an entity was put anywhere, also where it has stood before.
    U64 placing() const noexcept { return placing_; }

    Name const& fwkKey() const noexcept { return name_; }
    U32 fwkHash() const noexcept { return hash_; }
    QorEntry* fwkHmNext() const noexcept { return fwkHmNext_; }
    void fwkHmNextIs(QorEntry* next) noexcept { fwkHmNext_ = next; }

  private:
    friend class Dir;
    static U64 nextPlacing() noexcept;

    U64 placing_;
    U32 const hash_;  // kept here, as walks and growth ask for it and not for the name
    EntryState state_ = EntryState::ready;
    Name name_;
    Qor::Ptr<Entity> entity_;
    QorEntry* fwkHmNext_ = nullptr;
};

class QOR_EXPORT Dir::NotifieeConst : public RootNotifiee<Dir> {
  public:
    using Ptr = Qor::Ptr<NotifieeConst>;
    static NotifieeKind const qorKind;
    NotifieeConst();
    ~NotifieeConst() override;
    Qor::Ptr<Dir const> notifier() const;

    virtual void onIsNondestructing();
    virtual void onEntry(Name name);
    virtual void onEntryqorImmediate();
    virtual void onEntry();
    void qorDropPendingKeys() override;

  protected:
    PendingKey<Name> entryPending_;
};

class QOR_EXPORT Dir::Notifiee : public Dir::NotifieeConst {
  public:
    using Ptr = Qor::Ptr<Notifiee>;
    Qor::Ptr<Dir> notifier() const;
};

struct Dir::EntryAttr : AttributeBase<Dir, 258, AttributeKind::refMap> {
    using Key = Name;
    using Target = Qor::Entity;
    using Value = Qor::Ptr<Qor::Entity>;
    using Member = QorEntry;
    using Map = HashMap<QorEntry, Name>;
    static constexpr char const* name = "entry";
    static auto& map(auto& dir) { return dir.entry_; }
    static Value const& valueOf(Member const& member) noexcept { return member.value(); }
    static void tell(auto& hearer, Key const& key) { hearer.onEntry(key); }
    static void tellWhole(auto& hearer) { hearer.onEntry(); }
    static auto& pending(auto& notifiee) { return notifiee.qorEntryPending(); }
    static void set(Dir& dir, Key const& key, Value const& value) { dir.entryIs(key, value); }
    static Value del(Dir& dir, Key const& key) { return dir.entryDel(key); }
    static void notify(Entity& dir, Key const& key, Qor::Ptr<Member> const& member) {
        dir.entryNotify(key, member);
    }
};

}  // namespace Qor

#endif
