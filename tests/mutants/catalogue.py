"""Bugs to plant, one for each way in which the system could fail: what breaks, the file, what stands there, what is put in
its place, and the test programs that are to find it; where none is named, the simulation of the small model. Run by itself
it says which places do not stand once in the sources."""
import sys
from pathlib import Path

FAMILY = "qor/attrlog/family/"
FLOW = "qor/attrlog/flow/"
DYNAMIC = "qor/dynamic/"

MUTANTS = [
    ("a change is sent back to where it came from", FLOW + "AdapterState.h",
     "remountPending | flowOutSuspended | isActive;", "remountPending | flowOutSuspended;"),
    ("a snapshot's end removes no key", FAMILY + "Sweep.h",
     "if (!stays) return sweepKey<S>(adapter, key);", "if (!stays) return member.qorMarkedForDeletionIs(false);"),
    ("a snapshot's end removes no child", FAMILY + "Sweep.h",
     "known ? known->has(AdapterState::remountPending) : !isOwed<S>(adapter, key);", "known ? false : !isOwed<S>(adapter, key);", ["attrlog_units"]),
    ("a snapshot's end removes what the snapshot held", FAMILY + "Inbound.h",
     "if (member->qorMarkedForDeletion()) member->qorMarkedForDeletionIs(false);", "member->qorMarkedForDeletionIs(true);"),
    ("a child of the snapshot is removed at its end", FLOW + "AdapterState.h",
     "return Bits((fresh.word() & mask) | (now.word() & ~mask));",
     "return Bits((fresh.word() & mask) | (now.word() & (~mask | remountPending)));", ["attrlog_units"]),
    ("a begin marker removes at once", FAMILY + "Sweep.h",
     "member.qorMarkedForDeletionIs(true);\n", "sweepKey<S>(adapter, member.fwkKey());\n"),
    ("a collection that grows during the sweep is walked once", FAMILY + "Sweep.h",
     "} while (map.version() != seen);", "} while (map.version() == seen && map.version() != seen);", ["attrlog_units"]),
    ("what is half received of what has gone stays where much is", FLOW + "DemuxerIn.cc",
     "        if (!hasFailed_ && owesWalk_) flowsInDelAway();\n", "", ["attrlog_units"]),
    ("a half text is stored", FAMILY + "TextIn.h",
     "if (text.index() == 0) {\n        String8 const whole", "if (text.text().length() != 0) {\n        String8 const whole"),
    ("chunks of two keys are mixed", FAMILY + "TextIn.h",
     "return flow.iter() && flow.aid() == S::id && NboAttrLog::qorFlowInIdxMatches(flow, key);",
     "return flow.iter() && flow.aid() == S::id && (flow.idx() || NboAttrLog::qorFlowInIdxMatches(flow, key));"),
    ("an abort is not heard", FAMILY + "Sweep.h",
     "if (!flow || flow->aid() != id || type == StreamAdapter::begin) return;",
     "if (!flow || flow->aid() != id || type != StreamAdapter::end) return;"),
    ("an overwritten text is not aborted", FLOW + "EntityAdapter.cc",
     "        flow->pendingAbortIs(id, true);\n", ""),
    ("a text's rest is sent from its start", FAMILY + "TextOut.h",
     "flow->valueIter() ? NboAttrLog::qorFlowOutValueDeq(*flow)\n", "flow->valueIter() ? (NboAttrLog::qorFlowOutValueDeq(*flow), S::get(entityOf<S>(adapter)).iteratorConst())\n"),
    ("a value is forgotten while a flow runs", FAMILY + "OutboundRoom.h",
     "flow->template isDirtyIs<S>(!goes);", "flow->template isDirtyIs<S>(false);"),
    ("a key is forgotten while a flow runs", FAMILY + "OutboundRoom.h",
     "        } else {\n            markKey<S>(adapter, *flow, key);\n        }", "        }"),
    ("a value is forgotten when the ring is full", FAMILY + "OutboundRoom.h",
     "flowFor(adapter, S::id).template isDirtyIs<S>(true);\n    return false;", "flowFor(adapter, S::id).template isDirtyIs<S>(false);\n    return false;"),
    ("a walk passes a key when it pauses", FAMILY + "CollectionOut.h",
     "if (!stays) ++at;\n", "++at;\n            if (at && leaves) ++at;\n"),
    ("a walk ends when it pauses", FAMILY + "CollectionOut.h",
     "if (at) {\n            NboAttrLog::qorFlowOutBookmarkEnq(*flow_, at.key());", "if (at && map_.size() == 0) {\n            NboAttrLog::qorFlowOutBookmarkEnq(*flow_, at.key());"),
    ("a removed key's text is finished and stays", FAMILY + "CollectionOut.h",
     "if (done && map_.member(key)) {", "if (done) {", ["attrlog_units"]),
    ("a key that failed is not dirty", FAMILY + "CollectionOut.h",
     "if (!done || flow_->retryLater()) break;", "static_cast<void>(done);\n            if (flow_->retryLater()) break;"),
    ("a flow ends with something owed", FLOW + "DemuxerOut.cc",
     "if (!flow->hasDirtyAttributes()) return dropFlow(*adapter);", "return dropFlow(*adapter);"),
    ("a flow that waits for an id is never woken", FLOW + "DemuxerOut.cc",
     "for (std::size_t count = waiting_.size(); count > 0; --count) wake(*waiting_.first());",
     "for (std::size_t count = waiting_.size(); count > 1; --count) wake(*waiting_.first());"),
    ("an id is given twice", FLOW + "Demuxer.cc", "nextId_ += 2;", "nextId_ += nextId_ % 32 == 1 ? 0 : 2;"),
    ("an entity's end leaves its adapter", FLOW + "Demuxer.cc",
     "    if (reactorDel(adapter.entityId())) return;\n", ""),
    ("an old child stays where another is announced", FLOW + "Demuxer.cc",
     "return known && !known->entityId().isNull() && known->entityId() != id;",
     "return known && known->entityId().isNull() && known->entityId() != id;", ["attrlog_units"]),
    ("bytes are lost between blocks", "qor/attrlog/ConnectionOut.cc",
     "base_ += static_cast<U64>(full) * blockSize;", "base_ += static_cast<U64>(full) * blockSize;\n    if (full > 1) ++sent_;", ["attrlog_units"]),
    ("a removal of a key is not sent", FAMILY + "ValueOut.h",
     "adapter.beginRecord(deleted ? -S::id : S::id);", "if (deleted) return true;\n    adapter.beginRecord(S::id);"),
    ("a child is not told that it is gone", FAMILY + "ChildOut.h",
     "        adapter.beginChildRemoval(S::id);\n        guard.out() << Token::begin << key << Token::end;\n",
     "        static_cast<void>(Token::begin);\n"),
    ("a key that came and went is owed for ever", FAMILY + "OutboundRoom.h",
     "if (hasTooManyMarks<S>(adapter, flow)) oweWhole<S>(flow);", "",
     ["attrlog_slow_readers"]),
    ("what a copy has let go stays where another was announced", FAMILY + "ChildIn.h",
     "(known && known->isUnheardOf()) || isMarked<S>(adapter, key);", "known && known->isUnheardOf();", ["attrlog_interleavings"]),
    ("a removal of the original's settles what the copy owes", FAMILY + "ChildIn.h",
     "if (!childOf<S>(adapter, key) && adapter.has(AdapterState::isCopy)) return;", "", ["attrlog_interleavings"]),
    ("a text that is held back goes on from its start", FLOW + "DemuxerOut.cc",
     "if (flow.valueIter()) flow.pendingAbortIs(flow.attrId(), true);", "", ["attrlog_interleavings"]),
    ("a text that was held back is forgotten", FAMILY + "TextIn.h",
     "if (!isApplied && heldBack) sendAgain<S>(adapter, Unkeyed{});", "static_cast<void>(isApplied && heldBack);", ["attrlog_interleavings"]),
    ("states of an entry that cross are exchanged", "qor/attrlog/dir/EntryStream.cc",
     "if (isNewState && isKnown) settleState(adapter, record, told.key);", "static_cast<void>(settleState);", ["attrlog_interleavings"]),
    ("a flow outlives what it waited for", FAMILY + "OutboundRoom.h",
     "if (flow->template dirtyKeyDel<S>(key)) flow->owes();", "flow->template dirtyKeyDel<S>(key);", ["attrlog_interleavings"]),
    # What comes in.
    ("a length beyond the frame is believed", "qor/attrlog/NboAttrLogIn.h",
     "enterPiece(frameHeadSize + 1, frame.payloadSize, frame.end - 1);",
     "enterPiece(frameHeadSize + 1, static_cast<U32>(bytes.size()) - frameHeadSize - 1, frame.end - 1);",
     ["attrlog_units", "dynamic_property"]),
    ("the greatest frame is not asked for", "qor/attrlog/NboAttrLogIn.cc",
     "    if (size > greatest) {\n", "    if (size > greatest && size == 0) {\n", ["attrlog_units"]),
    ("a frame's end token is not looked at", "qor/attrlog/NboAttrLogIn.cc",
     "if (close != static_cast<U8>(Token::end)) {", "if (close == 0) {", ["attrlog_units"]),
    ("the quota of entities is not kept", FLOW + "Demuxer.cc",
     "if (peersEntities_ >= quota_.entities) {", "if (peersEntities_ == ~0U) {", ["attrlog_units", "attrlog_inbound_memory"]),
    ("the quota of half texts is not kept", FLOW + "Demuxer.cc",
     "if (bytes > quota_.openTextBytes - std::min(openText_, quota_.openTextBytes)) {", "if (bytes > quota_.openTextBytes) {",
     ["attrlog_units", "attrlog_inbound_memory"]),
    ("the peer gives ids of our half", FLOW + "Demuxer.cc",
     "if (!isPeers(id) || id == orphanEntityId || id == EntityId(peersHalf | 1)) {",
     "if ((!isPeers(id) && id.isNull()) || id == orphanEntityId) {",
     ["attrlog_units"]),
    ("a reader's write is applied", FLOW + "DemuxerIn.cc",
     "found->has(AdapterState::readOnlyRemote) &&", "found->has(AdapterState::readOnlyLocal) &&", ["attrlog_units"]),
    ("a snapshot of a reader's removes keys", FLOW + "DemuxerIn.cc",
     "    if (isRefused) {\n        throwInternalException(String8(\"write-update from readonly proxy: \") +\n"
     "                               found->qorNotifierEntity()->fullName());\n    }\n"
     "    Qor::Ptr<Entity> const entity(tellsWritten_ ? found->qorNotifierEntity() : nullptr);\n    found->handleAttrTransaction",
     "    static_cast<void>(isRefused);\n"
     "    Qor::Ptr<Entity> const entity(tellsWritten_ ? found->qorNotifierEntity() : nullptr);\n    found->handleAttrTransaction",
     ["attrlog_units"]),
    ("what is read-only here goes out", FAMILY + "OutboundGuard.h",
     "if (adapter_.has(AdapterState::readOnlyLocal) &&", "if (adapter_.has(AdapterState::readOnlyRemote) &&",
     ["attrlog_units"]),
    ("a ring that grows loses its place", "qor/attrlog/ConnectionIn.cc",
     "    lap_ = position - position % wider;\n", "", ["attrlog_units"]),
    # Maps and telling.
    ("a walker stands on a member that left", "qor/collections/MapWalker.cc",
     "if (at->current_ == member && !at->isLeft_) {", "if (at->current_ == member && at->isLeft_) {",
     ["framework_collections", "framework_map_model"]),
    ("only the first walker hears of a member that leaves", "qor/collections/MapWalker.cc",
     "            at->hold();\n", "            at->hold();\n            return;\n", ["framework_collections", "framework_map_model"]),
    ("a notifiee that ended is told", "qor/notify/SnapshotIterator.h",
     "return (*at)->qorIsHeldOnce() ? passOver(at) : at;", "return at;", ["framework_notify", "framework_notifiee_model"]),
    ("what a notifiee throws ends the telling", "qor/notify/Dispatch.cc",
     "            reportException(*snapshot, id);\n", "            reportException(*snapshot, id);\n            throw;\n",
     ["framework_notify", "framework_notifiee_model"]),
    ("what notifiees of an exception throw gets out", "qor/notify/Dispatch.cc",
     "    } catch (...) {\n    }\n}", "    } catch (int) {\n    }\n}", ["framework_notify", "framework_notifiee_model"]),
    # The generic interface.
    ("a const wrapper gives a wrapper that writes", "qor/generic/AttributeSteps.h",
     "return wrapped(ownedEntity<A>(ChildMapSteps::of(entity), unwrapped<Name>(*key)), isConst);",
     "return wrapped(ownedEntity<A>(ChildMapSteps::of(entity), unwrapped<Name>(*key)), isConst && false);", ["vgw_generic_contract"]),
    ("a wrapper tells after its entity was changed", "qor/generic/EntityWrapper.h",
     "        adapter_->notifierIs(checked);\n", "", ["framework_generic", "vgw_generic_contract"]),
    # The mirror.
    ("a switch that is gone stays in the mirror", "ovsdb/mirror/MirrorRows.cc",
     "            return void(database_->logicalSwitchDel(name));", "            return;", ["ovsdb_mirror_units", "ovsdb_mirror_property"]),
    ("what a tunnel key gives is not counted again", "ovsdb/mirror/Mirror.cc",
     "    if (changed || !node.isRow) touch(node);\n", "    if ((changed && false) || !node.isRow) touch(node);\n", ["ovsdb_mirror_units", "ovsdb_mirror_property"]),
    ("a tunnel that moved keeps its old place", "ovsdb/mirror/Mirror.cc",
     "        graph_.tunnelIs(old, change.uuid, false);\n", "", ["ovsdb_mirror_units", "ovsdb_mirror_property"]),
    # Who may.
    ("a count of a quota goes round", "vgwd/serve/Quotas.cc",
     "return a > most - b ? most : static_cast<Count>(a + b);", "return static_cast<Count>(most > 0 ? a + b : a);", ["vgwd_units"]),
    ("who can't be identified reads", "vgwd/serve/Access.cc",
     'if (!credentials) return {"unknown", PeerRole::refused, "who you are can\'t be learned"};',
     'if (!credentials) return {"unknown", PeerRole::reader, {}};', ["vgwd_units"]),
    ("members of the read group write", "vgwd/serve/Access.cc",
     "isMember(*credentials, writeGroup);", "isMember(*credentials, readGroup);", ["vgwd_units"]),
    ("any certificate writes", "vgwd/serve/Access.cc",
     "bool const isWriter = writerNames.contains(commonName);", "bool const isWriter = !writerNames.empty();", ["vgwd_units"]),
    ("a written value of a described entity is not sent", DYNAMIC + "DynamicAdapter.cc",
     "if (!attribute || !attribute->isStreamed()) return;",
     "if (!attribute || !attribute->isStreamed() || attribute->sort == DynamicSort::value) return;"),
    ("a relay of described entities loses keys", DYNAMIC + "DynamicAdapter.cc",
     "if constexpr (S::isKeyed) serializeChangedKey<S>(adapter, key);",
     "if constexpr (S::isKeyed) {\n            if (key.hash() % 8 != 0) serializeChangedKey<S>(adapter, key);\n        }"),
    ("a number that is less than what the copy holds is not taken", FAMILY + "ValueIn.h",
     "        S::set(targetOf<S>(adapter), std::move(value));",
     "        if constexpr (std::is_same_v<typename S::Value, U64>) {\n"
     "            if (value < S::get(targetOf<S>(adapter))) return;\n"
     "        }\n"
     "        S::set(targetOf<S>(adapter), std::move(value));"),
    ("a described entity does not tell that a key has gone", DYNAMIC + "DynamicStreams.h",
     "static void del(DynamicEntity& entity, Key const& key) { delKeyed<A>(entity, key); }",
     "static void del(DynamicEntity& entity, Key const& key) { A::map(entity).memberDel(key); }"),
]


def count_of(mutant, top):
    """How often the place of a bug stands in its file."""
    return (Path(top) / mutant[1]).read_text(encoding="utf-8").count(mutant[2])


if __name__ == "__main__":
    stale = [mutant for mutant in MUTANTS if count_of(mutant, Path(__file__).resolve().parents[2]) != 1]
    for mutant in stale:
        print(f"{mutant[0]}: its place stands not, or not once, in {mutant[1]}")
    print(f"{len(MUTANTS)} bugs, {len(stale)} without a place")
    sys.exit(bool(stale))
