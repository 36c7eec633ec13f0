// Processes and the connections between them, all in one thread. A tree is made by one process and
// mounted by others from the one that is next on the way to it; each serves its copy on.
#ifndef TESTS_SIMULATION_NET_H
#define TESTS_SIMULATION_NET_H

#include "Link.h"

#include <memory>
#include <string>
#include <vector>

namespace Sim {

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
