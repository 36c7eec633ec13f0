#include "Net.h"

#include <algorithm>
#include <new>
#include <utility>

namespace Sim {

namespace {

using Qor::make;
using Side = Qor::NboAttrLog::Demuxer::Side;

// In a ring each process's tree goes all the way round to the one before it.
Topology ring(unsigned count) {
    Topology result{"ring of " + std::to_string(count), count, {}, {}, true};
    for (unsigned i = 0; i < count; ++i) result.links.emplace_back(i, (i + 1) % count);
    for (unsigned maker = 0; maker < count; ++maker) {
        Route route{maker, std::vector<unsigned>(count, maker)};
        for (unsigned i = 1; i < count; ++i) {
            route.from[(maker + i) % count] = (maker + i - 1) % count;
        }
        result.trees.push_back(route);
    }
    return result;
}

}  // namespace

std::vector<Topology> const& topologies() {
    static std::vector<Topology> const all{
        {"pair", 2, {{0, 1}}, {{0, {0, 0}}}, false},
        {"pair, both ways", 2, {{0, 1}}, {{0, {0, 0}}, {1, {1, 1}}}, false},
        {"chain of three", 3, {{0, 1}, {1, 2}}, {{0, {0, 0, 1}}}, true},
        {"chain of four", 4, {{0, 1}, {1, 2}, {2, 3}}, {{0, {0, 0, 1, 2}}}, true},
        {"star", 4, {{0, 1}, {0, 2}, {0, 3}}, {{0, {0, 0, 0, 0}}}, false},
        {"fork", 4, {{0, 1}, {1, 2}, {1, 3}}, {{0, {0, 0, 1, 1}}}, true},
        ring(3),
        ring(4),
    };
    return all;
}

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

Net::Net(Topology const& topology, Settings const& settings, Dice& dice)
    : settings_(settings), isHollow_(topology.processes) {
    for (Process const& process : settings.processes) forgetLearned(process.knowledge);
    for (unsigned i = 0; i < topology.processes; ++i) {
        roots_.push_back(make<Qor::Dir>(Qor::Name("tree")));
    }
    trees_.reserve(topology.trees.size());
    for (Route const& route : topology.trees) {
        Tree& tree = trees_.emplace_back();
        tree.route = route;
        std::string const name = "t" + std::to_string(trees_.size() - 1);
        tree.path = "/tree/" + name;
        tree.plan.isTraced = settings.isTraced;
        for (unsigned i = 0; i < topology.processes; ++i) {
            tree.tops.push_back(make<Qor::Dir>(Qor::Name(std::string_view(name))));
            tree.dirs.push_back(&dirShape(settings.processes[i].knowledge));
            roots_[i]->entryIs(Qor::Name(std::string_view(name)), tree.tops[i]);
            unsigned const number = (i + topology.processes - route.maker) % topology.processes;
            tree.authors.emplace_back(number, topology.processes, tree.top(i), tree.plan, dice);
            tree.authors.back().isRivalIs(settings.areRivals);
            tree.authors.back().hasLongTextsIs(settings.hasLongTexts);
            tree.authors.back().aboveIs(above(tree, i));
            tree.watches.emplace_back(settings.holdsEntities);
            tree.inStep.push_back(false);
            tree.astray.push_back(false);
        }
        tree.authors[route.maker].found();
    }
    for (auto const& [accepting, connecting] : topology.links) {
        links_.push_back(std::make_unique<Link>(accepting, connecting));
    }
}

// Memory that fails once is there again.
template <class Work>
void doInTheEnd(Work const& work) try {
    work();
} catch (std::bad_alloc const&) {
    work();
}

Net::~Net() {
    for (auto const& link : links_) doInTheEnd([&] { link->cut(); });
    for (Tree& tree : trees_) {
        for (Author& author : tree.authors) doInTheEnd([&] { author.letGo(); });
        doInTheEnd([&] { keepNothing(tree); });
    }
}

void Net::lose(Link& link) {
    losses_.push_back(link.closed());
    for (Tree& tree : trees_) {
        tree.plan.cutAt(pictureOf(tree.top(tree.route.maker)).lines);
    }
    cut(link);
}

// Those through which what the process writes goes, to the tree's maker.
std::vector<Knowledge> Net::above(Tree const& tree, unsigned process) const {
    std::vector<Knowledge> all;
    for (unsigned at = process; at != tree.route.maker;) {
        at = tree.route.from[at];
        all.push_back(settings_.processes[at].knowledge);
    }
    return all;
}

void Net::service(Link& link, bool accepting, Qor::U64 budget) {
    link.service(accepting, budget);
    bool const mayBeLost = settings_.carried == Carried::overSockets;
    if (mayBeLost && link.isUp() && !link.closed().empty()) return lose(link);
    if (!link.mountsAgain()) return;
    ++learnings_;
    for (Tree& tree : trees_) {
        tree.plan.unmountedAt(pictureOf(tree.top(tree.route.maker)).lines, true);
    }
    outOfStep();
}

bool Net::isWhole(unsigned process) {
    bool const isWaited =
        isHollow_[process] && !std::all_of(trees_.begin(), trees_.end(),
                                           [&](Tree& tree) { return isInStep(tree, process); });
    if (!isWaited) isHollow_[process] = false;
    return !isWaited;
}

void Net::connect(Link& link) {
    bool const serves = std::any_of(trees_.begin(), trees_.end(), [&](Tree const& tree) {
        return !isWhole(link.accepting()) && tree.route.from[link.connecting()] == link.accepting();
    });
    if (!serves) link.connect(roots_, trees_, settings_);
}

void Net::cut(Link& link) {
    link.cut();
    outOfStep();
}

bool Net::remount(Link& link, Dice& dice) {
    if (!link.remount(dice)) return false;
    outOfStep();
    return true;
}

void Net::outOfStep() {
    for (Tree& tree : trees_) tree.inStep.assign(roots_.size(), false);
}

bool Net::makes(unsigned process) const {
    return std::any_of(trees_.begin(), trees_.end(),
                       [&](Tree const& tree) { return tree.route.maker == process; });
}

// By a mount of its own, as one who backs the tree up.
std::string Net::keep(Tree& tree) {
    keepNothing(tree);
    using Qor::NboAttrLog::MemoryTransport;
    MemoryTransport served;
    MemoryTransport mounted;
    MemoryTransport::connect(served, mounted);
    Session::Config config;
    config.peerMayWrite = true;  // what is kept is written later
    Session mounting(config, mounted, nullptr);
    config.side = Side::accepting;
    Session serving(config, served, roots_[tree.route.maker]);
    auto const kept = make<Qor::Dir>(tree.tops[tree.route.maker]->name());
    mounting.mount(Qor::String8(std::string_view(tree.path)), true, kept);
    for (Qor::U64 before = 1; before != mounting.counters().bytesIn;) {
        before = mounting.counters().bytesIn;
        serving.service();
        mounting.service();
        serving.service();
        mounting.service();
    }
    std::string const closed(mounting.closed().view());
    if (!closed.empty()) return "closed: " + closed;
    tree.kept = kept;
    auto source = pictureOf(tree.top(tree.route.maker)).lines;
    std::erase_if(source, [](auto const& line) { return line.second == nowhere; });
    return difference(source, pictureOf(tree.keptTop()).lines);
}

void Net::keepNothing(Tree& tree) {
    if (!tree.kept) return;
    tree.authors[tree.route.maker].letGo(tree.keptTop());
    tree.kept = nullptr;
}

// Its plan is what the maker holds now, whoever wrote that.
void Net::comeBack(Tree& tree) {
    unsigned const maker = tree.route.maker;
    tree.plan.lines = pictureOf(tree.top(maker)).lines;
    if (tree.plan.lines.size() == 1) tree.authors[maker].found();
}

bool Net::isOnTrack(Tree& tree, unsigned process) {
    if (!tree.astray[process]) return true;
    if (!isInStep(tree, process)) return false;
    tree.astray[process] = false;
    tree.watches[process] = Watch(settings_.holdsEntities);
    return true;
}

// In a ring, where all make trees, those that have come back empty would wait for each other: there
// they serve what they have, and it is those behind them that are not judged for a while.
void Net::crash(unsigned process) {
    bool const isMaker = makes(process);
    bool comesBack = false;
    for (auto const& link : links_) {
        if (link->accepting() == process || link->connecting() == process) cut(*link);
    }
    for (Tree& tree : trees_) {
        Qor::Name const name = tree.tops[process]->name();
        tree.authors[process].letGo();
        bool const isKept = tree.route.maker == process && tree.kept;
        comesBack |= isKept;
        tree.tops[process] = isKept ? std::exchange(tree.kept, nullptr) : make<Qor::Dir>(name);
        roots_[process]->entryIs(name, tree.tops[process]);
        tree.authors[process].topIs(tree.top(process));
        tree.watches[process] = Watch(settings_.holdsEntities);
        if (tree.route.maker == process) comeBack(tree);
        if (!isMaker) continue;
        tree.astray.assign(roots_.size(), true);
        tree.astray[tree.route.maker] = false;
    }
    isHollow_[process] = !isMaker;
    // Who comes back with what he had knows its classes. Others may just be told of all that stand
    // in the registry.
    bool const isNobodyTold = std::all_of(links_.begin(), links_.end(), [](auto const& link) {
        return !link->isUp() || link->isIdle();
    });
    if (!comesBack && isNobodyTold) forgetLearned(settings_.processes[process].knowledge);
}

Link* Net::linkBetween(unsigned one, unsigned other) const {
    for (auto const& link : links_) {
        bool const isIt = (link->accepting() == one && link->connecting() == other) ||
                          (link->accepting() == other && link->connecting() == one);
        if (isIt) return link.get();
    }
    return nullptr;
}

bool Net::isInStep(Tree& tree, unsigned process) const {
    if (tree.inStep[process]) return true;
    for (unsigned at = process; at != tree.route.maker; at = tree.route.from[at]) {
        Link const* const link = linkBetween(at, tree.route.from[at]);
        if (link == nullptr || !link->isSynced() || !link->isIdle()) return false;
    }
    tree.inStep[process] = true;
    return true;
}

unsigned Net::settle() {
    constexpr unsigned most = 100000;
    unsigned quiet = 0;
    for (unsigned round = 1; round < most; ++round) {
        Qor::U64 moved = 0;
        for (auto const& link : links_) {
            Qor::U64 const before = link->bytes();
            if (!link->isUp()) connect(*link);
            link->mountAll();
            link->roomIs(true, ~std::size_t{0});
            link->roomIs(false, ~std::size_t{0});
            service(*link, true, 1U << 20);
            service(*link, false, 1U << 20);
            moved += link->isUp() ? link->bytes() - before : 1;
        }
        quiet = moved == 0 ? quiet + 1 : 0;
        if (quiet == 2) return round;
    }
    return 0;
}

}  // namespace Sim
