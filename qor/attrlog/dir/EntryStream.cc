// How a directory's entries are sent and read.
#include <qor/attrlog/dir/DirAdapter.h>
#include <qor/generic/GenericIf.h>
#include <qor/registry/QorType.h>

#include <typeinfo>

namespace Qor {

namespace {

using Adapter = Dir::QorNboAttrLogSa;
using EntryStream = Adapter::EntryStream;
using Token = NboAttrLog::Out::TransactToken;

void putEntry(Adapter& adapter, Name const& key, Dir::QorEntry const& member,
              Entity::QorNboAttrLogSa& child) {
    auto const& out = adapter.nboAttrLogOut();
    adapter.beginRecord(EntryStream::id, NboAttrLog::adapterAnnounceCode);
    out << Token::begin << key << static_cast<U8>(member.state()) << child.entityId();
    U64 const chain = out->written();
    out << U32{0};
    child.putTypeChain();
    out->u32AtIs(chain, static_cast<U32>(out->written() - chain - sizeof(U32)));
    child.putConstructorArgument();
    out << Token::end;
}

// An entity that has stood here before comes back under a new id: the peer has let go of it.
void sendEntry(Adapter& adapter, Name const& key, Dir::QorEntry const& member) {
    Entity& entity = *member.value();
    if (!entity.qorHasAttrLogInterface()) return;
    Ptr<NboAttrLog::Out> const out = adapter.nboAttrLogOut();
    Ptr<NboAttrLog::Out const> const reader(out);
    auto const* known = entity.qorNboAttrLogSa(reader);
    if (known && known->placing() != member.placing()) {
        NboAttrLog::deleteAdapter(entity, reader);
        known = nullptr;
    }
    auto const flags = AdapterState::ofChild(adapter.state());
    auto const child = entity.qorNboAttrLogSaIs(flags, 1, out, adapter.msgChannel());
    if (!known) child->qorOnInit();
    adapter.doFixChildFlags(child);
    putEntry(adapter, key, member, *child);
    if (!known) child->isAnnounced();
    child->placingIs(member.placing());
    bool const whole =
        !known || adapter.handlingScheduledFlowOut() || adapter.syncMode() == StreamAdapter::resync;
    if (whole) child->doThis();
}

// The first class of the chain that is known here; null if none is. `lacked` is the first of all
// where that is another. The position is left at the argument. Neighbours are of one class: what a
// chain led to is kept, until a type is published.
QorType* nextKnownType(Adapter::Chain& last, NboAttrLog::In& in, Name& lacked) {
    U32 const length = in.nextU32();
    U64 const end = in.readPosition() + length;
    if (length > in.available()) throw AttrLogRecordException("a chain of classes past its record");
    bool const isLast = last.type != nullptr && last.publications == QorType::publications() &&
                        last.bytes.length() == length && in.skipIf(last.bytes.view());
    if (isLast) return last.type;
    last.bytes = in.nextText(length);
    in.readPositionIs(end - length);
    QorType* known = nullptr;
    for (bool isFirst = true; in.readPosition() < end; isFirst = false) {
        Name const name(in.nextString());
        if (known == nullptr) known = QorType::type(name);
        if (known != nullptr && !known->isEntity()) known = nullptr;
        if (isFirst && known == nullptr) lacked = name;
    }
    in.readPositionIs(end);
    last.type = lacked.length() == 0 ? known : nullptr;
    last.publications = QorType::publications();
    return known;
}

String8 attributeText(Entity& entity, AttributeId id) {
    auto const value = entity.fwkType()->genericIf_(&entity, true)->attributeOp(id);
    return value ? value->strRep() : String8();
}

// Whether both were built of the same. What an entity was built of stays as it is, so that it can't
// be brought up to date: of another address there is another row.
bool isBuiltAlike(Entity& here, Entity& announced) {
    if (here.name() != announced.name()) return false;
    QorType const* const type = announced.fwkType();
    if (type == nullptr) return true;
    for (auto const& argument : type->constructorArgs()) {
        auto const attribute = type->attr(argument.name);
        bool const isOwn = attribute && argument.name.view() != "name";
        if (!isOwn) continue;
        AttributeId const id = attribute->id();
        if (attributeText(here, id) != attributeText(announced, id)) return false;
    }
    return true;
}

// Whether what stands here may go on as the entity that the peer announces.
bool isSame(Entity& here, Entity& announced, Ptr<NboAttrLog::Out const> const& out,
            EntityId const& id) {
    auto const* const adapter = here.qorNboAttrLogSa(out);
    if (adapter) return adapter->entityId() == id;
    bool const isOfOneClass =
        typeid(here) == typeid(announced) && here.fwkType() == announced.fwkType();
    return isOfOneClass && isBuiltAlike(here, announced);
}

void enter(Adapter& adapter, NboAttrLog::Demuxer& demuxer, Dir::QorEntry const& member,
           Entity& entity, EntityId const& id) {
    auto const flags = AdapterState::ofChild(adapter.state());
    auto const child =
        entity.qorNboAttrLogSaIs(flags, 1, adapter.nboAttrLogOut(), adapter.msgChannel());
    if (child->entityId().isNull()) {
        child->takesPeersId(id, demuxer);
    } else if (child->entityId() != id) {
        child->doEntityIdIs(id, Ptr<NboAttrLog::Demuxer>(&demuxer), true);
    }
    child->remounted();
    child->placingIs(member.placing());
}

struct Announced {
    Name key;
    Dir::EntryState state;
    EntityId id;
    Ptr<Entity> entity;  // null when its class is not known well enough to hold it
};

// The bytes of a text where they lie, which they do as long as its record is read; in `whole` where
// they do not lie in one piece.
std::string_view nextTextView(NboAttrLog::In& in, String8& whole) {
    U64 const start = in.readPosition();
    auto const bytes = in.nextView(in.nextU32());
    if (bytes.data() != nullptr) return bytes;
    in.readPositionIs(start);
    whole = in.nextString();
    return whole.view();
}

// A key that is the entity's name is one block with it.
Name keyOf(std::string_view key, Ptr<Entity> const& entity) {
    return entity && entity->name().view() == key ? entity->name() : Name(key);
}

Announced readEntry(Adapter& adapter, InboundRecord& record) {
    auto& in = record.in;
    Announced told;
    String8 whole;
    auto const key = nextTextView(in, whole);
    U8 const state = in.nextU8();
    if (state > static_cast<U8>(Dir::EntryState::released)) {
        throw AttrLogRecordException("an entry of an unknown state");
    }
    told.state = static_cast<Dir::EntryState>(state);
    told.id = in.nextEntityId();
    record.demuxer.expectAdapter(told.id);
    Name lacked;
    QorType* const type = nextKnownType(adapter.lastChain(), in, lacked);
    // A copy may show less than its original has. What an original holds is what all see.
    bool const isHeld = lacked.length() == 0 || adapter.has(AdapterState::isCopy);
    if (type != nullptr && isHeld) {
        told.entity = type->newEntity(Ptr<NboAttrLog::In>(&in), adapter.state(), 1, nullptr);
    }
    told.key = keyOf(key, told.entity);
    if (lacked.length() != 0) record.demuxer.unknownClass(lacked);
    if (!told.entity) record.demuxer.leftOutInc();
    return told;
}

// Whether the peer, when it wrote, did not know of what stands under the name.
bool isNewsToPeer(Adapter& adapter, Name const& key) {
    Ptr<Entity> const entity = targetOf<EntryStream>(adapter).entry(key);
    if (!entity) return false;
    auto const* const known =
        entity->qorNboAttrLogSa(Ptr<NboAttrLog::Out const>(adapter.nboAttrLogOut()));
    return known ? known->isUnheardOf() : isOwed<EntryStream>(adapter, key);
}

void putRemoval(Adapter& adapter, Name const& key) {
    adapter.nboAttrLogOut() << Token::begin << String8(key) << Token::end;
}

// Of a copy: what it announced has to make room for the original's, which has not heard of it yet,
// or has gone here, which is still owed. The original may take it all the same, if its own has gone
// by then, and so hears that it went. What was taken meanwhile is not told: this removal takes
// nothing else.
void takeBack(Adapter& adapter, Name const& key, Entity* entity) {
    if (!adapter.has(AdapterState::isCopy)) return;
    auto const& out = adapter.nboAttrLogOut();
    auto const* const known =
        entity ? entity->qorNboAttrLogSa(Ptr<NboAttrLog::Out const>(out)) : nullptr;
    bool const mayBeOnItsWay =
        (known && known->isUnheardOf()) || isMarked<EntryStream>(adapter, key);
    if (!mayBeOnItsWay) return;
    out->nextHeaderIs({adapter.entityId(), -EntryStream::id});
    putRemoval(adapter, key);
}

// The end of a removal. What the peer removed may have been announced there again.
void settleRemoval(Adapter& adapter, InboundRecord const& record, Name const& key) {
    adapter.flagIs(AdapterState::isActive, false);
    if (adapter.has(AdapterState::isCopy) || hasLeft(adapter)) return;
    if (record.hasCrossed && !targetOf<EntryStream>(adapter).entry(key)) adapter.onEntry(key);
}

// The original sends the state that it holds, where the peer's has crossed what it sent.
void settleState(Adapter& adapter, InboundRecord const& record, Name const& key) {
    if (record.hasCrossed && !adapter.has(AdapterState::isCopy)) adapter.onEntry(key);
}

void takeDownEntry(Adapter& adapter, Name const& key) {
    auto& dir = targetOf<EntryStream>(adapter);
    if (auto const entity = dir.entry(key)) {
        NboAttrLog::deleteAdapter(*entity, Ptr<NboAttrLog::Out const>(adapter.nboAttrLogOut()));
    }
    tellTargetGone(adapter);
    adapter.flagIs(AdapterState::isActive, true);
    dir.entryDel(key);
}

// Of a class that is not known well enough. What stands under the name gives way all the same,
// unless the original's is news to the peer; and the original tells its copy that nothing stands
// there.
void leaveOut(Adapter& adapter, Name const& key) {
    bool const isCopy = adapter.has(AdapterState::isCopy);
    if (!isCopy && isNewsToPeer(adapter, key)) return;
    Ptr<Entity> const present = targetOf<EntryStream>(adapter).entry(key);
    if (present || adapter.StreamAdapter::flowOut()) takeBack(adapter, key, present.ptr());
    giveWay<EntryStream>(adapter, key);
    if (present) takeDownEntry(adapter, key);
    adapter.flagIs(AdapterState::isActive, false);
    if (!isCopy && !hasLeft(adapter)) adapter.onEntry(key);
}

void takeEntry(Adapter& adapter, InboundRecord& record) {
    auto& dir = targetOf<EntryStream>(adapter);
    family::needShallow(dir);
    Announced const told = readEntry(adapter, record);
    if (record.echoOnly) return adapter.onEntry(told.key);
    // What a copy leaves out may be announced again, when its class is known.
    bool const mayComeAgain = !told.entity && adapter.has(AdapterState::isCopy);
    if (!mayComeAgain && isOfTheGone(adapter, record.demuxer, told.id)) return;
    if (!told.entity) return leaveOut(adapter, told.key);
    Ptr<NboAttrLog::Out const> const out(adapter.nboAttrLogOut());
    U32 const version = EntryStream::Attr::map(dir).version();
    Ptr<Dir::QorEntry> present = dir.qorEntry(told.key);
    Ptr<Entity> entity = present ? present->value() : nullptr;
    auto const* const known = entity ? entity->qorNboAttrLogSa(out) : nullptr;
    bool const isKnown = known && known->entityId() == told.id;
    bool const ownStays = !isKnown && !adapter.has(AdapterState::isCopy);
    if (ownStays && isNewsToPeer(adapter, told.key)) return;
    if (!isKnown) {
        record.demuxer.needPeersId(told.id);
        if (entity || adapter.StreamAdapter::flowOut()) takeBack(adapter, told.key, entity.ptr());
    }
    bool const replaces = entity && !isSame(*entity, *told.entity, out, told.id);
    if (!entity || replaces) {
        if (entity) {
            NboAttrLog::deleteAdapter(*entity, out);
            tellTargetGone(adapter);
        }
        entity = told.entity;
    }
    // What ended meanwhile may have changed the directory.
    if (EntryStream::Attr::map(dir).version() != version) present = dir.qorEntry(told.key);
    // What was still owed of the name is settled by it; what a handler does from now on is not.
    forgive<EntryStream>(adapter, told.key);
    Ptr<Dir::QorEntry> const member = dir.qorEntryIs(told.key, present, entity);
    adapter.flagIs(AdapterState::isActive, true);
    bool const isNewState = member->state() != told.state && member->value() == entity;
    if (isNewState) [[unlikely]] {
        dir.entryStateIs(told.key, told.state);
    }
    if (hasLeft(adapter)) return;
    enter(adapter, record.demuxer, *member, *entity, told.id);
    adapter.flagIs(AdapterState::isActive, false);
    // Of what is known the state alone was told, a value as others are.
    if (isNewState && isKnown) settleState(adapter, record, told.key);
}

}  // namespace

bool EntryStream::serialize(Adapter& adapter, Name const& key, QorEntry* member) {
    OutboundGuard const guard(adapter, id, true);
    if (!guard.childMayGo(name)) return guard.isNothingOwed();
    if (guard.wasActive()) return true;
    if (!keyGoesNow<EntryStream>(adapter, *guard.out(), key)) return false;
    if (member == nullptr) {
        adapter.beginChildRemoval(id);
        putRemoval(adapter, key);
        adapter.removalSent();
        return true;
    }
    Qor::Ptr<QorEntry> const held(member);
    if (writeWhole([&] { sendEntry(adapter, key, *held); })) return true;
    keepForLater<EntryStream>(adapter, key);
    return false;
}

void EntryStream::read(Adapter& adapter, InboundRecord& record) {
    if (record.id > 0) return takeEntry(adapter, record);
    Name const key(record.in.nextString());
    if (record.echoOnly) return adapter.onEntry(key);
    // What a copy has let go since it announced it may be on its way: its own removal still goes.
    bool const isGone = !targetOf<EntryStream>(adapter).entry(key);
    if (isGone && adapter.has(AdapterState::isCopy)) return;
    if (isNewsToPeer(adapter, key)) return;
    giveWay<EntryStream>(adapter, key);
    takeDownEntry(adapter, key);
    settleRemoval(adapter, record, key);
}

void EntryStream::sweep(Adapter& adapter, StreamAdapter::AttrTransactionType type) {
    if (type == StreamAdapter::abort) return;
    walkUntilQuiet<EntryStream>(targetOf<EntryStream>(adapter), [&](QorEntry const& entry) {
        sweepChild<EntryStream>(adapter, entry.key(), *entry.value(), type);
    });
}

}  // namespace Qor
