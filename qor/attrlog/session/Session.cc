#include <qor/attrlog/session/Session.h>

#include <qor/core/Format.h>
#include <qor/core/Now.h>
#include <qor/tree/EntityPath.h>

#include <algorithm>
#include <exception>
#include <utility>

namespace Qor {

namespace NboAttrLog {

SessionListener::~SessionListener() = default;
void SessionListener::onMounted(MountId, Ptr<Entity> const&) {}
void SessionListener::onSynced(MountId) {}
void SessionListener::onRefused(MountId, String8 const&) {}
void SessionListener::onPong(Seconds) {}
void SessionListener::onDigested(DigestPage const&, StateDigest const&, String8 const&) {}
void SessionListener::onReturned(CallId, bool, String8 const&) {}
String8 SessionListener::onAskedToCall(String8 const& path, String8 const&, Entity&) {
    return String8("the operations of ") + path + " are its owner's own";
}
String8 SessionListener::onAsked(String8 const&, bool, Entity&) { return {}; }
void SessionListener::onGiven(MountId, String8 const&, bool) {}
void SessionListener::onTakenBack(MountId) {}
void SessionListener::onWritten(Entity&, AttributeId) {}
void SessionListener::onWantsWrite() {}

namespace {

constexpr U64 passBytes = U64{1} << 15;
constexpr std::size_t greatestReason = 1024;

// Several sessions may be called alike, and a demuxer's name is its own.
Name demuxerName(Name const& session) {
    thread_local U64 made = 0;
    return Name(session + format(" %llu", static_cast<unsigned long long>(++made)));
}

}  // namespace

Session::Session(Config config, Transport& transport, Ptr<Entity> root)
    : config_(std::move(config)),
      transport_(transport),
      root_(std::move(root)),
      demuxer_(make<Demuxer>(demuxerName(config_.name), make<In>(), make<Out>(config_.ringBlocks),
                             config_.side)),
      types_(config_.types),
      since_(now()),
      lastHeard_(since_) {
    demuxer_->linkHandlerIs(this);
    demuxer_->out()->wakerIs(this);
    demuxer_->peerMayUncountIs(false);
    demuxer_->tellsWrittenIs(config_.peerMayWrite);
    demuxer_->quotaIs(config_.quota);
    demuxer_->in()->greatestFrameIs(config_.greatestFrame);
    send(Op::hello, magic, protocol, config_.greatestFrame);
    if (config_.takesTypes) askForTypes(Name());
    globalNboAttrLogDemuxerManager().nboDemuxerIs(demuxer_);
}

Session::~Session() {
    *isAlive_ = false;
    globalNboAttrLogDemuxerManager().nboDemuxerDel(demuxer_->name());
    demuxer_->linkHandlerIs(nullptr);
    demuxer_->out()->wakerIs(nullptr);
    demuxer_->close();
}

MountId Session::mount(String8 const& path, bool writable, Ptr<Entity> copy) {
    MountId const mount = ++lastMount_;
    Asked& asked = asked_[mount];
    asked.path = path;
    asked.writable = writable;
    asked.copy = std::move(copy);
    if (!awaitsTypes()) askFor(mount, asked);
    return mount;
}

void Session::unmount(MountId mount) {
    auto const found = asked_.find(mount);
    if (found == asked_.end()) return;
    EntityId const id = giveBack(found->second);
    auto const gone = asked_.extract(found);
    Alive const alive(*this);
    bool const isShared = std::any_of(asked_.begin(), asked_.end(),
                                      [&](auto const& one) { return one.second.id == id; });
    if (isShared) return;
    auto const isKept = [&](auto const& one) {
        return demuxer_->adapter(one.second.id) != nullptr;
    };
    std::vector<MountId> kept;
    for (auto const& one : asked_) {
        if (isKept(one)) kept.push_back(one.first);
    }
    letGo(id);
    if (!alive) return;
    for (MountId const other : kept) {
        auto const one = asked_.find(other);
        if (one != asked_.end() && !isKept(*one)) mountAgain(*one);
    }
}

// What stood below another that was unmounted has gone with it at both ends.
void Session::mountAgain(std::pair<MountId const, Asked>& one) {
    giveBack(one.second);
    askFor(one.first, one.second);
}

// Under a number of its own each time: what the peer answers to an earlier one may still be on its
// way, and means nothing for this one.
void Session::askFor(MountId mount, Asked& asked) {
    asked.number = ++lastNumber_;
    numbers_[asked.number] = mount;
    send(Op::mount, asked.number, asked.writable, asked.path);
}

// What is to be asked for.
void Session::askForAll() {
    for (auto& [mount, asked] : asked_) {
        if (asked.number == 0) askFor(mount, asked);
    }
}

// The id that the peer's entity had.
EntityId Session::giveBack(Asked& asked) {
    if (asked.number != 0) {
        send(Op::unmount, asked.number);
        numbers_.erase(std::exchange(asked.number, 0));
    }
    return std::exchange(asked.id, EntityId());
}

std::map<MountId, Session::Asked>::iterator Session::askedUnder(U32 number) {
    auto const found = numbers_.find(number);
    return found == numbers_.end() ? asked_.end() : asked_.find(found->second);
}

Ptr<Entity> Session::mounted(MountId mount) const {
    auto const found = asked_.find(mount);
    bool const isThere = found != asked_.end() && !found->second.id.isNull();
    return isThere ? found->second.copy : nullptr;
}

void Session::written(Entity& entity, AttributeId attribute) {
    if (listener_ != nullptr) listener_->onWritten(entity, attribute);
}

void Session::onFirstFrame() {
    if (listener_ != nullptr) listener_->onWantsWrite();
}

void Session::ping() { send(Op::ping, now()); }

void Session::close(String8 const& reason) {
    if (reason_.length() != 0) return;
    demuxer_->fail(reason);
}

void Session::failed(String8 const& reason) {
    demuxer_->out()->dropOpenFrame();
    bool const isToldByPeer = reason_.length() != 0;
    if (isToldByPeer) return;
    reason_ = reason.empty() ? String8("no reason was given") : toldText(reason);
    try {
        send(Op::error, reason_);
    } catch (std::exception const&) {
        // It has ended, whether the peer can be told or not.
    }
}

String8 Session::toldText(String8 const& reason) {
    if (reason.length() <= greatestReason) return reason;
    std::size_t end = greatestReason - 3;
    while (end > 0 && (static_cast<unsigned char>(reason.view()[end]) & 0xC0U) == 0x80U) --end;
    return String8(reason.view().substr(0, end)) + "...";
}

Session::Counters Session::counters() const {
    Counters result;
    result.bytesIn = demuxer_->in()->received();
    result.bytesOut = demuxer_->out()->sent();
    result.framesIn = demuxer_->counters().framesIn;
    result.framesOut = demuxer_->out()->frames();
    result.pingsIn = pingsIn_;
    result.flows = demuxer_->flows();
    result.since = since_;
    result.lastHeard = lastHeard_;
    return result;
}

// What flows bring goes out in pieces, so that the peer has something to do while more is written.
void Session::service(U64 budget) {
    Demuxer::Ptr const held(demuxer_);
    Alive const alive(*this);
    U64 const end = demuxer_->out()->sent() + budget;
    U64 const readEnd = demuxer_->in()->received() + budget;
    wantsRead_ = false;
    mayTellDigest_ = true;
    for (bool goesOn = true; goesOn && demuxer_->out()->sent() < end && !wantsRead_;) {
        goesOn = serveTurn(budget, readEnd);
        if (!alive) return;
    }
    String8 const over = transport_.closed();
    if (over.length() != 0 && reason_.length() == 0) {
        reason_ = over;
        demuxer_->fail(over);
    }
    if (reason_.length() != 0) demuxer_->close();
}

// Whether anything has come or gone; false too if the session was ended meanwhile.
bool Session::serveTurn(U64 budget, U64 readEnd) {
    Alive const alive(*this);
    bool hasRead = false;
    try {
        hasRead = readAll(readEnd);
        if (alive) describeTypes();
        if (alive) demuxer_->serveFlows(std::min(budget, passBytes));
        if (alive) mountWhatWasLacked();
        if (alive) tellSynced();
        if (alive) tellDigest();
    } catch (std::exception const& failure) {
        if (alive) demuxer_->fail(failure.what());
    }
    return alive && (writeAll() || hasRead);
}

bool Session::readAll(U64 end) {
    Alive const alive(*this);
    bool hasRead = false;
    while (!demuxer_->hasFailed()) {
        wantsRead_ = demuxer_->in()->received() >= end;
        if (wantsRead_) break;
        std::size_t const count = transport_.read(demuxer_->in()->room());
        demuxer_->in()->receivedInc(count);
        std::size_t const served = demuxer_->serveFrames(1024);
        if (!alive) return false;
        if (count == 0 && served == 0) break;
        hasRead = true;
    }
    if (hasRead) lastHeard_ = now();
    return hasRead;
}

bool Session::writeAll() {
    bool hasWritten = false;
    auto const& out = demuxer_->out();
    out->dropOpenFrame();
    while (!out->unsent().empty()) {
        std::size_t const count = transport_.write(out->unsent());
        if (count == 0) break;
        out->sentInc(count);
        hasWritten = true;
    }
    return hasWritten;
}

bool Session::wantsWrite() const {
    if (!demuxer_->out()->unsent().empty()) return true;
    bool const owesAnswers = !answers_.empty() || !digestsOwed_.empty();
    bool const mayGoOn = demuxer_->holdsBack() || !held_.empty() || mayLackLess();
    return !demuxer_->hasFailed() && (demuxer_->owes() || owesAnswers || mayGoOn);
}

bool Session::hasRoom() const {
    In const& in = *demuxer_->in();
    return !demuxer_->holdsBack() || in.received() - in.released() < in.capacity();
}

// Behind what was owed when the mount was given: flows that only wait for ids hold it up no longer.
void Session::tellSynced() {
    if (demuxer_->owes() || demuxer_->hasFailed()) return;
    for (auto& [mount, given] : given_) {
        if (!given.isSynced) send(Op::synced, mount);
        given.isSynced = true;
    }
    giveHeld();
}

}  // namespace NboAttrLog

}  // namespace Qor
