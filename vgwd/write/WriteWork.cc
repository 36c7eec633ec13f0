// What is done about the rows that peers have written.
#include <vgwd/write/DatabaseWriter.h>

#include <vgw/tables/McastMacsLocal.h>
#include <vgw/tables/UcastMacsLocal.h>

#include <algorithm>
#include <random>

namespace Vgwd {

using Ovsdb::Table;
using std::chrono::milliseconds;

namespace {

// In which a new row has to have become one that can be written.
constexpr milliseconds mostPatience{5000};
// Transactions under way at once.
constexpr std::size_t mostSent = 256;
// What comes within this time goes together,
constexpr milliseconds gathering{20};
// and what goes on coming, after that one.
constexpr milliseconds mostGathering{200};

// Version 4 of RFC 4122, section 4.4.
std::string newUuid() {
    std::random_device source;
    auto const draw = [&] { return static_cast<std::uint64_t>(source()) << 32 | source(); };
    std::uint64_t const high = (draw() & ~0xf000ULL) | 0x4000ULL;
    std::uint64_t const low = draw() >> 2 | 1ULL << 63;
    return Ovsdb::Uuid(high, low).text();
}

bool isOf(Table table, Qor::Entity const& row) {
    return table == Table::ucastMacsLocal
               ? dynamic_cast<Vgw::UcastMacsLocal const*>(&row) != nullptr
               : dynamic_cast<Vgw::McastMacsLocal const*>(&row) != nullptr;
}

}  // namespace

// What is written again and again is not kept waiting for its end. A row that is being made is: it
// waits for what it lacks, and for what comes with that.
DatabaseWriter::Clock::time_point DatabaseWriter::gatheredAt(Place const& place,
                                                             Pending const& pending) const {
    bool const isThere = !isLocalMac(place.first) || isInDatabase(place);
    auto const rest = pending.touched + gathering;
    return isThere ? std::min(rest, pending.begun + mostGathering) : rest;
}

// One that has an earlier turn keeps it, and is put off then if need be.
void DatabaseWriter::turnIs(Place const& place, Pending& pending, Clock::time_point at) {
    if (pending.turn && (*pending.turn)->first <= at) return;
    noTurn(pending);
    pending.turn = (pending.wasLost ? lostTurns_ : turns_).emplace(at, place);
    schedule();
}

void DatabaseWriter::noTurn(Pending& pending) {
    if (!pending.turn) return;
    (pending.wasLost ? lostTurns_ : turns_).erase(*pending.turn);
    pending.turn.reset();
}

void DatabaseWriter::wasLostIs(Pending& pending, bool wasLost) {
    noTurn(pending);
    pending.wasLost = wasLost;
    pending.lossesAlone = 0;
}

// Whose time has come; null: nobody's, or what is under way comes first. One of those that were
// under way may be why the connection was lost. Which one it is shows only where nothing else is
// under way.
DatabaseWriter::Turns* DatabaseWriter::upNow(Clock::time_point now) {
    auto const isUp = [&](Turns const& turns) {
        return !turns.empty() && turns.begin()->first <= now;
    };
    bool const isAlone = isLostSent_ || isUp(lostTurns_);
    Turns& turns = isAlone ? lostTurns_ : turns_;
    bool const isFull = sent_ >= (isAlone ? 1 : mostSent);
    return inStep_ && !isFull && isUp(turns) ? &turns : nullptr;
}

void DatabaseWriter::run() {
    auto const now = Clock::now();
    while (Turns* const turns = upNow(now)) {
        Place const place = turns->begin()->second;
        attend(place, now);
    }
    schedule();
}

// For the next turn. What is up and kept back waits for the end of a transaction, not for a time.
void DatabaseWriter::schedule() {
    if (!inStep_) return;
    auto const now = Clock::now();
    auto next = upNow(now) != nullptr ? now : Clock::time_point::max();
    for (Turns const* const turns : {&turns_, &lostTurns_})
        if (auto const at = turns->upper_bound(now); at != turns->end())
            next = std::min(next, at->first);
    if (next >= scheduled_) return;
    scheduled_ = next;
    timer_.expires_at(next);
    timer_.async_wait(tether_.tie([this](std::error_code error) {
        if (error) return;
        scheduled_ = Clock::time_point::max();
        run();
    }));
}

void DatabaseWriter::attend(Place const& place, Clock::time_point now) {
    Pending& pending = work_.at(place);
    noTurn(pending);
    // Its outcome asks for the next turn.
    if (!pending.isDue || pending.isSent) return;
    auto const gathered = gatheredAt(place, pending);
    if (gathered > now) return turnIs(place, pending, gathered);
    work(place, pending);
}

// What was written meanwhile, or is to be tried again.
void DatabaseWriter::nextTurnIs(Place const& place) {
    auto const found = work_.find(place);
    if (found == work_.end() || !found->second.isDue || found->second.isSent) return;
    turnIs(place, found->second,
           std::max(gatheredAt(place, found->second), Clock::now() + gathering));
}

void DatabaseWriter::work(Place const& place, Pending& pending) {
    if (!pending.refusal.empty()) {
        pending.isDue = false;
        return undo(place, std::exchange(pending.refusal, {}));
    }
    if (isLocalMac(place.first)) return workOnMac(place, pending);
    pending.isDue = false;
    if (!pending.wanted.row.isEmpty())
        send(place, pending, rowUpdate(place.first, place.second, pending.wanted.row));
    else
        forget(place);
}

void DatabaseWriter::workOnMac(Place const& place, Pending& pending) {
    auto const& [table, name] = place;
    auto const row = directory(table).entry(Qor::Name(std::string_view(name)));
    if (!isInDatabase(place)) {
        if (row) return workOnNewMac(place, pending, *row);
        return workOnNoMac(place, pending);
    }
    pending.isDue = false;
    if (pending.isTakenOut) return send(place, pending, rowRemoval(table, name));
    if (pending.isNew || !isMirrored(place, row.ptr()))
        return undo(place, "the row is there already");
    MacChanges const& changes = pending.wanted.mac;
    if (changes.isEmpty()) {
        forget(place);
        return restore(place);
    }
    LocatorSet const there = locatorSetOf(client_.rows(), table, name);
    std::string const lacks = macLacks(changes, there);
    if (!lacks.empty()) return undo(place, lacks);
    send(place, pending, macUpdate(table, name, changes, there, mirror_.database()));
}

// Neither the database nor the tree has the row.
void DatabaseWriter::workOnNoMac(Place const& place, Pending& pending) {
    std::string const made = pending.wasLost ? madeRow(place.first, pending) : "";
    if (!made.empty()) return handleThere(place, pending, made);
    auto const now = Clock::now();
    if (pending.isAwaited && now < pending.begun + mostPatience)
        return turnIs(place, pending, now + gathering);
    bool const isLost = !pending.isTakenOut && !pending.wanted.isEmpty();
    if (isLost) return undo(place, rowIsGone);
    bool const isCarriedOut = pending.isTakenOut && pending.wasLost && !pending.made;
    if (isCarriedOut) listener_.onTaken();
    forget(place);
}

void DatabaseWriter::workOnNewMac(Place const& place, Pending& pending, Qor::Entity& row) {
    Table const table = place.first;
    if (!isOf(table, row)) return undo(place, "it is no row of that table");
    MacContent const content = *macContentOf(row);
    std::string const lacks = macLacks(content);
    if (!lacks.empty()) {
        // The rest may be on its way.
        auto const end = pending.begun + mostPatience;
        return Clock::now() < end ? turnIs(place, pending, end) : undo(place, lacks);
    }
    pending.isDue = false;
    insertMac(place, pending, content);
}

void DatabaseWriter::insertMac(Place const& place, Pending& pending, MacContent const& content) {
    if (pending.wasLost) {
        std::string const made = madeRow(place.first, pending);
        if (!made.empty()) return handleThere(place, pending, made);
    }
    if (pending.uuid.empty() && takesUuids_) pending.uuid = newUuid();
    pending.isNamed = takesUuids_;
    pending.made = content;
    send(place, pending,
         macInsertion(place.first, content, mirror_.database(), takesUuids_ ? pending.uuid : ""));
}

// The row of the database that a transaction of which no answer came has made; empty: there is
// none. Where it could not be named, one that says the same is it.
std::string DatabaseWriter::madeRow(Table table, Pending const& pending) const {
    if (isInDatabase({table, pending.uuid})) return pending.uuid;
    if (pending.isNamed && takesUuids_) return {};
    for (auto at = directory(table).entryIteratorConst(); at; ++at) {
        std::string name(at.key().view());
        if (at.value() && isInDatabase({table, name}) && macContentOf(*at.value()) == pending.made)
            return name;
    }
    return {};
}

void DatabaseWriter::send(Place const& place, Pending& pending, nlohmann::json const& operations) {
    pending.sent = std::exchange(pending.wanted, {});
    pending.isSent = true;
    isLostSent_ |= pending.wasLost;
    pending.makesLocators = makesLocators(operations);
    ++sent_;
    client_.transact(operations, pathOf(place) + ", " + pending.peer,
                     [this, place](Ovsdb::RpcError const* error) { handleOutcome(place, error); });
}

}  // namespace Vgwd
