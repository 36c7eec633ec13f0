#include <modelc/check/Numbering.h>

namespace Modelc {

Numbering Numbering::ofValue(Context const& context) { return {context, valueFirst, valueLast}; }

Numbering Numbering::ofEntity(Context const& context, std::uint32_t level) {
    std::uint32_t const first = entityFirst + entityStride * (level - 1);
    return {context, first, first + entityStride - 1};
}

bool Numbering::isTwice(Tree::Number const& id, std::string const& name) {
    if (used_.insert(id.value).second) return false;
    context_.report(id.at,
                    "id " + std::to_string(id.value) + " of " + quoted(name) + " is used twice",
                    next_ <= last_ ? "the next id, " + std::to_string(next_) : "an id of its own");
    return true;
}

void Numbering::own(Tree::Number const& id, std::string const& name, bool gapsAllowed) {
    std::string const shown = "id " + std::to_string(id.value) + " of " + quoted(name);
    if (isTwice(id, name)) return;
    if (id.value < first_ || id.value > last_) {
        context_.report(id.at, shown + " is outside the class's range",
                        std::to_string(first_) + " to " + std::to_string(last_));
    } else if (id.value != next_ && !gapsAllowed) {
        context_.report(id.at, shown + " breaks the numbering", std::to_string(next_));
    }
    bool const isInRange = id.value >= first_ && id.value <= last_;
    if (isInRange) next_ = static_cast<std::uint32_t>(id.value) + 1;
}

void Numbering::inherited(Tree::Number const& id, std::string const& name, std::uint32_t expected,
                          std::string const& base) {
    if (isTwice(id, name) || id.value == expected) return;
    context_.report(id.at, "id " + std::to_string(id.value) + " of " + quoted(name),
                    std::to_string(expected) + ", as " + base + " declares it");
}

}  // namespace Modelc
