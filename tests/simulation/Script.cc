#include "Script.h"

#include "Net.h"

#include <algorithm>
#include <cstdio>

namespace Sim {

namespace {

constexpr std::size_t rooms[] = {0, 1, 2, 7, 100, 5000, 40000, 1U << 20};

// In half of the scripts each process may know the classes by their descriptions alone. Dice of
// their own: the rest of a script is the same either way.
std::vector<Process> processesOf(Topology const& topology, Request const& request) {
    std::vector<Process> processes(topology.processes);
    Dice dice(request.seed ^ 0x9E3779B97F4A7C15);
    if (request.compiled || dice.oneIn(2)) return processes;
    for (Process& process : processes) {
        if (dice.oneIn(2)) process.knowledge = Knowledge::described;
        bool const takesTypes = dice.oneIn(5);
        process.takesTypes = takesTypes && process.knowledge == Knowledge::described;
    }
    return processes;
}

// Of those that learn late there is one at least.
std::vector<Process> lateProcessesOf(Topology const& topology, Request const& request) {
    auto processes = processesOf(topology, request);
    Dice dice(request.seed ^ 0xA24BAED4963EE407);
    auto const first = static_cast<unsigned>(dice.below(processes.size()));
    for (unsigned i = 0; i < processes.size(); ++i) {
        if (i != first && !dice.oneIn(3)) continue;
        processes[i].knowledge = lateOf(i);
        processes[i].takesTypes = true;
    }
    return processes;
}

Settings settingsOf(Dice& dice, Topology const& topology, Request const& request) {
    bool const rivals = request.rivals;
    Settings settings;
    settings.processes =
        request.late ? lateProcessesOf(topology, request) : processesOf(topology, request);
    settings.isTraced = request.isTraced;
    if (request.sockets) settings.carried = Carried::overSockets;
    settings.isWritable = rivals || dice.oneIn(2);
    settings.areRivals = rivals;
    // A cut takes a copy back to what its source holds; while a record of another author is still
    // on its way further out, that is a second writer.
    settings.hasCuts = rivals || !settings.isWritable || !topology.hasRelay;
    settings.hasLongTexts = dice.oneIn(4);
    settings.holdsEntities = dice.oneIn(2);
    settings.ringBlocks = static_cast<Qor::U32>(1 + dice.below(8));
    return settings;
}

class Run {
  public:
    explicit Run(Request const& request)
        : cast_(request.ties, request.late),
          remounts_(request.remounts),
          onRest_(request.onRest),
          makersEnd_(!request.makersStay && request.seed % 3 == 0),
          dice_(request.seed),
          ends_(request.seed ^ 0xD1B54A32D192ED03),
          topology_(dice_.oneOf(topologies())),
          settings_(settingsOf(dice_, topology_, request)),
          net_(topology_, settings_, dice_) {}

    Outcome run(unsigned steps);

  private:
    void step();
    void changeSomewhere();
    void serveSomeone();
    void cutSomewhere();
    void keepSomething();
    bool endMaker();
    void remountSomewhere();
    void traceOn(Link& link) const;
    void look();
    void finish();
    void needEqual(char const* when);
    void needQuiet();
    void needNoEcho();
    void dropWhatWasLeftOut();
    void fail(std::string const& what) {
        if (outcome_.violation.empty()) outcome_.violation = what;
    }
    void digest(std::uint64_t number) {
        outcome_.digest = (outcome_.digest ^ number) * 0x100000001B3;
    }
    bool mayWrite(Tree& tree, unsigned process) const;

