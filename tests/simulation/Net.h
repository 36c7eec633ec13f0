// Processes and the connections between them, all in one thread. A tree is made by one process and
// mounted by others from the one that is next on the way to it; each serves its copy on.
#ifndef TESTS_SIMULATION_NET_H
#define TESTS_SIMULATION_NET_H

#include "Author.h"
#include "Tap.h"
#include "Watch.h"

#include <qor/attrlog/session/Session.h>

#include <optional>

namespace Sim {

using Qor::NboAttrLog::Session;

// Who mounts a tree from whom: for each process the one it mounts from, itself for the maker.
struct Route {
    unsigned maker = 0;
    std::vector<unsigned> from;
};

// What a script runs on.
struct Topology {
    std::string name;
    unsigned processes = 0;
    std::vector<std::pair<unsigned, unsigned>> links;  // accepting, connecting
    std::vector<Route> trees;
    bool hasRelay = false;
};

std::vector<Topology> const& topologies();

// What a process is.
struct Process {
    Knowledge knowledge = Knowledge::compiled;
    bool takesTypes = false;  // on each connection, as one that has not yet
};

struct Settings {
    std::vector<Process> processes;
    bool isWritable = false;  // copies may be written
    bool areRivals = false;   // several authors write the same values
    bool hasCuts = true;
    bool hasLongTexts = true;
    bool holdsEntities = false;
    bool isTraced = false;  // on standard output
    Carried carried = Carried::inMemory;
    Qor::U32 ringBlocks = 8;
};

// One tree in all processes.
struct Tree {
    Route route;
    Plan plan;
    std::vector<Qor::Dir::Ptr> tops;  // by process
    std::vector<Shape const*> dirs;   // by process
    std::vector<Author> authors;      // by process, the maker's number is 0
    std::vector<Watch> watches;
    std::vector<bool> inStep;  // has had all that the maker had, since the last cut on the way
    std::vector<bool> astray;  // may hold what somebody who came back knows no more, or lack it
    Qor::Dir::Ptr kept;        // what the maker comes back with; null: nothing
    std::string path;
    Row top(unsigned process) const { return {EntityPtr(tops[process]), dirs[process]}; }
    Row keptTop() const { return {EntityPtr(kept), dirs[route.maker]}; }
};

class Link final {
  public:
    Link(unsigned accepting, unsigned connecting)
        : accepting_(accepting), connecting_(connecting) {}

    unsigned accepting() const { return accepting_; }
    unsigned connecting() const { return connecting_; }
    bool isUp() const { return accept_ != nullptr; }
    void connect(std::vector<Qor::Dir::Ptr> const& roots, std::vector<Tree> const& trees,
                 Settings const& settings);
    void cut();
    // One of its mounts is given back, and perhaps made again at once; or, if it was given back
    // before, it is made again now. Whether it has any.
    bool remount(Dice& dice);
    void mountAll();
    void roomIs(bool towardsAccepting, std::size_t bytes);
    void service(bool accepting, Qor::U64 budget);
    // Bytes that have gone over it, both ways.
    Qor::U64 bytes() const { return bytes_; }
    bool isSynced() const;
    // Whether an end has learned of a class since the last call, and mounts again what it mounts.
    bool mountsAgain();
    // Nothing is owed or under way.
    bool isIdle() const;
    std::string closed() const;
    // What must hold when nothing is under way.
    std::string audit() const;
    std::vector<Sent> const& history() const { return history_; }
    // What went over it since the last call, in words.
    std::vector<std::string> traceOn();

  private:
    // A tree that one end mounts of the other, and whether it has all of it.
    struct Mounted {
        Session* session;
        Qor::String8 path;
        Qor::Dir::Ptr copy;
        Qor::NboAttrLog::MountId id = 0;  // 0: given back
        bool isSynced = false;
        bool isThere = false;  // and the session has not given it back
    };
    // Hears of one end's mounts.
    class Hearer final : public Qor::NboAttrLog::SessionListener {
      public:
        Hearer(Link& link, Session& session) : link_(link), session_(session) {
            session.listenerIs(this);
        }
        void onSynced(Qor::NboAttrLog::MountId mount) override { link_.synced(session_, mount); }

      private:
        Link& link_;
        Session& session_;
    };

    void mount(Mounted& mounted) const;
    void synced(Session const& session, Qor::NboAttrLog::MountId mount);

    unsigned const accepting_;
    unsigned const connecting_;
    std::vector<Sent> history_;
    std::unique_ptr<Tap> acceptEnd_;
    std::unique_ptr<Tap> connectEnd_;
    std::unique_ptr<Session> accept_;
    std::unique_ptr<Session> connect_;
    std::unique_ptr<Hearer> acceptHearer_;
    std::unique_ptr<Hearer> connectHearer_;
    std::vector<Mounted> mounts_;
    bool areWritable_ = false;
    Qor::U64 bytes_ = 0;
    std::size_t traced_ = 0;
};

class Net {
  public:
    Net(Topology const& topology, Settings const& settings, Dice& dice);
    ~Net();
    Net(Net const&) = delete;
    Net& operator=(Net const&) = delete;

    std::vector<Tree>& trees() { return trees_; }
    std::vector<std::unique_ptr<Link>>& links() { return links_; }
    unsigned processes() const { return static_cast<unsigned>(roots_.size()); }

    // Unless who would serve has come back empty and is not whole again: it would serve that.
    void connect(Link& link);
    void cut(Link& link);
    // Lets one end work. Where it learns of a class, it mounts again what it mounts.
    void service(Link& link, bool accepting, Qor::U64 budget);
    // How often one has learned of a class.
    std::uint64_t learnings() const { return learnings_; }
    // Why connections ended that nobody cut.
    std::vector<std::string> const& losses() const { return losses_; }
    // What cut() does, of a tree that is mounted over it, while the connection stays. Whether there
    // is one.
    bool remount(Link& link, Dice& dice);
    // The process forgets all its copies and connections, as if it had ended and come back. A tree
    // that it makes it has as it was kept last, or begins anew.
    void crash(unsigned process);
    bool makes(unsigned process) const;
    // Has the maker come back, should it end, with the tree as it is now; or with nothing. What is
    // wrong with what is kept; empty if nothing is.
    std::string keep(Tree& tree);
    void keepNothing(Tree& tree);
    // Whether the process may be judged by what the maker holds and held, and who comes back is
    // heard all the way.
    bool isOnTrack(Tree& tree, unsigned process);
    // Whether all that the process has of the tree has come, all the way from its maker.
    bool isInStep(Tree& tree, unsigned process) const;
    // Everything over, until nothing moves. The number of rounds, 0 if it never ends.
    unsigned settle();
    Link* linkBetween(unsigned one, unsigned other) const;

  private:
    bool isWhole(unsigned process);
    void outOfStep();
    void lose(Link& link);
    std::vector<Knowledge> above(Tree const& tree, unsigned process) const;
    void comeBack(Tree& tree);

    Settings const settings_;
    std::vector<bool> isHollow_;  // has come back empty
    std::vector<Qor::Dir::Ptr> roots_;
    std::vector<Tree> trees_;
    std::vector<std::unique_ptr<Link>> links_;
    std::uint64_t learnings_ = 0;
    std::vector<std::string> losses_;
};

}  // namespace Sim

#endif
