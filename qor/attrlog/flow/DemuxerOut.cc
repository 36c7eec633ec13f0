// The demuxer's way out: flows take turns.
#include <qor/attrlog/flow/Demuxer.h>
#include <qor/attrlog/flow/FlowOutHold.h>
#include <qor/attrlog/flow/ReadOnly.h>
#include <qor/core/Format.h>

#include <algorithm>
#include <exception>
#include <utility>

namespace Qor {

namespace NboAttrLog {

void Demuxer::sendReceipt() {
    using Token = Out::TransactToken;
    if (heard_ == toldHeard_) return;
    out_->beginFrame(FrameKind::receipt, {});
    out_ << Token::begin << heard_ << Token::end;
    toldHeard_ = heard_;
}

void Demuxer::createFlowOut(StreamAdapter& adapter, ConnectDesc const& desc, bool flag,
                            AttributeId startAttr) {
    AttributeId cutText = 0;
    if (FlowOut const* const old = adapter.flowOut()) {
        if (old->valueIter()) cutText = old->attrId();
        dropFlow(adapter);
    }
    adapter.flowOut_ = adapter.flowOutIs(out_, desc, flag, startAttr);
    adapter.flowOut_->isWhole_ = startAttr == 0;
    adapter.flagIs(AdapterState::steadyState, false);
    if (cutText != 0) adapter.flowOut_->pendingAbortIs(cutText, true);
    ready_.append(*adapter.flowOut_);
    ++counters_.flowsMade;
}

// Where nothing is in the way, records are written without a flow: from the first attribute on, to
// one for which there is no room or which leads to other entities. That one, or 0.
AttributeId Demuxer::sendAtOnce(StreamAdapter& adapter) {
    constexpr U32 needed = AdapterState::steadyState | AdapterState::flowOutEnabled;
    constexpr U32 inTheWay = AdapterState::flowOutBlockers | AdapterState::readOnlyLocal |
                             AdapterState::syncModeFanOut | AdapterState::handlingScheduledFlowOut;
    U32 const word = adapter.state().word();
    bool const mayGo = (word & (needed | inTheWay)) == needed && !adapter.flowOut() &&
                       adapter.qorRawEntity() && !flowIn(adapter);
    Qor::Ptr<StreamAdapter> const held(&adapter);
    return mayGo ? adapter.sendAtOnce() : StreamAdapter::everything;
}

void Demuxer::sendWhole(StreamAdapter& adapter) {
    AttributeId const left = sendAtOnce(adapter);
    if (left == 0) return;
    createFlowOut(adapter, {}, false, left);
    if (depth_ < greatestDepth && continueFlowOut()) run(*adapter.flowOut());
}

void Demuxer::dropFlow(StreamAdapter& adapter) {
    Qor::Ptr<FlowOut> const flow = std::move(adapter.flowOut_);
    if (!flow) return;
    adapter.freeResyncState(flow);
    if (!ready_.remove(*flow)) waiting_.remove(*flow);
    adapter.flagIs(AdapterState::steadyState, true);
}

void Demuxer::wake(FlowOut& flow) {
    if (!waiting_.remove(flow)) return;
    flow.isWaiting_ = false;
    ready_.append(flow);
}

void Demuxer::retryWaiting() {
    if (!mayRetry()) return;
    for (std::size_t count = waiting_.size(); count > 0; --count) wake(*waiting_.first());
}

bool Demuxer::serveFlows(U64 budget) {
    if (hasFailed_) return false;
    Ptr const held(this);
    U64 const end = out_->written() + std::min(budget, noEnd / 2);
    retryWaiting();
    try {
        Serving const serving(*this);
        while (!ready_.isEmpty() && out_->written() < end) {
            sliceEnd_ = std::min(end, out_->written() + sliceBytes);
            if (!continueFlowOut()) break;
            FlowOut& flow = *ready_.first();
            ready_.remove(flow);
            ready_.append(flow);
            run(flow);
        }
    } catch (std::exception const& failure) {
        fail(failure.what());
    }
    sliceEnd_ = noEnd;
    closeIfDue();
    return owes();
}

// One turn: pass after pass over the attributes, until room or slice are out or nothing is owed
// that can be sent.
void Demuxer::run(FlowOut& flowOut) {
    Qor::Ptr<FlowOut> const flow(&flowOut);
    Qor::Ptr<StreamAdapter> const adapter(&flow->streamAdapter());
    if (flow->isRunning_) return;
    struct Anchor {
        Anchor(FlowOut& f, U32& d) : flow(f), depth(d) {
            flow.isRunning_ = true;
            ++depth;
        }
        ~Anchor() {
            flow.isRunning_ = false;
            --depth;
        }
        Anchor(Anchor const&) = delete;
        Anchor& operator=(Anchor const&) = delete;
        FlowOut& flow;
        U32& depth;
    } const anchor(*flow, depth_);
    while (runPass(*flow, *adapter) && adapter->flowOut() == flow.ptr()) {
        if (!flow->hasDirtyAttributes()) return dropFlow(*adapter);
    }
}

// The attributes from where the flow stands to the last. False when the turn is over. An attribute
// that waits for an id is passed over, and its walk begins anew, this time to leave out what has no
// id yet; a whole pass that leads to nothing has to wait until ids become known or more is owed.
bool Demuxer::runPass(FlowOut& flow, StreamAdapter& adapter) {
    bool const isWhole = flow.hasResume_ && flow.resumeAt_ == 0;
    U64 const knownBefore = announced_;
    U64 const writtenBefore = out_->written();
    bool leadsNowhere = false;
    AttributeId next = flow.hasResume_ ? flow.resumeAt_ : flow.attrId();
    do {
        if (!adapter.continueFlowOut()) return false;
        if (adapter.isHeldUp()) {
            park(flow);
            return false;
        }
        AttributeId const at = next;
        U64 const before = out_->written();
        next = adapter.handleAttrFlowOut(at);
        if (adapter.flowOut() != &flow) return false;
        if (next != 0 && flow.retryLater()) {
            adapter.freeResyncState(Qor::Ptr<FlowOut>(&flow));
            flow.waits_ = true;
            ++next;
        }
        bool const isStuck = next == at && at != 0 && out_->written() == before;
        if (isStuck && adapter.continueFlowOut()) {
            // A text that is held back for one of the peer's begins anew.
            if (flow.valueIter()) flow.pendingAbortIs(flow.attrId(), true);
            adapter.freeResyncState(Qor::Ptr<FlowOut>(&flow));
            leadsNowhere = true;
            ++next;
        }
        flow.resumeAt_ = next;
        flow.hasResume_ = true;
    } while (next != 0);
    bool const waits = std::exchange(flow.waits_, false);
    if (waits && !flow.leavesOut_) {
        flow.leavesOut_ = true;
        return true;
    }
    leadsNowhere = leadsNowhere || waits || out_->written() == writtenBefore;
    bool const isIdle = isWhole && leadsNowhere;
    if (!isIdle || announced_ != knownBefore || !flow.hasDirtyAttributes()) return true;
    park(flow);
    return false;
}

void Demuxer::park(FlowOut& flow) {
    if (!ready_.remove(flow)) return;
    flow.isWaiting_ = true;
    if (waiting_.isEmpty()) waitingSince_ = announced_;
    waiting_.append(flow);
}

void Demuxer::handlerFailed(StreamAdapter&, AttributeId id) noexcept {
    out_->dropOpenFrame();
    try {
        throw;
    } catch (ReadOnlyException const&) {
        ++counters_.refusedLocally;
    } catch (std::exception const& failure) {
        fail(format("attribute %d could not be sent: %s", id, failure.what()));
    } catch (...) {
        fail(format("attribute %d could not be sent", id));
    }
}

}  // namespace NboAttrLog

}  // namespace Qor
