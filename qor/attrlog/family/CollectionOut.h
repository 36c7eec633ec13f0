// The walk over a collection: the whole of it as a snapshot between two markers, then the keys that
// have become dirty meanwhile. It stops between keys, remembers its place by key and not by
// position, and so survives whatever happens to the collection between two turns. Among keys that
// tie it remembers those that it has sent as well.
#ifndef QOR_ATTRLOG_FAMILY_COLLECTIONOUT_H
#define QOR_ATTRLOG_FAMILY_COLLECTIONOUT_H

#include <qor/attrlog/family/ChildOut.h>
#include <qor/attrlog/family/TextMemberOut.h>

#include <optional>

namespace Qor {

/// Sends one key: with its member, or its removal when that is null. Whether the key is done.
template <class S, class Adapter>
bool serializeMember(Adapter& adapter, typename S::Key const& key, typename S::Member* member) {
    using A = typename S::Attr;
    if constexpr (S::kind == StreamKind::textMember) {
        return serializeTextMember<S>(adapter, key, member ? A::valueOf(*member) : String8(),
                                      !member);
    } else if constexpr (S::kind == StreamKind::flagMember) {
        return serializeFlagMember<S>(adapter, key, member && A::valueOf(*member), !member);
    } else if constexpr (S::kind == StreamKind::reference) {
        return serializeReference<S>(adapter, key,
                                     member ? A::valueOf(*member) : typename S::Value());
    } else if constexpr (S::kind == StreamKind::childMember) {
        return serializeChildMember<S>(adapter, key, childOfMember<S>(member));
    } else {
        return S::serialize(adapter, key, member);
    }
}

template <class S, class Adapter>
auto& collectionOf(Adapter const& adapter) {
    return S::Attr::map(entityOf<S>(adapter));
}

/// Whether a key that has changed can but be marked, whatever its value: so for a peer that does
/// not read. Of texts and references the value decides how.
template <class S, class Adapter>
bool isOnlyMarked(Adapter const& adapter) {
    auto const& out = adapter.nboAttrLogOut();
    return S::kind == StreamKind::flagMember && !adapter.handlingScheduledFlowOut() && out &&
           !out->hasSufficientBuffer();
}

/// onA(key). Where the value doesn't matter it isn't looked up.
template <class S, class Adapter>
void serializeChangedKey(Adapter& adapter, typename S::Key const& key) {
    // The echo of a record, unless it is that of a child, which gets its adapter.
    if (S::kind != StreamKind::childMember && adapter.isActive()) {
        OutboundGuard const swallowed(adapter, S::id);
        return;
    }
    if (isOnlyMarked<S>(adapter)) {
        serializeMember<S>(adapter, key, nullptr);
        return;
    }
    serializeMember<S>(adapter, key, collectionOf<S>(adapter).member(key));
}

/// The begin marker; of what may be removed at the peer, behind what was heard of it.
template <class S, class Adapter>
void beginSnapshot(Adapter& adapter) {
    if constexpr (S::kind == StreamKind::childMember || S::kind == StreamKind::entry) {
        adapter.tellHeard();
    }
    adapter.sendTransactionMarker(S::id, StreamAdapter::begin, 0);
}

template <class S, class Adapter>
class CollectionOut {
  public:
    using Key = typename S::Key;
    using Map = typename S::Attr::Map;
    using Walk = typename Map::IteratorConst;
    using Flow = typename Adapter::FlowOut;

    explicit CollectionOut(Adapter& adapter)
        : adapter_(adapter), map_(collectionOf<S>(adapter)), flow_(flowOf(adapter)) {}

    bool send() {
        if (!flow_) return walkWithoutFlow();
        if (!finishText()) return false;
        bool const isWalked = flow_->walkDone() || flow_->template hasSynced<S>();
        if (!isWalked) {
            if (std::optional<bool> const left = walk()) return *left;
        }
        return drain();
    }

  private:
    bool walkWithoutFlow() {
        for (Walk at(&map_); at; ++at) serializeMember<S>(adapter_, at.key(), at.member().ptr());
        return true;
    }

    /// The text that was half sent goes first. A key that has gone meanwhile still owes its
    /// removal.
    bool finishText() {
        if constexpr (S::kind == StreamKind::textMember) {
            if (flow_->attrId() != S::id || !flow_->valueIterKey()) return true;
            Key const key = NboAttrLog::qorFlowOutValueKeyDeq<Key>(*flow_);
            bool const done = serializeTextMember<S>(adapter_, key, String8(), false);
            if (done && map_.member(key)) {
                flow_->template dirtyKeyDel<S>(key);
            } else {
                flow_->template dirtyKeyIs<S>(key, true);
            }
            return done;
        } else {
            return true;
        }
    }