    Cast const cast_;
    bool const remounts_;
    std::function<void()> const onRest_;
    bool const makersEnd_;
    Dice dice_;
    Dice ends_;  // of when makers end, and what they come back with
    Topology const& topology_;
    Settings const settings_;
    Net net_;
    Outcome outcome_;
};

// Until something that was cut has come back whole, what the source sends may cross what an author
// writes elsewhere.
bool Run::mayWrite(Tree& tree, unsigned process) const {
    if (process == tree.route.maker) return true;
    return settings_.isWritable && (settings_.areRivals || net_.isInStep(tree, process));
}

void Run::changeSomewhere() {
    keepSomething();
    Tree& tree = dice_.oneOf(net_.trees());
    auto const process =
        dice_.oneIn(2) ? tree.route.maker : static_cast<unsigned>(dice_.below(net_.processes()));
    if (!mayWrite(tree, process)) return;
    tree.authors[process].isInStepIs(process == tree.route.maker || net_.isInStep(tree, process));
    for (std::size_t i = 1 + dice_.below(4); i > 0; --i) {
        tree.authors[process].change();
        ++outcome_.volumes.changes;
    }
}

void Run::serveSomeone() {
    Link& link = *dice_.oneOf(net_.links());
    if (!link.isUp() && dice_.oneIn(3)) net_.connect(link);
    link.roomIs(dice_.oneIn(2), dice_.oneOf(rooms));
    // With few bytes a turn, walks wait within ties.
    Qor::U64 const few = Cast::hasTies() ? 60 : 300;
    bool const accepting = dice_.oneIn(2);
    net_.service(link, accepting, dice_.oneIn(Cast::hasTies() ? 2 : 4) ? few : 1U << 20);
    if (!link.closed().empty() && link.isUp()) fail("closed: " + link.closed());
    digest(link.bytes());
    traceOn(link);
}

void Run::traceOn(Link& link) const {
    if (!settings_.isTraced) return;
    for (auto const& words : link.traceOn()) std::puts(words.c_str());
}

void Run::cutSomewhere() {
    if (!settings_.hasCuts) return;
    if (remounts_ && dice_.oneIn(3)) return remountSomewhere();
    for (Tree& tree : net_.trees()) {
        tree.plan.cutAt(pictureOf(tree.top(tree.route.maker)).lines);
    }
    if (endMaker()) return;
    auto const process = static_cast<unsigned>(dice_.below(net_.processes()));
    if (dice_.oneIn(4) && !net_.makes(process)) {
        net_.crash(process);
        ++outcome_.volumes.crashes;
        return;
    }
    net_.cut(*dice_.oneOf(net_.links()));
    ++outcome_.volumes.cuts;
}

void Run::keepSomething() {
    if (!makersEnd_ || !ends_.oneIn(12)) return;
    Tree& tree = ends_.oneOf(net_.trees());
    if (ends_.oneIn(4)) return net_.keepNothing(tree);
    if (settings_.isTraced) std::printf("%s is kept\n", tree.path.c_str());
    auto const found = net_.keep(tree);
    if (!found.empty()) fail(found.starts_with("closed: ") ? found : "what is kept: " + found);
}

// Whether a maker has ended, and come back.
bool Run::endMaker() {
    if (!makersEnd_ || !ends_.oneIn(3)) return false;
    auto const process = ends_.oneOf(net_.trees()).route.maker;
    if (settings_.isTraced) std::printf("process %u ends\n", process);
    net_.crash(process);
    ++outcome_.volumes.returns;
    return true;
}

void Run::remountSomewhere() {
    auto const& links = net_.links();
    bool const areIdle =
        std::all_of(links.begin(), links.end(), [](auto const& link) { return link->isIdle(); });
    for (Tree& tree : net_.trees()) {
        tree.plan.unmountedAt(pictureOf(tree.top(tree.route.maker)).lines, !areIdle);
    }
    if (net_.remount(*dice_.oneOf(links), dice_)) ++outcome_.volumes.remounts;
}

void Run::look() {
    Tree& tree = dice_.oneOf(net_.trees());
    auto const process = static_cast<unsigned>(dice_.below(net_.processes()));
    if (process == tree.route.maker || !net_.isOnTrack(tree, process)) return;
    auto const violation = tree.watches[process].look(pictureOf(tree.top(process)), tree.plan);
    if (!violation.empty() && !settings_.areRivals) {
        fail("process " + std::to_string(process) + ": " + violation);
    }
}

void Run::step() {
    ++outcome_.volumes.steps;
    std::size_t const kind = dice_.below(60);
    if (kind == 0) return cutSomewhere();
    if (kind < 16) return changeSomewhere();
    serveSomeone();
    if (kind < 24) look();
}

void Run::needEqual(char const* when) {
    for (Tree const& tree : net_.trees()) {
        auto const source = pictureOf(tree.top(tree.route.maker));
        auto const planned = settings_.areRivals ? difference(tree.plan.sureOf(tree.plan.lines),
                                                              tree.plan.sureOf(source.lines))
                                                 : difference(tree.plan.lines, source.lines);
        if (!planned.empty()) fail(std::string(when) + ", the source: " + planned);
        for (unsigned process = 0; process < net_.processes(); ++process) {
            auto const copy = pictureOf(tree.top(process));
            auto const differs = difference(source.lines, copy.lines);
            if (differs.empty()) continue;
            fail(std::string(when) + ", " + tree.path + " in process " + std::to_string(process) +
                 ": " + differs);
        }
        for (auto const& [line, text] : source.lines) {
            for (char const character : text) digest(static_cast<unsigned char>(character));
        }
    }
}

void Run::needQuiet() {
    if (net_.settle() == 0) return fail("it never comes to rest");
    for (auto const& link : net_.links()) {
        auto const found = link->audit();
        if (!found.empty()) fail(found);
        Qor::U64 const before = link->bytes();
        for (int turn = 0; turn < 3; ++turn) {
            net_.service(*link, true, 1U << 20);
            net_.service(*link, false, 1U << 20);
        }
        if (link->bytes() != before) fail("bytes go over a link that is at rest");
    }
}

// Receipts, which a copy sends in front of what it writes, are none.
std::size_t changesOn(std::vector<Sent> const& history, std::size_t from) {
    return static_cast<std::size_t>(
        std::count_if(history.begin() + static_cast<std::ptrdiff_t>(from), history.end(),
                      [](Sent const& sent) { return sent.kind != 3; }));
}

// At rest each change goes over each link once, away from its author, and nothing comes back.
void Run::needNoEcho() {
    Tree& tree = net_.trees().front();
    auto const process = settings_.isWritable ? static_cast<unsigned>(dice_.below(net_.processes()))
                                              : tree.route.maker;
    std::vector<std::size_t> before;
    for (auto const& link : net_.links()) before.push_back(link->history().size());
    Row const row = rowAt(tree.top(process), "/entry/s1/node/s0/leaf/s0");
    if (!row.entity) return fail("a leaf that stays has gone");
    row.shape->fields[0]->put(*row.entity, 0, {++tree.plan.number, {}});
    tree.plan.set("/entry/s1/node/s0/leaf/s0/number", "#" + std::to_string(tree.plan.number) + ".",
                  tree.authors[process].number());
    net_.settle();
    for (std::size_t i = 0; i < before.size(); ++i) {
        auto const frames = changesOn(net_.links()[i]->history(), before[i]);
        bool const carries = net_.links().size() < topology_.processes || i + 1 < before.size();
        if (frames > 1 || (carries && frames == 0)) {
            fail(std::to_string(frames) + " frames for one change on link " + std::to_string(i));
        }
    }
}

// Who wrote to an entity that a process above left out, since it did not know the class, may refer
// to it still.
void Run::dropWhatWasLeftOut() {
    if (!Cast::hasLate() || !settings_.isWritable) return;
    for (Tree& tree : net_.trees()) {
        for (Author& author : tree.authors) {
            author.dropLooseReferences();
            author.isCarefulIs(true);
        }
        net_.settle();
        tree.plan.adopt(pictureOf(tree.top(tree.route.maker)).lines);
    }
}

void Run::finish() {
    for (Tree& tree : net_.trees()) {
        for (Watch& watch : tree.watches) watch.release();
    }
    if (net_.settle() == 0) return fail("it never comes to rest");
    for (Tree& tree : net_.trees()) {
        if (!settings_.isWritable) continue;
        Author& first = tree.authors[tree.route.maker];
        first.dropLooseReferences();
        // Where a cut comes in between, the source's stand.
        tree.plan.adopt(pictureOf(tree.top(tree.route.maker)).lines);
    }
    dropWhatWasLeftOut();
    needQuiet();
    needEqual("at rest");
    if (!outcome_.violation.empty() || !settings_.isWritable) return;
    // One after the other, nothing crosses: now every change counts.
    for (Tree& tree : net_.trees()) {
        for (Author& author : tree.authors) {
            author.isInStepIs(true);
            author.writeAll();
            net_.settle();
            for (int changes = 0; changes < 5; ++changes) author.change();
            net_.settle();
        }
    }
    needQuiet();
    needEqual("after the last round");
    if (outcome_.violation.empty()) needNoEcho();
    needEqual("after one change");
}

Outcome Run::run(unsigned steps) {
    outcome_.topology = topology_.name;
    for (unsigned i = 0; i < net_.processes(); ++i) {
        if (settings_.processes[i].knowledge == Knowledge::compiled) continue;
        outcome_.topology += (outcome_.volumes.described++ == 0 ? ", described: " : ", ");
        outcome_.topology += std::to_string(i);
        if (isLate(settings_.processes[i].knowledge)) outcome_.topology += " late";
    }
    if (steps == 0) steps = static_cast<unsigned>(20 + dice_.below(300));
    for (unsigned i = 0; i < steps && outcome_.violation.empty(); ++i) {
        step();
        if (!outcome_.violation.empty()) outcome_.violation += " (step " + std::to_string(i) + ")";
    }
    if (onRest_) onRest_();
    if (outcome_.violation.empty()) finish();
    for (auto const& link : net_.links()) {
        outcome_.volumes.bytes += link->bytes();
        traceOn(*link);
    }
    outcome_.volumes.learnings = net_.learnings();
    outcome_.losses = net_.losses();
    digest(outcome_.volumes.bytes);
    return outcome_;
}

}  // namespace

Outcome runScript(Request const& request) { return Run(request).run(request.steps); }

}  // namespace Sim
