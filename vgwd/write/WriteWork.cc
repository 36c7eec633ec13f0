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
bool DatabaseWriter::isGathered(Place const& place, Pending const& pending,
                                Clock::time_point now) const {
    if (now - pending.touched >= gathering) return true;
    bool const isThere = !isLocalMac(place.first) || isInDatabase(place);
    return isThere && now - pending.begun >= mostGathering;
}

void DatabaseWriter::run() {
    std::vector<Place> due;
    bool hasLost = false;
    auto const now = Clock::now();
    for (auto const& [place, pending] : work_) {
        bool const isReady = pending.isDue && !pending.isSent && isGathered(place, pending, now);
        if (isReady) due.push_back(place);
        hasLost |= pending.losses != 0 && (isReady || pending.isSent);
    }
    // One of those that were under way may be why the connection was lost. Which one it is shows
    // only where nothing else is under way.
    if (hasLost)
        std::erase_if(due, [this](Place const& place) { return work_.at(place).losses == 0; });
    for (Place const& place : due) {
        if (!inStep_ || sent_ >= (hasLost ? 1 : mostSent)) break;
        auto const found = work_.find(place);
        if (found != work_.end()) work(place, found->second);
    }
    schedule();
}

void DatabaseWriter::work(Place const& place, Pending& pending) {
    if (!pending.refusal.empty()) {
        pending.wanted = {};
        return undo(place, std::exchange(pending.refusal, {}));
    }
    if (isLocalMac(place.first)) return workOnMac(place, pending);
    pending.isDue = false;
    if (!pending.wanted.row.isEmpty())
        send(place, pending, rowUpdate(place.first, place.second, pending.wanted.row));
    else
        work_.erase(place);
}

void DatabaseWriter::workOnMac(Place const& place, Pending& pending) {
    auto const& [table, name] = place;
    auto const row = directory(table).entry(Qor::Name(std::string_view(name)));
    if (!isInDatabase(place)) {
        if (row) return workOnNewMac(place, pending, *row);
        std::string const made = pending.losses != 0 ? madeRow(table, pending) : "";
        if (!made.empty()) return handleThere(place, pending, made);
        work_.erase(place);
        return;
    }
    pending.isDue = false;
    if (!row) return send(place, pending, rowRemoval(table, name));
    if (mirror_.macRow(table, *Ovsdb::Uuid::parse(name)).ptr() != row.ptr())
        return undo(place, "the row is there already");
    MacChanges const& changes = pending.wanted.mac;
    if (changes.isEmpty()) {
        work_.erase(place);
        return;
    }
    LocatorSet const there = locatorSetOf(client_.rows(), table, name);
    std::string const lacks = macLacks(changes, there);
    if (!lacks.empty()) return undo(place, lacks);
    send(place, pending, macUpdate(table, name, changes, there, mirror_.database()));
}

void DatabaseWriter::workOnNewMac(Place const& place, Pending& pending, Qor::Entity& row) {
    Table const table = place.first;
    if (!isOf(table, row)) return undo(place, "it is no row of that table");
    MacContent const content = *macContentOf(row);
    std::string const lacks = macLacks(content);
    if (!lacks.empty()) {
        // The rest may be on its way.
        if (Clock::now() - pending.begun >= mostPatience) undo(place, lacks);
        return;
    }
    pending.isDue = false;
    insertMac(place, pending, content);
}

void DatabaseWriter::insertMac(Place const& place, Pending& pending, MacContent const& content) {
    if (pending.losses != 0) {
        std::string const made = madeRow(place.first, pending);
        if (!made.empty()) return handleThere(place, pending, made);
    }
    if (pending.uuid.empty() && takesUuids_) pending.uuid = newUuid();
    pending.made = content;
    send(place, pending,
         macInsertion(place.first, content, mirror_.database(), takesUuids_ ? pending.uuid : ""));
}

// The row of the database that a transaction of which no answer came has made; empty: there is
// none. Where it could not be named, one that says the same is it.
std::string DatabaseWriter::madeRow(Table table, Pending const& pending) const {
    if (isInDatabase({table, pending.uuid})) return pending.uuid;
    if (takesUuids_) return {};
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
    pending.makesLocators = makesLocators(operations);
    ++sent_;
    client_.transact(operations, pathOf(place) + ", " + pending.peer,
                     [this, place](Ovsdb::RpcError const* error) { handleOutcome(place, error); });
}

}  // namespace Vgwd
