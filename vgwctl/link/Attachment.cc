#include <vgwctl/link/Attachment.h>

#include <vgwctl/output/ValueText.h>

#include <cstdio>
#include <thread>

namespace Vgwctl {
namespace {

constexpr Deadline::Seconds firstPause{0.1};
constexpr Deadline::Seconds longestPause{1};

}  // namespace

void Attachment::begin(Deadline const& deadline) {
    while (!isInStep_) {
        deadline.check(connection_ ? "the agent has not sent its whole state" : "connecting");
        advance(deadline.orAfter(MountProgress::interval));
    }
    hasBegun_ = true;
}

// What could not be done once may be done later: an agent that has just started may not have yet
// what is mounted, and certificates may be about to be replaced.
void Attachment::step(Deadline const& until) {
    try {
        advance(until);
    } catch (Failure const& e) {
        lose(e.what());
    }
}

void Attachment::advance(Deadline const& until) {
    if (!connection_) return connect(until);
    connection_->step(until.orAt(silence_.due()));
    look();
    if (isInStep_) return;
    progress_->tell(connection_->session().counters());
    if (copy_.takeFrom(*connection_)) settle();
}

void Attachment::connect(Deadline const& until) {
    if (!connecting_) {
        if (!isTimeToConnect(until)) return;
        connecting_.emplace(target_.remote);
    }
    if (!connecting_->step()) {
        await(connecting_->awaited(), until.orAt(connecting_->due()));
        if (!connecting_->step()) return;
    }
    connection_.emplace(target_, connecting_->take(), tap_);
    connecting_.reset();
    progress_.emplace(copy_.path());
    silence_.begin();
    copy_.beginMountOn(*connection_);
}

void Attachment::look() {
    switch (silence_.look(connection_->session().counters().bytesIn)) {
        case Silence::Finding::none:
            return;
        case Silence::Finding::toAsk:
            return connection_->session().ping();
        case Silence::Finding::silent:
            return handleSilence();
        case Silence::Finding::heardAgain:
            return tell(connection_->remote() + " is heard of again");
    }
}

void Attachment::tell(std::string const& what) {
    if (progress_) progress_->hide();
    tell_(what);
}

void Attachment::handleSilence() {
    char after[32];
    std::snprintf(after, sizeof after, "%g", 2 * silence_.patience().count());
    std::string const what = connection_->remote() + " has said nothing for " + after + " s";
    bool const isNear = target_.remote.kind == Ovsdb::Remote::Kind::unixSocket;
    if (hasBegun_ && !isNear) throw LinkFailure(what);
    tell(what + "; it is waited for");
}

bool Attachment::isTimeToConnect(Deadline const& until) {
    if (pause_.count() == 0 || next_.isOver()) return true;
    int const left = next_.orAt(until).milliseconds();
    std::this_thread::sleep_for(std::chrono::milliseconds(left));
    return next_.isOver();
}

pollfd Attachment::awaited() const {
    if (connection_) return connection_->awaited();
    return connecting_ ? connecting_->awaited() : pollfd{-1, 0, 0};
}

Deadline Attachment::due() const {
    if (!connection_) return connecting_ ? connecting_->due() : next_;
    return connection_->isDue() ? Deadline::after(Deadline::Seconds(0)) : silence_.due();
}

void Attachment::settle() {
    isInStep_ = true;
    progress_.reset();
    if (pause_.count() > 0) tell_("connected to " + connection_->remote() + " again");
    pause_ = Deadline::Seconds(0);
    lastReason_.clear();
}

void Attachment::lose(std::string const& reason) {
    progress_.reset();
    connecting_.reset();
    connection_.reset();
    isInStep_ = false;
    pause_ = std::min(longestPause, std::max(firstPause, pause_ * 2));
    next_ = Deadline::after(pause_);
    if (reason != lastReason_) tell_(reason + "; what was shown is kept, and it is tried again");
    lastReason_ = reason;
}

void tellPeople(std::string const& what) {
    std::fprintf(stderr, "vgwctl: %s\n", printable(what).c_str());
}

}  // namespace Vgwctl
