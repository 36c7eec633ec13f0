// Keeps an eye on one copy while a script runs, and tells what must never happen there: an entity
// or a key that goes, or an entity that is another, although the source has not removed it; a value
// that goes back; a text that nobody wrote.
#ifndef TESTS_SIMULATION_WATCH_H
#define TESTS_SIMULATION_WATCH_H

#include "Plan.h"

#include <set>

namespace Sim {

class Watch {
  public:
    explicit Watch(bool holdsEntities) : holdsEntities_(holdsEntities) {}

    // Looks at the copy. The first violation in words; empty if there is none.
    std::string look(Picture const& now, Plan const& plan);
    // Lets go of the entities that it has kept.
    void release() { held_.clear(); }

  private:
    std::string lookAtRow(std::string const& path, Row const& row, Plan const& plan);
    void noteClass(std::string const& path, Row const& row);
    std::string lookAtLines(Lines const& lines, Plan const& plan);
    std::string gone(std::string const& path, char const* how, Plan const& plan);

    bool holdsEntities_;
    std::map<std::string, Qor::Entity const*> entities_;
    std::map<std::string, EntityPtr> held_;
    std::map<std::string, std::string> titles_;
    std::map<std::string, unsigned> goings_;
    std::set<std::string> lines_;
    std::map<std::string, std::uint64_t> numbers_;
};

// Whether a text is one that an author makes: its number, a dot, and one letter all along.
bool isWhole(std::string const& text);

}  // namespace Sim

#endif
