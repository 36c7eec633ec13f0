// Flows out in the order of their turns. A flow is in at most one queue, which does not keep it:
// its adapter does, and takes it out at its end.
#ifndef QOR_ATTRLOG_FLOW_FLOWQUEUE_H
#define QOR_ATTRLOG_FLOW_FLOWQUEUE_H

#include <cstddef>

#include <qor/core/Export.h>

namespace Qor {

namespace NboAttrLog {

class FlowOut;

class QOR_EXPORT FlowQueue {
  public:
    FlowQueue() = default;
    FlowQueue(FlowQueue const&) = delete;
    FlowQueue& operator=(FlowQueue const&) = delete;

    bool isEmpty() const noexcept { return head_ == nullptr; }
    std::size_t size() const noexcept { return size_; }
    FlowOut* first() const noexcept { return head_; }
    void append(FlowOut& flow) noexcept;
    // Takes it out; it need not be in this queue. Whether it was.
    bool remove(FlowOut& flow) noexcept;

  private:
    FlowOut* head_ = nullptr;
    FlowOut* tail_ = nullptr;
    std::size_t size_ = 0;
};

}  // namespace NboAttrLog

}  // namespace Qor

#endif
