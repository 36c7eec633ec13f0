#include "Net.h"

#include <algorithm>
#include <new>
#include <utility>

namespace Sim {

using Qor::make;

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
    config.side = Qor::NboAttrLog::Demuxer::Side::accepting;
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
