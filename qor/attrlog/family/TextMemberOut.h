// The outbound handler of keyed texts: each record carries the key and one chunk of the value.
#ifndef QOR_ATTRLOG_FAMILY_TEXTMEMBEROUT_H
#define QOR_ATTRLOG_FAMILY_TEXTMEMBEROUT_H

#include <qor/attrlog/ConnectionSizeAnchor.h>
#include <qor/attrlog/MessageSize.h>
#include <qor/attrlog/family/TextOut.h>

#include <algorithm>
#include <string>

namespace Qor {

/// A key that no record can hold stops the process; only texts can be so long.
template <class S>
void needKeyFits([[maybe_unused]] typename S::Key const& key) {
    if constexpr (std::is_same_v<typename S::Key, String8>) {
        if (NboAttrLog::fitsTextRecord(key)) [[likely]] {
            return;
        }
        std::string const text =
            std::string("Qor::NboAttrLog::pessimisticMessageSizeEstimate(_qor_index,_") + S::name +
            ",true)<alOut->bufferBlockSize()";
        assertionFailed(text.c_str(), "Qor/NboAttrLogFlow", __LINE__, "serializeTextMember");
    }
}

/// One text under one key on its way out.
template <class S, class Adapter>
class TextMemberOut {
  public:
    using Key = typename S::Key;

    TextMemberOut(Adapter& adapter, Key const& key, String8 const& value, bool deleted)
        : adapter_(adapter), out_(*adapter.nboAttrLogOut()), key_(key), value_(value) {
        keySize_ = NboAttrLog::pessimisticMessageSizeEstimate(key, value, true);
        estimate_ = NboAttrLog::pessimisticMessageSizeEstimate(key, value, deleted);
        isLow_ = out_.freeBytes() < U64{estimate_} + out_.bufferBlockSize();
        flow_ = flowInCharge(adapter);
        needKeyFits<S>(key);
    }

    bool send(bool deleted) {
        if (flow_ && !adapter_.handlingScheduledFlowOut() && !passesBesideFlow()) return false;
        if (deleted) return sendRemoval();
        bool const resumes = adapter_.handlingScheduledFlowOut() && flow_ && flow_->valueIter();
        return sendChunks(resumes ? NboAttrLog::qorFlowOutValueDeq(*flow_)
                                  : value_.iteratorConst());
    }

  private:
    /// A change while a flow is in charge: the text in flight may be this one, and stale.
    bool passesBesideFlow() {
        if (flow_->attrId() == S::id && NboAttrLog::qorFlowOutValueKeyMatches(*flow_, key_)) {
            flow_->pendingAbortIs(S::id, true);
            NboAttrLog::qorFlowOutValueDeq(*flow_);
            NboAttrLog::qorFlowOutValueEnq(*flow_, value_.iteratorConst());
            return false;
        }
        bool const goes = adapter_.prepareImmediateTransmission(S::id, false);
        if (goes && !isLow_ && estimate_ <= NboAttrLog::greatestTextRecord) return true;
        markKey<S>(adapter_, *flow_, key_);
        return false;
    }

    bool sendRemoval() {
        if (!adapter_.handlingScheduledFlowOut() && isLow_) {
            flowFor(adapter_, S::id).template dirtyKeyIs<S>(key_, true);
            return false;
        }
        putRecord(adapter_, -S::id, key_);
        return true;
    }

    bool sendChunks(String8::IteratorConst position) {
        bool sent = position.index() != 0;
        while (position || !sent) {
            if (flow_ ? !hasRoomInTurn() : sent || !hasRoomAtOnce()) return leave(position);
            putChunk(position);
            sent = true;
        }
        return true;
    }

    bool hasRoomInTurn() const {
        bool const mayGoOn = !adapter_.handlingScheduledFlowOut() || adapter_.continueFlowOut();
        return mayGoOn && std::min(estimate_, out_.bufferBlockSize()) <= out_.freeBytes();
    }
    bool hasRoomAtOnce() const { return !isLow_ || hasRoomForText(out_); }

    bool leave(String8::IteratorConst const& position) {
        auto& flow = flow_ ? *flow_ : flowFor(adapter_, S::id);
        NboAttrLog::qorFlowOutValueEnq(flow, position);
        NboAttrLog::qorFlowOutValueKeyEnq(flow, key_);
        if (!flow_) flow.outstandingKeysIs(1);
        if (!flow_ || !adapter_.handlingScheduledFlowOut()) {
            flow.template dirtyKeyIs<S>(key_, true);
        }
        return false;
    }

    /// What is left of the text, where that is one chunk. False: nothing was done.
    bool putRest(String8::IteratorConst& position) {
        if constexpr (NboAttrLog::HasKnownSize<Key>) {
            std::string_view const rest = position.rest();
            if (rest.size() > NboAttrLog::textChunkLimit(keySize_)) return false;
            unsigned char* at =
                adapter_.claimRecord(S::id, NboAttrLog::sizeOnWire(key_) + rest.size());
            if (at == nullptr) return false;
            std::copy_n(rest.data(), rest.size(), NboAttrLog::storeOnWire(at, key_));
            position.indexIs(position.index() + static_cast<U32>(rest.size()));
            return true;
        }
        return false;
    }

    void putChunk(String8::IteratorConst& position) {
        if (putRest(position)) return;
        using Token = NboAttrLog::Out::TransactToken;
        auto const& out = adapter_.nboAttrLogOut();
        Ptr<Connection::Out> const connection(out);
        ConnectionOutSizeAnchor const limit(connection, NboAttrLog::textChunkLimit(keySize_));
        adapter_.beginRecord(S::id);
        out << Token::begin << key_;
        connection << position;
        out << Token::end;
    }

    Adapter& adapter_;
    NboAttrLog::Out& out_;
    Key const& key_;
    String8 const& value_;
    typename Adapter::FlowOut* flow_;
    U32 keySize_;
    U32 estimate_;
    bool isLow_;
};

/// qorHandleASerializeSing of keyed texts: true when the key is done.
template <class S, class Adapter>
bool serializeTextMember(Adapter& adapter, typename S::Key const& key, String8 const& value,
                         bool deleted) {
    OutboundGuard const guard(adapter, S::id);
    if (!guard.mayGo(S::name)) return guard.isNothingOwed();
    return TextMemberOut<S, Adapter>(adapter, key, value, deleted).send(deleted);
}

}  // namespace Qor

#endif
