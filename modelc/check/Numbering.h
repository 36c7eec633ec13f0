// The ids of a class's members: ascending without gaps from the first number of its range, and
// inside the range.
//
// A value's members have 2 to 127. An entity's have 128 numbers a level: 258 to 385 directly under
// the framework's entity, 386 to 513 under such a class, and so on, so that the ids of a class and
// of its bases never meet.
#ifndef MODELC_CHECK_NUMBERING_H
#define MODELC_CHECK_NUMBERING_H

#include <cstdint>
#include <set>
#include <string>

#include <modelc/check/Context.h>

namespace Modelc {

class Numbering {
  public:
    static constexpr std::uint32_t valueFirst = 2;
    static constexpr std::uint32_t valueLast = 127;
    static constexpr std::uint32_t entityFirst = 258;
    static constexpr std::uint32_t entityStride = 128;

    Numbering(Context const& context, std::uint32_t first, std::uint32_t last)
        : context_(context), next_(first), first_(first), last_(last) {}
    static Numbering ofValue(Context const& context);
    static Numbering ofEntity(Context const& context, std::uint32_t level);

    // A new member: it takes the next number. In a class of which members could not be read, gaps
    // are let pass.
    void own(Tree::Number const& id, std::string const& name, bool gapsAllowed);
    // A member that has its id from a base.
    void inherited(Tree::Number const& id, std::string const& name, std::uint32_t expected,
                   std::string const& base);

  private:
    bool isTwice(Tree::Number const& id, std::string const& name);

    Context const& context_;
    std::uint32_t next_;
    std::uint32_t first_;
    std::uint32_t last_;
    std::set<std::uint64_t> used_;
};

}  // namespace Modelc

#endif
