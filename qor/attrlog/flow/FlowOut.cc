#include <qor/attrlog/flow/FlowOut.h>

#include <qor/attrlog/flow/Demuxer.h>
#include <qor/attrlog/flow/StreamAdapter.h>

namespace Qor {

namespace NboAttrLog {

FlowOut::~FlowOut() = default;

bool FlowOut::hasDirtyAttributes() const { return pendingAborts_.size() != 0; }

void FlowOut::pendingAbortIs(AttributeId id, bool on) {
    if (QorPendingAbort* const member = pendingAborts_.member(id)) {
        member->valueIs(on);
        return;
    }
    auto const member = make<QorPendingAbort>(id, on);
    pendingAborts_.newMember(member, member->fwkHash());
}

void FlowOut::wake() {
    if (Demuxer* const demuxer = adapter_->streamDemuxer()) demuxer->wake(*this);
}

}  // namespace NboAttrLog

}  // namespace Qor
