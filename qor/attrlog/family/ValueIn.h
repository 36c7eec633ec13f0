// The readers of values, of keyed truth values, of references and of removals.
#ifndef QOR_ATTRLOG_FAMILY_VALUEIN_H
#define QOR_ATTRLOG_FAMILY_VALUEIN_H

#include <qor/attrlog/family/Crossing.h>

namespace Qor {

/// Whether the value is this process's alone, and the peer's another: it is skipped.
template <class S, class Adapter>
bool isRefusedToPeer([[maybe_unused]] Adapter& adapter, [[maybe_unused]] InboundRecord& record,
                     [[maybe_unused]] typename S::Value const& value) {
    if constexpr (requires { S::isOfOneProcess; }) {
        bool const isOther = S::get(targetOf<S>(adapter)) != value;
        bool const isRefused = isOther && !record.demuxer.peerMayUncount();
        if (isRefused) record.demuxer.refusedToPeerInc(1);
        return isRefused;
    } else {
        return false;
    }
}

template <class S, class Adapter>
void readScalar(Adapter& adapter, InboundRecord& record) {
    auto value = nextAttributeValue<typename S::Value>(record);
    if (record.echoOnly) {
        S::on(adapter);
    } else if (!isRefusedToPeer<S>(adapter, record, value) && !isToBeReplaced<S>(adapter)) {
        giveWay<S>(adapter);
        S::set(targetOf<S>(adapter), std::move(value));
        settle<S>(adapter, record);
    }
}

template <class S, class Adapter>
void readFlagMember(Adapter& adapter, InboundRecord& record) {
    auto const key = nextKey<S>(record.in);
    bool const value = record.in.nextbool();
    if (record.echoOnly) return S::on(adapter, key);
    auto& entity = targetOf<S>(adapter);
    if (isToBeReplaced<S>(adapter, key)) return keepMember<S>(entity, key);
    giveWay<S>(adapter, key);
    S::set(entity, key, value);
    keepMember<S>(entity, key);
    settle<S>(adapter, record, key);
}

/// A target that has gone here leaves no reference, and an original says so.
template <class S, class Adapter>
void readReference(Adapter& adapter, InboundRecord& record) {
    auto const key = nextKey<S>(record.in);
    EntityId const id = peekEntityId(record.in);
    auto const target = record.in.nextEntity<typename S::Target>();
    channelModeIs(adapter, MsgChannel::Mode::applied);
    if (record.echoOnly) return S::on(adapter, key);
    auto& entity = targetOf<S>(adapter);
    giveWay<S>(adapter, key);
    S::set(entity, key, target);
    keepMember<S>(entity, key);
    bool const isTaken = target || id.isNull() || adapter.has(AdapterState::isCopy);
    isTaken ? settle<S>(adapter, record, key) : sendAgain<S>(adapter, key);
}

template <class S, class Adapter>
void readRemoval(Adapter& adapter, InboundRecord& record) {
    auto const key = nextKey<S>(record.in);
    if (record.echoOnly) return S::on(adapter, key);
    if (isToBeReplaced<S>(adapter, key)) return;
    giveWay<S>(adapter, key);
    S::del(targetOf<S>(adapter), key);
    settle<S>(adapter, record, key);
}

}  // namespace Qor

#endif
