#ifndef VGWD_WRITE_ROW_MEMBERS_H
#define VGWD_WRITE_ROW_MEMBERS_H

// The sets and maps of a row that may be written by key: faults, addresses of a switch, and which
// rows of statistics a port keeps. A watch hears of each member that comes, goes or changes,
// whoever did it; the same members are put into a row again when the mirror has taken them out.

#include <qor/entity/Entity.h>
#include <qor/notify/NotifieeConst.h>
#include <vgw/tables/McastMacsLocal.h>
#include <vgwd/write/RowChanges.h>

#include <functional>
#include <string>

namespace Vgwd {

struct WrittenMember {
    std::string column;
    nlohmann::json key;
    Member member;
    std::string refusal;  ///< why it can't be written; then the others mean nothing
};

using MemberHandler = std::function<void(WrittenMember const&)>;

/// Hears of the row's members until it or the row ends; null if nothing of the row is written by
/// key.
Qor::PtrInterface::NotifieeConst::Ptr watchMembers(Qor::Entity& row, MemberHandler handler);
/// Hears of each VTEP of a multicast row that comes or goes, likewise.
Qor::PtrInterface::NotifieeConst::Ptr watchVteps(
    Vgw::McastMacsLocal& row, std::function<void(Kelp::IpAddr address, bool isThere)> handler);
/// Makes the members of the row what they were changed to. `isUnderWay`: a row of statistics that
/// the changes only ask for may have come already, and then stays.
void putMembers(Qor::Entity& row, MemberChanges const& changes, bool isUnderWay);

}  // namespace Vgwd

#endif
