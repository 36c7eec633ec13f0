#include "Link.h"

#include <algorithm>
#include <utility>

namespace Sim {

using Side = Qor::NboAttrLog::Demuxer::Side;

void Link::connect(std::vector<Qor::Dir::Ptr> const& roots, std::vector<Tree> const& trees,
                   Settings const& settings) {
    history_.clear();
    acceptEnd_ = std::make_unique<Tap>(history_, true);
    connectEnd_ = std::make_unique<Tap>(history_, false);
    auto carriers = connected(settings.carried);
    acceptEnd_->carrierIs(std::move(carriers.first));
    connectEnd_->carrierIs(std::move(carriers.second));
    Process const& accepting = settings.processes[accepting_];
    Process const& connecting = settings.processes[connecting_];
    NameExchange const names(accepting.knowledge, connecting.knowledge);
    acceptEnd_->exchangeIs(names);
    connectEnd_->exchangeIs(names);
    if (isLate(accepting.knowledge)) acceptEnd_->learnsLateIs(accepting.knowledge);
    if (isLate(connecting.knowledge)) connectEnd_->learnsLateIs(connecting.knowledge);
    Session::Config config;
    config.peerMayWrite = settings.isWritable;
    config.ringBlocks = settings.ringBlocks;
    config.takesTypes = connecting.takesTypes;
    connect_ = std::make_unique<Session>(config, *connectEnd_, roots[connecting_]);
    config.takesTypes = accepting.takesTypes;
    config.side = Side::accepting;
    accept_ = std::make_unique<Session>(config, *acceptEnd_, roots[accepting_]);
    acceptHearer_ = std::make_unique<Hearer>(*this, *accept_);
    connectHearer_ = std::make_unique<Hearer>(*this, *connect_);
    areWritable_ = settings.isWritable;
    mounts_.clear();
    auto const add = [&](Session& session, Tree const& tree, unsigned process) {
        mounts_.push_back({&session, std::string_view(tree.path), tree.tops[process]});
        mount(mounts_.back());
    };
    for (Tree const& tree : trees) {
        auto const& from = tree.route.from;
        bool const isDown = from[connecting_] == accepting_ && tree.route.maker != connecting_;
        bool const isUp = from[accepting_] == connecting_ && tree.route.maker != accepting_;
        if (isDown) add(*connect_, tree, connecting_);
        if (isUp) add(*accept_, tree, accepting_);
    }
}

void Link::mount(Mounted& mounted) const {
    mounted.id = mounted.session->mount(mounted.path, areWritable_, mounted.copy);
    mounted.isSynced = mounted.isThere = false;
}

bool Link::remount(Dice& dice) {
    if (!isUp() || mounts_.empty()) return false;
    Mounted& mounted = mounts_[dice.below(mounts_.size())];
    bool const wasMounted = mounted.id != 0;
    if (wasMounted) mounted.session->unmount(std::exchange(mounted.id, 0));
    mounted.isSynced = mounted.isThere = false;
    if (!wasMounted || dice.oneIn(2)) mount(mounted);
    return true;
}

void Link::mountAll() {
    for (Mounted& mounted : mounts_) {
        if (mounted.id == 0) mount(mounted);
    }
}

void Link::synced(Session const& session, Qor::NboAttrLog::MountId mount) {
    for (Mounted& mounted : mounts_) {
        if (mounted.session == &session && mounted.id == mount) mounted.isSynced = true;
    }
}

bool Link::isSynced() const {
    return isUp() && std::all_of(mounts_.begin(), mounts_.end(),
                                 [](Mounted const& mounted) { return mounted.isSynced; });
}

bool Link::mountsAgain() {
    bool doesAny = false;
    for (Mounted& mounted : mounts_) {
        bool const isThere = mounted.id != 0 && mounted.session->mounted(mounted.id);
        bool const isGivenBack = std::exchange(mounted.isThere, isThere) && !isThere;
        if (!isGivenBack) continue;
        mounted.isSynced = false;
        doesAny = true;
    }
    return doesAny;
}

void Link::cut() {
    if (!isUp()) return;
    acceptEnd_->carrier().cut();
    service(true, 1);
    service(false, 1);
    mounts_.clear();
    connect_.reset();
    accept_.reset();
}

void Link::roomIs(bool towardsAccepting, std::size_t bytes) {
    if (isUp()) (towardsAccepting ? acceptEnd_ : connectEnd_)->carrier().roomIs(bytes);
}

void Link::service(bool accepting, Qor::U64 budget) {
    if (!isUp()) return;
    Session& session = accepting ? *accept_ : *connect_;
    Qor::U64 const before = session.counters().bytesOut;
    session.service(budget);
    bytes_ += session.counters().bytesOut - before;
}

std::vector<std::string> Link::traceOn() {
    std::vector<std::string> told;
    if (traced_ > history_.size()) traced_ = 0;
    for (; traced_ < history_.size(); ++traced_) {
        told.push_back("link " + std::to_string(accepting_) + "-" + std::to_string(connecting_) +
                       ": " + inWords(history_[traced_]));
    }
    return told;
}

bool Link::isIdle() const {
    if (!isUp()) return false;
    bool const isOwed = accept_->wantsWrite() || connect_->wantsWrite() ||
                        accept_->demuxer().flows() + connect_->demuxer().flows() != 0;
    bool const isUnderWay =
        acceptEnd_->put() != connectEnd_->taken() || connectEnd_->put() != acceptEnd_->taken();
    return !isOwed && !isUnderWay;
}

std::string Link::closed() const {
    if (!isUp()) return "the connection is down";
    return std::string(accept_->closed().view()) + std::string(connect_->closed().view());
}

std::string Link::audit() const {
    std::string const where =
        " on the link of " + std::to_string(accepting_) + " and " + std::to_string(connecting_);
    if (!closed().empty()) return closed() + where;
    for (Session const* const session : {accept_.get(), connect_.get()}) {
        auto const& demuxer = session->demuxer();
        if (demuxer.flows() != 0) return "something is owed" + where;
        if (demuxer.hasFlowsIn()) return "something is half received" + where;
        if (demuxer.openText() != 0) return "a text is open" + where;
        if (session->wantsWrite()) return "bytes wait" + where;
    }
    if (accept_->demuxer().adapters() != connect_->demuxer().adapters()) {
        return std::to_string(accept_->demuxer().adapters()) + " adapters face " +
               std::to_string(connect_->demuxer().adapters()) + where;
    }
    if (!isSynced()) return "not synced" + where;
    std::string found = announcedFirst(history_);
    if (found.empty()) found = wellFormed(history_);
    return found.empty() ? found : found + where;
}

}  // namespace Sim
