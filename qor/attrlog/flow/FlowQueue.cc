#include <qor/attrlog/flow/FlowQueue.h>

#include <qor/attrlog/flow/FlowOut.h>

namespace Qor {

namespace NboAttrLog {

void FlowQueue::append(FlowOut& flow) noexcept {
    flow.queue_ = this;
    flow.before_ = tail_;
    flow.next_ = nullptr;
    (tail_ != nullptr ? tail_->next_ : head_) = &flow;
    tail_ = &flow;
    ++size_;
}

bool FlowQueue::remove(FlowOut& flow) noexcept {
    if (flow.queue_ != this) return false;
    (flow.before_ != nullptr ? flow.before_->next_ : head_) = flow.next_;
    (flow.next_ != nullptr ? flow.next_->before_ : tail_) = flow.before_;
    flow.before_ = nullptr;
    flow.next_ = nullptr;
    flow.queue_ = nullptr;
    --size_;
    return true;
}

}  // namespace NboAttrLog

}  // namespace Qor
