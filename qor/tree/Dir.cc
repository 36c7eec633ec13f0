#include <qor/tree/Dir.h>

#include <atomic>

namespace Qor {

constinit NotifieeKind const Dir::NotifieeConst::qorKind{NotifieeKind::Below{},
                                                         Entity::NotifieeConst::qorKind};

// Directories of all threads draw from one.
U64 Dir::QorEntry::nextPlacing() noexcept {
    static std::atomic<U64> last = 0;
    if (!isSingleThreaded()) [[unlikely]] {
        return last.fetch_add(1, std::memory_order_relaxed) + 1;
    }
    U64 const next = last.load(std::memory_order_relaxed) + 1;
    last.store(next, std::memory_order_relaxed);
    return next;
}

Dir::Dir(Name name) : Entity(std::move(name)) {}

Dir::~Dir() { delAll<EntryAttr>(*this); }

Qor::Ptr<Entity> Dir::entry(Name const& name) const { return keyedValue<EntryAttr>(*this, name); }

Qor::Ptr<Dir::QorEntry> Dir::qorEntry(Name const& name) const {
    return referenceMember<EntryAttr>(*this, name);
}

void Dir::entryIs(Name const& name, Qor::Ptr<Entity> const& entity) {
    if (entity) {
        qorEntryIs(name, qorEntry(name), entity);
    } else {
        entryDel(name);
    }
}

Qor::Ptr<Dir::QorEntry> Dir::qorEntryIs(Name const& name, Qor::Ptr<QorEntry> const& present,
                                        Qor::Ptr<Entity> const& entity) {
    for (Entity const* at = this; at; at = at->qorParent()) {
        if (at == entity.ptr()) throwRangeException("a directory can't stand within itself");
    }
    if (present && present->entity_ == entity) {
        return present;
    }
    Qor::Ptr<QorEntry> member = present;
    Qor::Ptr<Entity> old;  // goes when all is told: its end may run any code
    if (present) {
        old = std::exchange(present->entity_, entity);
        old->parentIs(nullptr);
        present->state_ = EntryState::ready;
        present->placing_ = QorEntry::nextPlacing();
    } else {
        member = newKeyed<EntryAttr>(*this, name, entity);
    }
    entity->parentAttrIdIs(EntryAttr::id);
    entity->parentIs(Entity::Ptr(this));
    tellKeyed<EntryAttr>(*this, name);
    return member;
}

Qor::Ptr<Entity> Dir::entryDel(Name const& name) {
    Qor::Ptr<QorEntry> const gone = entry_.memberDel(name);
    if (!gone) {
        return nullptr;
    }
    entryNotify(name, gone);
    return gone->entity_;
}

void Dir::entryDelAll() { delAll<EntryAttr>(*this); }

void Dir::entryNotify(Name const& name, Qor::Ptr<QorEntry> const& member) {
    member->entity_->parentIs(nullptr);
    tellKeyed<EntryAttr>(*this, name);
}

Dir::EntryIterator Dir::entryIterator() { return EntryIterator(*this); }

Dir::EntryIteratorConst Dir::entryIterator() const { return EntryIteratorConst(*this); }

Dir::EntryIteratorConst Dir::entryIteratorConst() const { return EntryIteratorConst(*this); }

Dir::EntryState Dir::entryState(Name const& name) const {
    QorEntry const* const member = entry_.member(name);
    return member ? member->state_ : EntryState::stale;
}

void Dir::entryStateIs(Name const& name, EntryState state) {
    QorEntry* const member = entry_.member(name);
    if (member && member->state_ != state) {
        member->state_ = state;
        tellKeyed<EntryAttr>(*this, name);
    }
}

void Dir::isNondestructingIs(bool isNondestructing) {
    changeNondestructing(*this, isNondestructing);
}

void Dir::zeroReferencesIs(bool) { tellZeroReferences(*this); }

String8 Dir::attributeString(AttributeId id) const {
    char const* const name = QorAttributes::nameOf(id);
    return name ? String8(name) : Entity::attributeString(id);
}

bool Dir::qorIsCollection(AttributeId id) const {
    return QorAttributes::isKeyed(id) || Entity::qorIsCollection(id);
}

// An entry is named by its key, which need not be the name of the entity.
String8 Dir::qorChildPath(AttributeId, Entity const& child) const {
    if (entry(child.qorName()).ptr() == &child) {
        return pathElement(child.qorName());
    }
    for (EntryIteratorConst at(*this); at; ++at) {
        if (at->value().ptr() == &child) {
            return pathElement(at->key());
        }
    }
    return pathElement(child.qorName());
}

Qor::Ptr<Entity> Dir::qorPathStep(String8 const* elements, std::size_t count, std::size_t* used) {
    if (count == 0) {
        return nullptr;
    }
    *used = 1;
    return entry(elements[0]);
}

Dir::NotifieeConst::NotifieeConst() { kindIs(qorKind); }

Dir::NotifieeConst::~NotifieeConst() = default;

Qor::Ptr<Dir const> Dir::NotifieeConst::notifier() const {
    return dynamic_cast<Dir const*>(qorNotifier());
}

void Dir::NotifieeConst::onIsNondestructing() {}
void Dir::NotifieeConst::onEntry(Name) {}
void Dir::NotifieeConst::onEntryqorImmediate() {}
void Dir::NotifieeConst::onEntry() {}

void Dir::NotifieeConst::qorDropPendingKeys() {
    entryPending_.drop();
    RootNotifiee::qorDropPendingKeys();
}

Qor::Ptr<Dir> Dir::Notifiee::notifier() const {
    return const_cast<Dir*>(dynamic_cast<Dir const*>(qorNotifier()));
}

}  // namespace Qor
