#include <qor/attrlog/flow/MsgChannel.h>

namespace Qor {

namespace {

constinit thread_local MsgChannel::Constrainer* threadsConstrainer = nullptr;

}  // namespace

MsgChannel::Constrainer* MsgChannel::constrainer() noexcept { return threadsConstrainer; }

void MsgChannel::constrainerIs(Constrainer* constrainer) noexcept {
    threadsConstrainer = constrainer;
}

MsgChannel::DeserializingEidAnchor::DeserializingEidAnchor(EntityId const& id,
                                                           Entity* parent) noexcept
    : constrainer_(constrainer()) {
    if (constrainer_ == nullptr) return;
    oldId_ = constrainer_->deserializingEid();
    oldParent_ = constrainer_->deserializingInParent();
    constrainer_->deserializingEidIs(id);
    constrainer_->deserializingInParentIs(parent);
}

MsgChannel::DeserializingEidAnchor::~DeserializingEidAnchor() {
    if (constrainer_ == nullptr) return;
    constrainer_->deserializingEidIs(oldId_);
    constrainer_->deserializingInParentIs(oldParent_);
}

}  // namespace Qor
