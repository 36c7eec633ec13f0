#ifndef VGWD_WRITE_PENDING_WRITE_H
#define VGWD_WRITE_PENDING_WRITE_H

// What is to be done about one row, and when: rows wait in a queue for their turn, so that nobody
// goes through those whose time has not come.

#include <ovsdb/schema/MirroredTables.h>
#include <qor/notify/NotifieeConst.h>
#include <vgwd/write/MacRequest.h>
#include <vgwd/write/RowChanges.h>

#include <chrono>
#include <map>
#include <optional>
#include <string>
#include <utility>

namespace Vgwd {

/// Why a write to a row is undone that has come to nothing.
constexpr char const* rowIsGone = "the row is gone from the database";

/// A table, and the row's name there.
using Place = std::pair<Ovsdb::Table, std::string>;

/// What is to be done about a row that the database has.
struct Wanted {
    RowChanges row;
    MacChanges mac;

    bool isEmpty() const { return row.isEmpty() && mac.isEmpty(); }
    void add(Wanted const& later) {
        row.add(later.row);
        mac.add(later.mac);
    }
};

struct PendingWrite {
    using Clock = std::chrono::steady_clock;
    using Turns = std::multimap<Clock::time_point, Place>;

    std::string peer;  ///< empty: not known yet
    Wanted wanted;
    Wanted sent;                     ///< by the transaction that is under way
    std::optional<MacContent> made;  ///< as which a new MAC row was sent,
    std::string uuid;                ///< and under which UUID,
    bool isNamed = false;            ///< if the server was told that
    std::string refusal;             ///< what was written may not be
    /// Hears of a multicast row's VTEPs, from the first write of them on.
    Qor::PtrInterface::NotifieeConst::Ptr vteps;
    Clock::time_point begun;
    Clock::time_point touched;
    std::optional<Turns::iterator> turn;  ///< in one of the queues
    bool isNew = false;                   ///< a MAC row that the database does not have
    bool isDue = false;
    bool isTakenOut = false;                   ///< a MAC row, by a peer
    bool isAwaited = false;                    ///< it was just made, and is about to be seen
    bool isSent = false;                       ///< a transaction is under way
    bool makesLocators = false;                ///< it does
    std::optional<Clock::time_point> clashed;  ///< first, with what another did
    bool wasLost = false;                      ///< the connection, while it was under way
    int lossesAlone = 0;                       ///< and while nothing else was
};

}  // namespace Vgwd

#endif
