#include <vgwctl/link/Attachment.h>

#include <cstdio>
#include <thread>

namespace Vgwctl {
namespace {

constexpr Deadline::Seconds firstPause{0.1};
constexpr Deadline::Seconds longestPause{1};

}  // namespace

void Attachment::step(Deadline const& until) {
    bool const isFirst = !copy_.entity();
    try {
        if (connection_) return connection_->step(until);
        if (isTimeToConnect(until)) connect();
    } catch (LinkFailure const& e) {
        connection_.reset();
        if (isFirst) throw;
        lose(e.what());
    }
}

bool Attachment::isTimeToConnect(Deadline const& until) {
    if (pause_.count() == 0 || next_.isOver()) return true;
    int const left = next_.milliseconds();
    int const most = until.milliseconds();
    std::this_thread::sleep_for(std::chrono::milliseconds(most < 0 ? left : std::min(left, most)));
    return next_.isOver();
}

void Attachment::connect() {
    deadline_.check("there is no connection to the agent");
    connection_.emplace(target_, deadline_, tap_);
    copy_.mountOn(*connection_, deadline_);
    if (pause_.count() > 0) tell_("connected to " + connection_->remote() + " again");
    pause_ = Deadline::Seconds(0);
    lastReason_.clear();
}

pollfd Attachment::awaited() const {
    if (!connection_) return {-1, 0, 0};
    return connection_->awaited();
}

void tellPeople(std::string const& what) { std::fprintf(stderr, "vgwctl: %s\n", what.c_str()); }

void Attachment::lose(std::string const& reason) {
    pause_ = std::min(longestPause, std::max(firstPause, pause_ * 2));
    next_ = Deadline::after(pause_);
    if (reason != lastReason_) tell_(reason + "; what was shown is kept, and it is tried again");
    lastReason_ = reason;
}

}  // namespace Vgwctl
