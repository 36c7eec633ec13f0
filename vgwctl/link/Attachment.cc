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
        connect(until);
    } catch (LinkFailure const& e) {
        connection_.reset();
        if (isFirst) throw;
        lose(e.what());
    }
}

void Attachment::connect(Deadline const& until) {
    if (pause_.count() > 0) std::this_thread::sleep_for(pause_);
    until.check("there is no connection to the agent");
    connection_.emplace(target_, until, tap_);
    copy_.mountOn(*connection_, until);
    if (pause_.count() > 0) tell_("connected to " + connection_->remote() + " again");
    pause_ = Deadline::Seconds(0);
    lastReason_.clear();
}

void tellPeople(std::string const& what) { std::fprintf(stderr, "vgwctl: %s\n", what.c_str()); }

void Attachment::lose(std::string const& reason) {
    pause_ = std::min(longestPause, std::max(firstPause, pause_ * 2));
    if (reason != lastReason_) tell_(reason + "; what was shown is kept, and it is tried again");
    lastReason_ = reason;
}

}  // namespace Vgwctl
