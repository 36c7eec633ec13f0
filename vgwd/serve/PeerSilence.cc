// Whether a peer is there: what went and came, and what is asked when nothing comes.
#include <vgwd/serve/Peer.h>

namespace Vgwd {

using Ovsdb::LogLevel;

void Peer::limitHello() {
    deadline_.expires_after(host_.options().times.hello);
    deadline_.async_wait([self = weak_from_this()](std::error_code error) {
        auto const peer = self.lock();
        if (error || !peer || peer->isOver_) return;
        if (peer->hasSession() && peer->session().counters().framesIn != 0) return;
        peer->close("nothing was said for too long");
    });
}

Qor::U64 Peer::frames() const {
    if (!session_) return 0;
    auto const counters = session_->counters();
    Qor::U64 const asked = pings_ + pongs_ + 2 * counters.pingsIn;
    return counters.framesIn + counters.framesOut - asked - excused_;
}

void Peer::noteTraffic() {
    auto const counters = session_->counters();
    Qor::U64 const out = counters.framesOut - pings_ - excused_;
    if (counters.framesIn != framesHeard_) {
        framesHeard_ = counters.framesIn;
        answeredOut_ = out;
        if (std::exchange(isSilent_, false))
            host_.log(LogLevel::info, name_ + ": " + identity_.name + " is heard of again");
    }
    Qor::U64 const seen = frames();
    if (std::exchange(framesSeen_, seen) != seen) host_.handleTraffic(*this);
    if (out != answeredOut_) watchSilence();
}

// One question a silence: a peer that answers it is there, and is asked again only after more was
// sent to it.
void Peer::watchSilence() {
    if (isOver_ || isSilent_ || std::exchange(watchesSilence_, true)) return;
    silence_.expires_after(host_.options().times.pingAfter);
    silence_.async_wait([self = weak_from_this()](std::error_code error) {
        auto const peer = self.lock();
        if (error || !peer || peer->isOver_) return;
        peer->handleSilence();
    });
}

void Peer::handleSilence() {
    watchesSilence_ = false;
    Qor::U64 const heard = framesHeard_;
    bool const isAnswered = session_->counters().framesOut - pings_ - excused_ == answeredOut_;
    if (isAnswered) return;
    // What waits to be sent asks as well as a ping would.
    if (session_->demuxer().out()->unsent().empty()) {
        ++pings_;
        session_->ping();
    }
    auto const limit = host_.options().times.silence;
    if (limit.count() == 0) return;
    watchesSilence_ = true;
    silence_.expires_after(limit);
    silence_.async_wait([self = weak_from_this(), heard](std::error_code error) {
        auto const peer = self.lock();
        if (error || !peer || peer->isOver_) return;
        peer->watchesSilence_ = false;
        if (peer->framesHeard_ != heard) return peer->noteTraffic();
        peer->handleUnanswered();
    });
}

void Peer::handleUnanswered() {
    std::string const what = "does not answer for " +
                             std::to_string(host_.options().times.silence.count() / 1000) + " s";
    host_.log(LogLevel::warning, name_ + ": " + identity_.name + " " + what);
    if (kind_ != Kind::unixSocket) return close("the reader " + what);
    isSilent_ = true;
    host_.handleTraffic(*this);
}

}  // namespace Vgwd
