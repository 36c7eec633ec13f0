// What all ends write: a tree at each of them, of which one sort of attribute changes.
#ifndef TESTS_PROPERTY_INTERLEAVINGS_SUBJECT_H
#define TESTS_PROPERTY_INTERLEAVINGS_SUBJECT_H

#include <qor/entity/Entity.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace Ends {

// Where a tree stands: 0 has the original, 1 its copy, 2 a copy of that.
using End = unsigned;
inline constexpr End greatestEnds = 3;

inline constexpr char const* nothing = "nothing";
// How what can't last at a copy looks: in the end there is nothing.
inline constexpr char const* lackedAbove = "what an end above does not know";

class Subject {
  public:
    virtual ~Subject() = default;

    virtual Qor::Ptr<Qor::Entity> top(End end) const = 0;
    // One of the changes that can be made, none of which is without an effect. Whether it was
    // possible.
    virtual bool change(End end, unsigned which) = 0;
    // What the tree holds.
    virtual std::string picture(End end) const = 0;
    // What an agent does for order's sake, once the end has heard of everything.
    virtual void tidyUp(End) {}
};

template <class S>
std::unique_ptr<Subject> made() {
    return std::make_unique<S>();
}

struct Sort {
    char const* name;
    unsigned changes;      // of how many sorts
    unsigned weight;       // so many steps fewer have its schedules
    bool watchesChildren;  // frames for the children go over one by one, and not with the top's
    std::function<std::unique_ptr<Subject>()> make;
    bool keepsGone = false;  // what has gone lives on, with its adapter
    // Where a mount waits for its next turn, a frame each: else it sends its whole state at once.
    Qor::AttributeId waitsAt = 0;
    // A class that some ends do not know, a bit each from the original on.
    char const* lacked = nullptr;
    unsigned lackedBy = 0;
};

std::vector<Sort> const& sorts();

}  // namespace Ends

#endif
