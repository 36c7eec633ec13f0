#include "Schedules.h"

#include <algorithm>

namespace Ends {

std::string Schedules::run() {
    visit({});
    return found_;
}

// Whether the last step and `next` could have come the other way round, which is gone through too.
bool Schedules::isAnotherOrder(Step const& next, std::vector<Step> const& before) const {
    if (path_.empty()) return false;
    Step const& last = path_.back();
    if (last.what == What::cut || next.what == What::cut) return false;
    return next.end < last.end && std::find(before.begin(), before.end(), next) != before.end();
}

// Whether to go on. `before` is what was possible in front of the last step.
bool Schedules::visit(std::vector<Step> const& before) {
    std::vector<Step> next;
    {
        Row row(sort_, start_, limits_.ends);
        for (Step const& step : path_) row.apply(step);
        if (path_.size() < limits_.steps) next = row.possible(limits_);
        ++count_;
        std::string const fault = row.settle();
        if (!fault.empty()) {
            for (Step const& step : path_) found_ += inWords(step) + "; ";
            found_ += "then: " + fault;
            return false;
        }
    }
    return std::all_of(next.begin(), next.end(), [&](Step const& step) {
        if (isAnotherOrder(step, before)) return true;
        path_.push_back(step);
        bool const goesOn = visit(next);
        path_.pop_back();
        return goesOn;
    });
}

}  // namespace Ends
