#include <vgwctl/link/Silence.h>

#include <utility>

namespace Vgwctl {

void Silence::begin() {
    state_ = State::heard;
    bytes_ = 0;
    wait();
}

void Silence::wait() { due_ = patience_.count() > 0 ? Deadline::after(patience_) : Deadline(); }

Silence::Finding Silence::look(std::uint64_t bytes) {
    if (std::exchange(bytes_, bytes) != bytes) {
        wait();
        bool const wasSilent = std::exchange(state_, State::heard) == State::silent;
        return wasSilent ? Finding::heardAgain : Finding::none;
    }
    if (!due_.isOver()) return Finding::none;
    if (state_ == State::heard) {
        state_ = State::asked;
        wait();
        return Finding::toAsk;
    }
    state_ = State::silent;
    due_ = Deadline();
    return Finding::silent;
}

}  // namespace Vgwctl
