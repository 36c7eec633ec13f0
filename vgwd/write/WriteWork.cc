// What is done about the rows that peers have written.
#include <vgwd/write/DatabaseWriter.h>

#include <vgw/tables/McastMacsLocal.h>
#include <vgw/tables/UcastMacsLocal.h>

namespace Vgwd {

using Ovsdb::Table;
using std::chrono::milliseconds;

namespace {

// In which a new row has to have become one that can be written, and a locator that another made
// at the same time has to be seen.
constexpr milliseconds mostPatience{5000};
// Transactions under way at once.
constexpr std::size_t mostSent = 256;

// All that a transaction of ours waits for is that its row is there.
std::string wordsOf(Ovsdb::RpcError const& error) {
    return error.error == "timed out" ? "the row is gone from the database" : error.text();
}

// There may be one locator of an address, and another has made it at the same time.
bool isClash(Ovsdb::RpcError const& error) { return error.error == "constraint violation"; }

bool isOf(Table table, Qor::Entity const& row) {
    return table == Table::ucastMacsLocal
               ? dynamic_cast<Vgw::UcastMacsLocal const*>(&row) != nullptr
               : dynamic_cast<Vgw::McastMacsLocal const*>(&row) != nullptr;
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

}  // namespace

void DatabaseWriter::run() {
    std::vector<Place> due;
    auto const now = Clock::now();
    for (auto const& [place, pending] : work_)
        if (pending.isDue && !pending.isSent && now - pending.touched >= gathering)
            due.push_back(place);
    for (Place const& place : due) {
        if (!inStep_ || sent_ >= mostSent) break;
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
    if (!pending.wanted.columns.is_null())
        send(place, pending, rowUpdate(place.first, place.second, pending.wanted.columns));
    else
        work_.erase(place);
}

void DatabaseWriter::workOnMac(Place const& place, Pending& pending) {
    auto const& [table, name] = place;
    auto const row = directory(table).entry(Qor::Name(std::string_view(name)));
    if (!isInDatabase(place)) {
        if (row) return workOnNewMac(place, pending, *row);
        work_.erase(place);
        return;
    }
    pending.isDue = false;
    if (!row) return send(place, pending, rowRemoval(table, name));
    if (!pending.wanted.content) return undo(place, "the row is there already");
    std::string const lacks = macLacks(*pending.wanted.content);
    if (!lacks.empty()) return undo(place, lacks);
    send(place, pending, macUpdate(table, name, *pending.wanted.content, mirror_.database()));
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
    send(place, pending, macInsertion(table, content, mirror_.database()));
}

void DatabaseWriter::send(Place const& place, Pending& pending, nlohmann::json const& operations) {
    pending.sent = std::exchange(pending.wanted, {});
    pending.isSent = true;
    pending.makesLocators = makesLocators(operations);
    ++sent_;
    client_.transact(operations, pathOf(place) + ", " + pending.peer,
                     [this, place](Ovsdb::RpcError const* error) { handleOutcome(place, error); });
}

void DatabaseWriter::handleOutcome(Place const& place, Ovsdb::RpcError const* error) {
    --sent_;
    auto const found = work_.find(place);
    if (found == work_.end()) return;
    Pending& pending = found->second;
    pending.isSent = false;
    if (error == nullptr)
        handleTaken(place, pending);
    else if (error->kind == Ovsdb::RpcError::Kind::lost || mayBeTriedAgain(pending, *error))
        takeBack(pending);
    else
        undo(place, wordsOf(*error));
    schedule();
}

void DatabaseWriter::handleTaken(Place const& place, Pending& pending) {
    listener_.onTaken();
    bool const isNew = isLocalMac(place.first) && !isInDatabase(place);
    bool const isChanged = pending.isDue;
    if (isNew && isChanged)
        return undo(place, "it was changed while it was being written: see under its UUID");
    if (isNew) restore(place);
    if (!isChanged) work_.erase(place);
}

bool DatabaseWriter::mayBeTriedAgain(Pending& pending, Ovsdb::RpcError const& error) {
    if (!pending.makesLocators || !isClash(error)) return false;
    auto const now = Clock::now();
    if (!pending.clashed) pending.clashed = now;
    return now - *pending.clashed < mostPatience;
}

// Nobody knows whether the database has it, or it has to be made otherwise: it is written again,
// but for what was written since.
void DatabaseWriter::takeBack(Pending& pending) {
    Wanted before = std::exchange(pending.sent, {});
    if (!before.columns.is_null()) {
        if (!pending.wanted.columns.is_null()) before.columns.update(pending.wanted.columns);
        pending.wanted.columns = std::move(before.columns);
    }
    if (!pending.wanted.content) pending.wanted.content = std::move(before.content);
    if (!std::exchange(pending.isDue, true)) pending.begun = Clock::now();
}

void DatabaseWriter::undo(Place const& place, std::string const& reason) {
    Pending& pending = work_[place];
    std::string const peer = pending.peer;
    // What was written since has its own try.
    bool const goesOn = pending.isDue && isInDatabase(place) &&
                        (!pending.wanted.columns.is_null() || pending.wanted.content);
    if (!goesOn) work_.erase(place);
    restore(place);
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

// What no column of the database says.
void DatabaseWriter::resetMarks(Place const& place) {
    auto const& [table, name] = place;
    Qor::Ptr<Vgw::OvsdbDataModel> const row =
        isLocalMac(table) ? Qor::dynamicCast<Vgw::OvsdbDataModel>(
                                directory(table).entry(Qor::Name(std::string_view(name))))
                          : rowOf(mirror_.database(), table, name);
    if (!row) return;
    row->typeIs(kindOf(table));
    row->invalidAttribDelAll();
}

}  // namespace Vgwd
