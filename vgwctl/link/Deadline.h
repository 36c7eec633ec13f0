#ifndef VGWCTL_LINK_DEADLINE_H
#define VGWCTL_LINK_DEADLINE_H

// Until when a command may take.

#include <vgwctl/options/Failure.h>

#include <algorithm>
#include <chrono>
#include <optional>

namespace Vgwctl {

class Deadline {
  public:
    using Clock = std::chrono::steady_clock;
    using Seconds = std::chrono::duration<double>;

    /// Never.
    Deadline() = default;
    /// Of what is beyond all clocks, never.
    static Deadline after(Seconds seconds) {
        Deadline deadline;
        if (!(seconds < longest)) return deadline;
        deadline.at_ = Clock::now() + std::chrono::duration_cast<Clock::duration>(seconds);
        return deadline;
    }

    bool isOver() const { return at_ && Clock::now() >= *at_; }
    /// Raises Failure, timeout, when it is over.
    void check(char const* what) const {
        if (isOver()) throw Failure(std::string("timeout: ") + what, ExitCode::timeout);
    }
    Deadline orAfter(Seconds seconds) const { return orAt(after(seconds)); }
    /// The earlier of both.
    Deadline orAt(Deadline const& other) const {
        return !at_ || (other.at_ && *other.at_ < *at_) ? other : *this;
    }
    /// For poll(2): milliseconds that are left, rounded up; -1 for never.
    int milliseconds() const {
        if (!at_) return -1;
        auto const left = std::chrono::ceil<std::chrono::milliseconds>(*at_ - Clock::now());
        return static_cast<int>(std::clamp<long long>(left.count(), 0, 3'600'000));
    }

  private:
    static constexpr Seconds longest{1e9};

    std::optional<Clock::time_point> at_;
};

}  // namespace Vgwctl

#endif
