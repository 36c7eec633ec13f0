// The readers of texts. A text that comes in chunks is gathered beside the entity, which sees it
// only when it is whole.
#ifndef QOR_ATTRLOG_FAMILY_TEXTIN_H
#define QOR_ATTRLOG_FAMILY_TEXTIN_H

#include <qor/attrlog/ConnectionSizeAnchor.h>
#include <qor/attrlog/family/Crossing.h>

namespace Qor {

/// Appends the record's chunk. The bytes of a text that comes in several count as open until it is
/// whole.
inline void gatherChunk(InboundRecord& record, String8::Iterator& text, U64 size, bool continues) {
    Ptr<Connection::In> const in(&record.in);
    ConnectionInSizeAnchor const limit(in, static_cast<U32>(size));
    if (continues || record.in.moreChunks()) record.demuxer.openTextInc(record.in.available());
    in >> text;
}

/// A text that has come whole, in however many pieces. Whether it was applied.
template <class S, class Adapter>
bool takeText(Adapter& adapter, InboundRecord const& record, String8 const& whole) {
    if (isToBeReplaced<S>(adapter)) return false;
    giveWay<S>(adapter);
    S::set(targetOf<S>(adapter), whole);
    settle<S>(adapter, record);
    return true;
}

template <class S, class Adapter>
void readText(Adapter& adapter, InboundRecord& record) {
    channelModeIs(adapter, MsgChannel::Mode::applied);
    if (record.echoOnly) return S::on(adapter);
    auto& demuxer = record.demuxer;
    Ptr<NboAttrLog::FlowIn> const flow(demuxer.flowIn(adapter));
    if (!flow && !record.in.moreChunks()) [[likely]] {
        takeText<S>(adapter, record, record.in.nextText(record.size));
        return;
    }
    String8::Iterator fresh;
    String8::Iterator& text =
        flow ? *NboAttrLog::qorFlowInIterator(*flow, record.id, false) : fresh;
    text.isWholeIs(true);
    if (record.size != 0) gatherChunk(record, text, record.size, flow != nullptr);
    if (text.index() == 0) {
        String8 const whole = text.text();
        bool const heldBack = flow && flow->heldBack();
        if (flow) {
            demuxer.textDel(*flow);
            demuxer.flowInDel(adapter.entityId());
        }
        // What was written here meanwhile goes after all.
        bool const isApplied = takeText<S>(adapter, record, whole);
        if (!isApplied && heldBack) sendAgain<S>(adapter, Unkeyed{});
    } else if (!flow) {
        qorFlowInIteratorIs(*demuxer.flowInIs(adapter), record.id, text);
    }
}

/// Whether the flow gathers the text of that key.
template <class S>
bool gathers(NboAttrLog::FlowIn const& flow, typename S::Key const& key) {
    return flow.iter() && flow.aid() == S::id && NboAttrLog::qorFlowInIdxMatches(flow, key);
}

/// The first chunk of a text that goes on is kept.
template <class S>
void keepChunk(NboAttrLog::Demuxer& demuxer, StreamAdapter& adapter, typename S::Key const& key,
               String8::Iterator const& text) {
    auto const flow = demuxer.flowInIs(adapter);
    if (flow->iter() || flow->idx()) {
        throw AttrLogRecordException("a text begins before another of its entity has ended");
    }
    NboAttrLog::qorFlowInIdxEnq(*flow, key);
    NboAttrLog::qorFlowInIteratorIs(*flow, S::id, text);
}

template <class S, class Adapter>
void readTextMember(Adapter& adapter, InboundRecord& record) {
    U64 const end = record.in.readPosition() + record.size;
    auto const key = nextKey<S>(record.in);
    channelModeIs(adapter, MsgChannel::Mode::applied);
    if (record.echoOnly) return S::on(adapter, key);
    auto& demuxer = record.demuxer;
    Ptr<NboAttrLog::FlowIn> const flow(demuxer.flowIn(adapter));
    bool const continues = flow && gathers<S>(*flow, key);
    String8::Iterator fresh;
    String8::Iterator& text = continues ? *flow->iter() : fresh;
    gatherChunk(record, text, end - record.in.readPosition(), continues);
    if (text.index() != 0) {
        if (!continues) keepChunk<S>(demuxer, adapter, key, text);
        return;
    }
    String8 const whole = text.text();
    if (continues) {
        demuxer.textDel(*flow);
        NboAttrLog::qorFlowInIdxDeq(*flow);
        demuxer.flowInDel(adapter.entityId());
    }
    auto& entity = targetOf<S>(adapter);
    if (isToBeReplaced<S>(adapter, key)) return keepMember<S>(entity, key);
    giveWay<S>(adapter, key);
    S::set(entity, key, whole);
    keepMember<S>(entity, key);
    settle<S>(adapter, record, key);
}

}  // namespace Qor

#endif
