#include <vgwd/serve/PeerBooks.h>

#include <algorithm>
#include <utility>
#include <vector>

namespace Vgwd {
namespace {

constexpr std::chrono::seconds interval{1};

Qor::String8 text(std::string const& value) { return std::string_view(value); }

PeerLink linkOf(Peer const& peer) {
    switch (peer.kind()) {
        case Peer::Kind::tcp:
            return PeerLink::overTcp;
        case Peer::Kind::ssl:
            return PeerLink::overTls;
        default:
            return PeerLink::overUnix;
    }
}

bool isTold(Peer const& peer) {
    return peer.hasSession() && peer.identity().role != PeerRole::refused;
}

void writeMounts(PeerSession& row, Peer const& peer) {
    std::map<std::string, bool> paths;
    for (auto const& [id, mount] : peer.mounts()) paths[mount.path] |= mount.isWritable;
    for (auto at = row.mountIterator(); at; ++at)
        if (!paths.contains(std::string(at.key().view()))) at.del();
    for (auto const& [path, isWritable] : paths)
        row.mountIs(text(path), isWritable ? "write" : "read");
}

void writeRow(PeerSession& row, Peer const& peer) {
    auto const counters = peer.session().counters();
    row.identityIs(text(peer.identity().name));
    row.rightIs(peer.identity().role == PeerRole::writer ? PeerRight::peerWrites
                                                         : PeerRight::peerReads);
    row.linkIs(linkOf(peer));
    row.sinceIs(counters.since);
    writeMounts(row, peer);
    row.bytesInIs(counters.bytesIn);
    row.bytesOutIs(counters.bytesOut);
    row.recordsInIs(counters.framesIn);
    row.recordsOutIs(counters.framesOut);
    row.owedIs(counters.flows);
    row.mergedIs(peer.session().demuxer().counters().flowsMade);
    row.lastHeardIs(counters.lastHeard);
    row.silentIs(peer.isSilent());
}

}  // namespace

PeerBooks::PeerBooks(asio::io_context& loop, Qor::Dir::Ptr sessions, Server const& server)
    : sessions_(std::move(sessions)),
      server_(server),
      timer_(loop),
      last_(Clock::now() - interval) {}

void PeerBooks::handleTraffic() {
    if (std::exchange(isDue_, true)) return;
    timer_.expires_at(std::max(last_ + interval, Clock::now()));
    timer_.async_wait(tether_.tie([this](std::error_code error) {
        if (!error) publish();
    }));
}

void PeerBooks::publish() {
    isDue_ = false;
    last_ = Clock::now();
    std::vector<std::pair<std::shared_ptr<Peer>, Qor::U64>> before;
    for (auto const& peer : server_.peers())
        if (peer->hasSession()) before.emplace_back(peer, peer->session().counters().framesOut);
    write();
    for (auto const& [peer, frames] : before)
        peer->excuse(peer->session().counters().framesOut - frames);
}

void PeerBooks::write() {
    removeEnded();
    for (auto const& peer : server_.peers()) {
        if (!isTold(*peer)) continue;
        Qor::Name const name = text(peer->name());
        auto row = Qor::dynamicCast<PeerSession>(sessions_->entry(name));
        bool const isNew = !row;
        if (isNew) row = Qor::make<PeerSession>(name);
        writeRow(*row, *peer);
        if (isNew) sessions_->entryIs(name, row);
    }
}

void PeerBooks::removeEnded() {
    for (auto at = sessions_->entryIterator(); at; ++at) {
        bool const isThere = std::any_of(
            server_.peers().begin(), server_.peers().end(),
            [&](auto const& peer) { return std::string_view(peer->name()) == at.key().view(); });
        if (!isThere) at.del();
    }
}

}  // namespace Vgwd
