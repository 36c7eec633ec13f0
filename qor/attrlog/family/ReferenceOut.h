// The outbound handler of keyed references: the target by its id on this connection. A target that
// the peer does not know yet keeps the key dirty.
#ifndef QOR_ATTRLOG_FAMILY_REFERENCEOUT_H
#define QOR_ATTRLOG_FAMILY_REFERENCEOUT_H

#include <qor/attrlog/family/ValueOut.h>
#include <qor/core/Expect.h>

#include <vector>

namespace Qor {

/// Writes a record, once more whenever another record came in between. False when an entity that it
/// names has no id on this connection yet.
template <class Write>
bool writeWhole(Write const& write) {
    for (;;) {
        Expect const expect(Exception::recordId);
        try {
            write();
            return true;
        } catch (AttrLogRecordException const&) {
            continue;
        } catch (EntityIdUnavailableException const&) {
            return false;
        }
    }
}

/// The key stays dirty until ids have become known.
template <class S, class Adapter>
void keepForLater(Adapter& adapter, typename S::Key const& key) {
    auto& flow = flowFor(adapter, S::id);
    flow.template dirtyKeyIs<S>(key, true);
    flow.retryLaterIs(true);
}

template <class S, class Adapter>
void putReference(Adapter& adapter, typename S::Key const& key, typename S::Target* target) {
    if (target)
        putRecord(adapter, S::id, key,
                  NboAttrLog::entityIdOn(*target, adapter.nboAttrLogOut()).value());
    else
        putRecord(adapter, -S::id, key);
}

/// A key that waits is removed at the peer, which may hold an older value of it.
template <class S, class Adapter>
void removeWaiting(Adapter& adapter, typename S::Key const& key) {
    if constexpr (S::kind == StreamKind::reference) putReference<S>(adapter, key, nullptr);
}

/// Whether the entity has stood in a tree and has gone from it, by itself or with what it stood in.
inline bool hasLeftItsTree(Entity const& entity) {
    Entity const* top = &entity;
    while (top->qorParent()) top = top->qorParent();
    return top->parentAttrId() != 0;
}

/// Of a copy: the references that it still owes go with their targets, since the original will
/// never have them. Handlers hear of it, and may end anything.
template <class S, class Adapter>
void dropOwedInVain(Adapter& adapter) {
    auto* const flow = flowOf(adapter);
    if (!flow || !adapter.has(AdapterState::isCopy)) return;
    auto& entity = static_cast<typename S::Entity&>(*adapter.qorNotifierEntity());
    std::vector<typename S::Key> inVain;
    for (typename DirtyKeyMap<typename S::Key>::IteratorConst at(&flow->template dirtyKeys<S>());
         at; ++at) {
        auto const* const member = S::Attr::map(entity).member(at.key());
        if (!member) continue;
        auto const& target = S::Attr::valueOf(*member);
        bool const waits = target && !NboAttrLog::hasIdOn(*target, adapter.nboAttrLogOut());
        if (waits && hasLeftItsTree(*target)) inVain.push_back(at.key());
    }
    Ptr<typename S::Entity> const held(&entity);
    for (auto const& key : inVain) S::del(entity, key);
}

/// qorHandleASerializeSing of a reference collection; a null value is a removal. Whether nothing is
/// owed for the key.
template <class S, class Adapter>
bool serializeReference(Adapter& adapter, typename S::Key const& key,
                        typename S::Value const& value) {
    OutboundGuard const guard(adapter, S::id);
    if (!guard.mayGo(S::name)) return guard.isNothingOwed();
    if (value && !NboAttrLog::hasIdOn(*value, guard.out())) {
        keepForLater<S>(adapter, key);
        return false;
    }
    if (!keyGoesNow<S>(adapter, *guard.out(), key)) return false;
    return writeWhole([&] { putReference<S>(adapter, key, value.ptr()); });
}

}  // namespace Qor

#endif
