#include <qor/attrlog/flow/FlowIn.h>

#include <qor/core/Format.h>

#include <utility>

namespace Qor {

namespace NboAttrLog {

FlowIn::~FlowIn() { idxDel(); }

void FlowIn::idxDel() {
    if (idx_ != nullptr) idxFree_(std::exchange(idx_, nullptr));
}

void FlowIn::restart(EntityId const& id) noexcept {
    idxDel();
    textDel();
    id_ = id;
    heardAtBegin_ = 0;
    aid_ = 0;
    handlingTransaction_ = false;
    heldBack_ = false;
}

String8::Iterator* qorFlowInIterator(FlowIn& rrc, AttributeId aid, bool peek) {
    if (rrc.iter() == nullptr && !peek) qorFlowInIteratorIs(rrc, aid, String8::Iterator());
    if (rrc.iter() != nullptr && (rrc.aid() != aid || rrc.idx() != nullptr)) {
        throw AttrLogRecordException(format(
            "a text of attribute %d begins before that of attribute %d has ended", aid, rrc.aid()));
    }
    return rrc.iter();
}

void qorFlowInIteratorIs(FlowIn& rrc, AttributeId aid, String8::Iterator const& iterator) {
    assertThat(!rrc.iter(), "!rrc->iter()", "Qor/NboAttrLogFlow", 128, "qorFlowInIteratorIs");
    rrc.iterIs(std::make_unique<String8::Iterator>(iterator));
    rrc.aidIs(aid);
}

}  // namespace NboAttrLog

}  // namespace Qor
