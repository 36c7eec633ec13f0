// The outbound handler of a text: chunk after chunk, each a record, in one go or with pauses.
#ifndef QOR_ATTRLOG_FAMILY_TEXTOUT_H
#define QOR_ATTRLOG_FAMILY_TEXTOUT_H

#include <qor/attrlog/family/ValueOut.h>
#include <qor/attrlog/flow/FlowOutHold.h>

namespace Qor {

template <class Adapter>
void putTextRecord(Adapter& adapter, AttributeId id, String8::IteratorConst& position) {
    using Token = NboAttrLog::Out::TransactToken;
    auto const& out = adapter.nboAttrLogOut();
    adapter.beginRecord(id);
    out << Token::begin;
    out->putChunk(position);
    out << Token::end;
}

/// Whether a text may start or go on without a flow: only its first record may.
inline bool hasRoomForText(NboAttrLog::Out const& out) {
    return out.hasLiveBuffer() && out.freeBytes() >= NboAttrLog::Out::blockSize;
}

/// With a flow: chunks until the turn is over or the text has ended.
template <class Adapter>
bool sendTextInTurn(Adapter& adapter, NboAttrLog::FlowOut& flow, AttributeId id,
                    String8::IteratorConst position) {
    auto const& out = adapter.nboAttrLogOut();
    bool sent = position.index() != 0;
    while (position || !sent) {
        bool const mayGoOn = !adapter.handlingScheduledFlowOut() || adapter.continueFlowOut();
        if (!mayGoOn || out->freeBytes() < out->bufferBlockSize()) {
            NboAttrLog::qorFlowOutValueEnq(flow, position);
            return false;
        }
        putTextRecord(adapter, id, position);
        sent = true;
    }
    return true;
}

/// A text that is one chunk, in one record.
inline void putWholeText(Entity::QorNboAttrLogSa& adapter, AttributeId id, std::string_view text) {
    using Token = NboAttrLog::Out::TransactToken;
    if (unsigned char* const at = adapter.claimRecord(id, text.size())) [[likely]] {
        std::copy_n(text.data(), text.size(), at);
        return;
    }
    auto const& out = adapter.nboAttrLogOut();
    adapter.beginRecord(id);
    out << Token::begin;
    out->putBytes(text);
    out << Token::end;
}

/// Without one: a single record, and a flow for what is left.
template <class S, class Adapter>
bool sendTextAtOnce(Adapter& adapter, String8 const& text) {
    auto const& out = *adapter.nboAttrLogOut();
    bool const goes = hasRoomForText(out);
    if (goes && text.length() <= out.chunkLimit()) [[likely]] {
        putWholeText(adapter, S::id, text.view());
        return true;
    }
    auto position = text.iteratorConst();
    if (goes) putTextRecord(adapter, S::id, position);
    auto& flow = flowFor(adapter, S::id);
    flow.template isDirtyIs<S>(true);
    flow.outstandingKeysIs(1);
    NboAttrLog::qorFlowOutValueEnq(flow, position);
    return false;
}

/// qorHandleASerialize(): true when nothing more is owed for the attribute.
template <class S, class Adapter>
bool serializeText(Adapter& adapter) {
    OutboundGuard const guard(adapter, S::id);
    if (!guard.mayGo(S::name)) return guard.isNothingOwed();
    auto* const flow = flowInCharge(adapter);
    if (flow && !adapter.handlingScheduledFlowOut()) {
        adapter.prepareImmediateTransmission(S::id, true);
        flow->template isDirtyIs<S>(true);
        return false;
    }
    if (!flow) return sendTextAtOnce<S>(adapter, S::get(entityOf<S>(adapter)));
    return sendTextInTurn(adapter, *flow, S::id,
                          flow->valueIter() ? NboAttrLog::qorFlowOutValueDeq(*flow)
                                            : S::get(entityOf<S>(adapter)).iteratorConst());
}

}  // namespace Qor

#endif
