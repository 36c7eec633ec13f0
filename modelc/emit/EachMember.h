// What all members of a class put into one place of a file.
#ifndef MODELC_EMIT_EACHMEMBER_H
#define MODELC_EMIT_EACHMEMBER_H

#include <memory>
#include <string>
#include <vector>

namespace Modelc {

// The texts of `place` of all members, in their order, with `between` between any two; a member
// that puts nothing there is passed over.
template <typename Member>
std::string eachMember(std::vector<std::unique_ptr<Member>> const& members,
                       std::string (Member::*place)() const, std::string const& between) {
    std::string result;
    for (auto const& member : members) {
        std::string const text = (member.get()->*place)();
        if (!text.empty()) result += (result.empty() ? "" : between) + text;
    }
    return result;
}

}  // namespace Modelc

#endif
