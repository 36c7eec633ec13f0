// The readers of values, of keyed truth values, of references and of removals.
#ifndef QOR_ATTRLOG_FAMILY_VALUEIN_H
#define QOR_ATTRLOG_FAMILY_VALUEIN_H

#include <qor/attrlog/family/Inbound.h>

namespace Qor {

template <class S, class Adapter>
void readScalar(Adapter& adapter, InboundRecord& record) {
    auto value = nextAttributeValue<typename S::Value>(record);
    if (record.echoOnly) {
        S::on(adapter);
    } else {
        S::set(targetOf<S>(adapter), std::move(value));
    }
}

template <class S, class Adapter>
void readFlagMember(Adapter& adapter, InboundRecord& record) {
    auto const key = NboAttrLog::nextValue<typename S::Key>(record.in);
    bool const value = record.in.nextbool();
    if (record.echoOnly) return S::on(adapter, key);
    auto& entity = targetOf<S>(adapter);
    S::set(entity, key, value);
    keepMember<S>(entity, key);
}

template <class S, class Adapter>
void readReference(Adapter& adapter, InboundRecord& record) {
    auto const key = NboAttrLog::nextValue<typename S::Key>(record.in);
    auto const target = record.in.nextEntity<typename S::Target>();
    channelModeIs(adapter, MsgChannel::Mode::applied);
    if (record.echoOnly) return S::on(adapter, key);
    auto& entity = targetOf<S>(adapter);
    S::set(entity, key, target);
    keepMember<S>(entity, key);
}

template <class S, class Adapter>
void readRemoval(Adapter& adapter, InboundRecord& record) {
    auto const key = NboAttrLog::nextValue<typename S::Key>(record.in);
    if (record.echoOnly) return S::on(adapter, key);
    S::del(targetOf<S>(adapter), key);
}

}  // namespace Qor

#endif