    /// What send() answers, if the walk was left.
    std::optional<bool> walk() {
        bool const goesOn = flow_->bookmark() != nullptr;
        if (!goesOn) beginSnapshot<S>(adapter_);
        Walk at = goesOn ? walkFromBookmark() : Walk(&map_);
        while (at) {
            if constexpr (S::kind == StreamKind::entry) askForNext(at);
            Key const key = at.key();
            bool const done = serializeMember<S>(adapter_, key, at.member().ptr());
            noteMember(key, done);
            bool const isLeftOut = flow_->leavesOut();
            if (isLeftOut) flow_->template dirtyKeyIs<S>(key, false);
            bool const stays = flow_->retryLater() || (!done && !isLeftOut && !isTextOnItsWay());
            bool const leaves = stays || !adapter_.continueFlowOut();
            if (!stays) ++at;
            if (leaves) return leaveAt(at);
        }
        return std::nullopt;
    }

    /// A key that has gone, or has come back, since the walk stood on it was told by itself. Those
    /// that tie with it and were still to come have not changed, and stand in front of it then.
    Walk walkFromBookmark() {
        Key const key = NboAttrLog::qorFlowOutBookmarkDeq<Key>(*flow_);
        if constexpr (Map::KeyTraits::hasTies) {
            return Walk(&map_, key, std::exchange(flow_->template metKeys<S>(), {}));
        } else {
            return Walk(&map_, key);
        }
    }

    /// Entries lie anywhere in memory: while one is sent, that of the next two comes.
    void askForNext(Walk const& at) const {
        auto const [next, later] = at.ahead();
        __builtin_prefetch(later);
        if (!next) return;
        auto const* const entity = reinterpret_cast<char const*>(next->value().ptr());
        __builtin_prefetch(next->key().data());
        __builtin_prefetch(entity);
        __builtin_prefetch(entity + 64);
    }

    /// The key of a half sent text is passed: finishText() comes back to it.
    bool isTextOnItsWay() const {
        return S::kind == StreamKind::textMember && flow_->valueIterKey();
    }

    void noteMember(Key const& key, bool done) {
        if (done) {
            flow_->template dirtyKeyDel<S>(key);
        } else if constexpr (S::kind == StreamKind::textMember) {
            flow_->template dirtyKeyIs<S>(key, true);
        }
    }

    bool leaveAt(Walk& at) {
        if (at) {
            NboAttrLog::qorFlowOutBookmarkEnq(*flow_, at.key());
            if constexpr (Map::KeyTraits::hasTies) flow_->template metKeys<S>() = at.takeMetKeys();
            return false;
        }
        if constexpr (S::kind == StreamKind::textMember) {
            if (flow_->valueIterKey()) {
                flow_->walkDoneIs(true);
                return false;
            }
        }
        endSnapshot();
        return flow_->template dirtyKeys<S>().size() == 0;
    }

    void endSnapshot() {
        adapter_.sendTransactionMarker(S::id, StreamAdapter::end, 0);
        flow_->template hasSyncedIs<S>(true);
        flow_->walkDoneIs(false);
    }

    bool drain() {
        if (flow_->attrId() != S::id) return true;
        if (!flow_->template hasSynced<S>()) endSnapshot();
        auto& dirty = flow_->template dirtyKeys<S>();
        for (typename DirtyKeyMap<Key>::IteratorConst at(&dirty); at; ++at) {
            if (!adapter_.continueFlowOut()) break;
            Key const key = at.key();
            bool const isNew = at.member()->isDirty();
            bool const done = serializeMember<S>(adapter_, key, map_.member(key));
            if (flow_->leavesOut()) {
                if (isNew) removeWaiting<S>(adapter_, key);
                flow_->template dirtyKeyIs<S>(key, false);
                continue;
            }
            if (!done || flow_->retryLater()) break;
            flow_->template dirtyKeyDel<S>(key);
        }
        return dirty.size() == 0;
    }

    Adapter& adapter_;
    Map const& map_;
    Flow* const flow_;
};

/// qorHandleASerializeColl(): true when nothing more is owed for the attribute.
template <class S, class Adapter>
bool serializeCollection(Adapter& adapter) {
    {
        OutboundGuard const guard(adapter, S::id);
        if (!guard.mayGo(S::name)) return guard.isNothingOwed();
    }
    Ptr<NboAttrLog::FlowOut> const held(adapter.StreamAdapter::flowOut());
    return CollectionOut<S, Adapter>(adapter).send();
}

}  // namespace Qor

#endif
