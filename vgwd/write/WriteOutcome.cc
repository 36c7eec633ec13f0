// What becomes of the rows that peers have written, once the database has answered or can't any
// more.
#include <ovsdb/mirror/RowWriter.h>
#include <vgw/tables/McastMacsLocal.h>
#include <vgw/tables/UcastMacsLocal.h>
#include <vgwd/write/DatabaseWriter.h>

namespace Vgwd {

using Ovsdb::Table;
using std::chrono::milliseconds;

namespace {

// In which what another did at the same time has to be seen.
constexpr milliseconds clashPatience{5000};
// Of the connection, each while one transaction was under way.
constexpr int mostLosses = 5;
constexpr char const* changedMeanwhile =
    "it was changed while it was being written: see under its UUID";

// A transaction of ours waits for its row, and for the set of locators that it found there.
std::string wordsOf(Ovsdb::RpcError const& error, bool isThere) {
    if (error.error != "timed out") return error.text();
    return isThere ? "another keeps changing the row" : rowIsGone;
}

// There may be one locator of an address, and another has made it at the same time.
bool isClash(Ovsdb::RpcError const& error) { return error.error == "constraint violation"; }

// A server older than the member "uuid" of an insert finds it in none of its lists.
bool knowsNoUuids(Ovsdb::RpcError const& error) {
    return error.error == "syntax error" && error.details.find("'uuid'") != std::string::npos;
}

Vgw::OvsdbDataType kindOf(Table table) {
    switch (table) {
        case Table::ucastMacsLocal:
            return Vgw::OvsdbDataType::ucastMacsLocal;
        case Table::mcastMacsLocal:
            return Vgw::OvsdbDataType::mcastMacsLocal;
        case Table::physicalSwitch:
            return Vgw::OvsdbDataType::physicalSwitch;
        case Table::physicalPort:
            return Vgw::OvsdbDataType::physicalPort;
        default:
            return Vgw::OvsdbDataType::logicalBindingStats;
    }
}

Qor::Ptr<Vgw::OvsdbDataModel> rowOf(Vgw::HwVtepOvsdb const& database, Table table,
                                    std::string const& name) {
    Qor::Name const key = std::string_view(name);
    switch (table) {
        case Table::physicalSwitch:
            return database.physicalSwitchRaw(key);
        case Table::physicalPort:
            return database.physicalPort(key);
        default:
            return database.logicalBindingStats(key);
    }
}

void putMac(Vgw::UcastMacsLocal& row, MacChanges const& changes) {
    if (changes.logicalSwitch) row.logicalSwitchIs(std::string_view(*changes.logicalSwitch));
    if (changes.vtepIp) row.vtepIpIs(*changes.vtepIp);
}

void putMac(Vgw::McastMacsLocal& row, MacChanges const& changes) {
    if (changes.logicalSwitch) row.logicalSwitchIs(std::string_view(*changes.logicalSwitch));
    for (auto const& [address, isThere] : changes.vtepIps)
        if (isThere)
            row.vtepIpIs(address, true);
        else
            row.vtepIpDel(address);
}

}  // namespace

void DatabaseWriter::handleOutcome(Place const& place, Ovsdb::RpcError const* error) {
    --sent_;
    auto const found = work_.find(place);
    if (found == work_.end()) return;
    Pending& pending = found->second;
    pending.isSent = false;
    if (pending.wasLost) isLostSent_ = false;
    bool const isLost = error != nullptr && error->kind == Ovsdb::RpcError::Kind::lost;
    if (error == nullptr)
        handleTaken(place, pending);
    else if (isLost)
        handleLost(place, pending);
    else
        handleFailure(place, pending, *error);
    nextTurnIs(place);
    // Others may have waited for this one; without a connection they go on waiting.
    if (!isLost) run();
}

void DatabaseWriter::handleFailure(Place const& place, Pending& pending,
                                   Ovsdb::RpcError const& error) {
    if (error.error == "duplicate uuid" && !pending.uuid.empty())
        handleThere(place, pending, pending.uuid);
    else if (mayBeTriedAgain(place, pending, error))
        takeBack(pending);
    else
        undo(place, wordsOf(error, isInDatabase(place)));
}

void DatabaseWriter::handleTaken(Place const& place, Pending& pending) {
    listener_.onTaken();
    bool const isNew = isLocalMac(place.first) && !isInDatabase(place);
    bool const isChanged = pending.isDue;
    if (isNew && isChanged && pending.isTakenOut) return handleMade(place, pending);
    if (isNew && isChanged) return undo(place, changedMeanwhile);
    pending.sent = {};
    wasLostIs(pending, false);
    pending.clashed.reset();
    if (!isChanged) forget(place);
    // Another may have changed meanwhile what was written.
    restore(place);
}

// A row that its peer has taken out since: it goes from the database as well.
void DatabaseWriter::handleMade(Place const& place, Pending& pending) {
    Table const table = place.first;
    std::string const peer = pending.peer;
    std::string const uuid = pending.isNamed ? pending.uuid : madeRow(table, pending);
    forget(place);
    if (uuid.empty()) return listener_.onUndone(pathOf(place), peer, changedMeanwhile);
    Pending& made = touch({table, uuid}, {});
    made.isNew = false;
    made.isTakenOut = made.isAwaited = true;
    peerIs(made, peer);
    Working const working(*this);
    directory(table).entryDel(Qor::Name(std::string_view(uuid)));
}

// An insertion of which no answer came was carried out.
void DatabaseWriter::handleThere(Place const& place, Pending& pending, std::string const& uuid) {
    Table const table = place.first;
    auto const row = rowAt(place);
    auto const made = mirror_.macRow(table, *Ovsdb::Uuid::parse(uuid));
    bool const isChanged = made && (!row || macContentOf(*made) != macContentOf(*row));
    pending.isDue |= isChanged;
    handleTaken(place, pending);
}

// Nobody knows whether the database has it. What we end ourselves is no loss that it could cost.
void DatabaseWriter::handleLost(Place const& place, Pending& pending) {
    int const counted = client_.isLeaving() ? 0 : 1;
    int const alone = pending.wasLost ? pending.lossesAlone + counted : 0;
    wasLostIs(pending, true);
    pending.lossesAlone = alone;
    if (alone < mostLosses)
        takeBack(pending);
    else
        undo(place, "the connection was lost each of the " + std::to_string(mostLosses) +
                        " times that it was sent alone");
}

bool DatabaseWriter::mayBeTriedAgain(Place const& place, Pending& pending,
                                     Ovsdb::RpcError const& error) {
    if (pending.isNamed && knowsNoUuids(error)) {
        takesUuids_ = false;
        return true;
    }
    // Another has made another set of locators of the row.
    bool const isOutrun =
        error.error == "timed out" && !pending.sent.mac.vtepIps.empty() && isInDatabase(place);
    if (!isOutrun && !(pending.makesLocators && isClash(error))) return false;
    auto const now = Clock::now();
    if (!pending.clashed) pending.clashed = now;
    return now - *pending.clashed < clashPatience;
}

// It is written again, but for what was written since.
void DatabaseWriter::takeBack(Pending& pending) {
    Wanted before = std::exchange(pending.sent, {});
    before.add(pending.wanted);
    pending.wanted = std::move(before);
    if (!std::exchange(pending.isDue, true)) pending.begun = Clock::now();
}

void DatabaseWriter::undo(Place const& place, std::string const& reason) {
    Pending& pending = work_.at(place);
    std::string const peer = pending.peer;
    // What was written since has its own try.
    bool const goesOn =
        pending.isDue && isInDatabase(place) && (pending.isTakenOut || !pending.wanted.isEmpty());
    pending.sent = {};
    wasLostIs(pending, false);
    pending.clashed.reset();
    // It is not to be put into the row again.
    if (!goesOn) forget(place);
    restore(place);
    nextTurnIs(place);
    listener_.onUndone(pathOf(place), peer, reason);
}

void DatabaseWriter::restore(Place const& place) {
    auto const& [table, name] = place;
    Working const working(*this);
    Qor::Name const key = std::string_view(name);
    if (!isInDatabase(place)) {
        if (isLocalMac(table)) directory(table).entryDel(key);
        return;
    }
    resetMarks(place);
    mirror_.restore(table, *Ovsdb::Uuid::parse(name));
    if (isLocalMac(table)) directory(table).entryStateIs(key, Qor::Dir::EntryState::ready);
}

// What is on its way, and what goes then.
void DatabaseWriter::put(Table table, Ovsdb::Uuid const& uuid, Vgw::OvsdbDataModel& staged) const {
    auto const found = work_.find({table, uuid.text()});
    if (found == work_.end()) return;
    Wanted const& sent = found->second.sent;
    Wanted const& wanted = found->second.wanted;
    if (table == Table::ucastMacsLocal) {
        putMac(static_cast<Vgw::UcastMacsLocal&>(staged), sent.mac);
        return putMac(static_cast<Vgw::UcastMacsLocal&>(staged), wanted.mac);
    }
    if (table == Table::mcastMacsLocal) {
        putMac(static_cast<Vgw::McastMacsLocal&>(staged), sent.mac);
        return putMac(static_cast<Vgw::McastMacsLocal&>(staged), wanted.mac);
    }
    putColumns(staged, sent.row.columns);
    putColumns(staged, wanted.row.columns);
    putMembers(staged, sent.row.members, true);
    putMembers(staged, wanted.row.members, false);
}

Qor::Ptr<Vgw::OvsdbDataModel> DatabaseWriter::rowAt(Place const& place) const {
    auto const& [table, name] = place;
    if (!isLocalMac(table)) return rowOf(mirror_.database(), table, name);
    return Qor::dynamicCast<Vgw::OvsdbDataModel>(
        directory(table).entry(Qor::Name(std::string_view(name))));
}

// What no column of the database says. Marks that the mirror sets and takes off are left to it, so
// that none goes and comes back. A MAC row may have been taken out.
void DatabaseWriter::resetMarks(Place const& place) {
    Qor::Ptr<Vgw::OvsdbDataModel> const row =
        isLocalMac(place.first) ? mirror_.macRow(place.first, *Ovsdb::Uuid::parse(place.second))
                                : rowAt(place);
    if (!row) return;
    row->typeIs(kindOf(place.first));
    for (auto at = row->invalidAttribIterator(); at; ++at)
        if (!Ovsdb::mayBeMarked(place.first, at.key().view())) at.del();
}

}  // namespace Vgwd
