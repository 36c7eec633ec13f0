#include <vgwd/write/DatabaseWriter.h>

#include <qor/core/Format.h>
#include <vgw/tables/McastMacsLocal.h>
#include <vgw/tables/UcastMacsLocal.h>

#include <cstdlib>

namespace Vgwd {

using Ovsdb::Table;

namespace {

// Rows of which watches are kept before those are looked for that have ended.
constexpr std::size_t leastSwept = 64;

// What the row says; a peer may have put anything into the directory.
Qor::String8 uuidOf(Qor::Entity const& row) {
    if (auto const* const unicast = dynamic_cast<Vgw::UcastMacsLocal const*>(&row))
        return unicast->uuid();
    auto const* const multicast = dynamic_cast<Vgw::McastMacsLocal const*>(&row);
    return multicast != nullptr ? multicast->uuid() : Qor::String8();
}

bool isVtepIp(Table table, Qor::AttributeId attribute) {
    return attribute == (table == Table::ucastMacsLocal ? Vgw::UcastMacsLocal::VtepIpAttr::id
                                                        : Vgw::McastMacsLocal::VtepIpAttr::id);
}

bool isLogicalSwitch(Table table, Qor::AttributeId attribute) {
    return attribute == (table == Table::ucastMacsLocal
                             ? Vgw::UcastMacsLocal::LogicalSwitchAttr::id
                             : Vgw::McastMacsLocal::LogicalSwitchAttr::id);
}

// The row as the database and what is known to be written have it, beside what it is.
std::map<Kelp::IpAddr, bool> differenceOf(LocatorSet const& there, MacChanges const& known,
                                          Vgw::McastMacsLocal const& row) {
    std::map<Kelp::IpAddr, bool> before;
    for (Kelp::IpAddr const address : there.addresses()) before[address] = true;
    for (auto const& [address, isThere] : known.vtepIps) before[address] = isThere;
    std::map<Kelp::IpAddr, bool> changed;
    for (auto const& [address, isThere] : before)
        if (row.vtepIp(address) != isThere) changed[address] = !isThere;
    for (auto at = row.vtepIpIteratorConst(); at; ++at)
        if (at.value() && !before.contains(at.key())) changed[at.key()] = true;
    return changed;
}

}  // namespace

class DatabaseWriter::DirectoryWatch final : public Qor::Dir::NotifieeConst {
  public:
    DirectoryWatch(DatabaseWriter& writer, Table table) : writer_(writer), table_(table) {}
    void onEntry(Qor::Name name) override { writer_.handleEntry(table_, name); }

  private:
    DatabaseWriter& writer_;
    Table const table_;
};

DatabaseWriter::DatabaseWriter(asio::io_context& loop, Ovsdb::Client& client, Ovsdb::Mirror& mirror,
                               WriteListener& listener)
    : client_(client), mirror_(mirror), listener_(listener), timer_(loop) {
    for (Table const table : {Table::ucastMacsLocal, Table::mcastMacsLocal}) {
        auto const watch = Qor::make<DirectoryWatch>(*this, table);
        watch->notifierIs(Qor::Dir::PtrConst(&directory(table)));
        watches_[table] = watch;
    }
    mirror_.overlayIs(static_cast<Ovsdb::Overlay*>(this));
}

DatabaseWriter::~DatabaseWriter() {
    mirror_.overlayIs(nullptr);
    for (auto const& [table, watch] : watches_) watch->notifierIs(nullptr);
    for (auto const& [place, watch] : rowWatches_) watch->notifierIs(nullptr);
}

void DatabaseWriter::stop() { timer_.cancel(); }

Qor::Dir& DatabaseWriter::directory(Table table) const { return mirror_.directories().of(table); }

bool DatabaseWriter::open(Qor::Entity& entity) {
    for (Table const table : {Table::ucastMacsLocal, Table::mcastMacsLocal})
        if (&entity == &directory(table) || entity.qorParent() == &directory(table)) return true;
    auto const table = writableTable(entity);
    if (!table || entity.qorParent() != &mirror_.database()) return false;
    if (rowWatches_.size() >= sweepWatches_) {
        std::erase_if(rowWatches_, [](auto const& watch) { return !watch.second->qorNotifier(); });
        sweepWatches_ = 2 * rowWatches_.size() + leastSwept;
    }
    Place const place(*table, std::string(entity.qorName().view()));
    auto const found = rowWatches_.find(place);
    if (found != rowWatches_.end() && found->second->qorNotifier() == &entity) return true;
    auto const watch = watchMembers(
        entity, [this, place](WrittenMember const& written) { handleMember(place, written); });
    if (watch) rowWatches_[place] = watch;
    return true;
}

void DatabaseWriter::handleWritten(std::string const& peer, Qor::Entity& entity,
                                   Qor::AttributeId attribute) {
    for (Place const& place : std::exchange(unsigned_, {}))
        if (work_.contains(place)) touch(place, peer);
    for (Table const table : {Table::ucastMacsLocal, Table::mcastMacsLocal})
        if (entity.qorParent() == &directory(table))
            return handleMacWritten(peer, table, entity, std::abs(attribute));
    auto const table = writableTable(entity);
    if (table) handleRowWritten(peer, *table, entity, std::abs(attribute));
}

void DatabaseWriter::handleEntry(Table table, Qor::Name const& name) {
    Place const place(table, std::string(name.view()));
    noteMade(place);
    if (working_ != 0) return;
    auto const found = work_.find(place);
    bool const isUnderWay = found != work_.end() && (found->second.isSent || found->second.wasLost);
    // It came and went before the database heard of it.
    if (!isUnderWay && !directory(table).entry(name) && !isInDatabase(place)) return forget(place);
    unsigned_.push_back(place);
    touch(place, {}).isTakenOut = !directory(table).entry(name);
}

// Which row a peer has made there, or none any more.
void DatabaseWriter::noteMade(Place const& place) {
    auto const before = madeAt_.find(place);
    if (before != madeAt_.end()) {
        made_.erase(before->second);
        madeAt_.erase(before);
    }
    auto const row = directory(place.first).entry(Qor::Name(std::string_view(place.second)));
    if (!row || working_ != 0) return;
    madeAt_[place] = row.ptr();
    made_[row.ptr()] = place;
}

void DatabaseWriter::handleMember(Place const& place, WrittenMember const& written) {
    if (working_ != 0) return;
    Pending& pending = touch(place, {});
    if (written.refusal.empty())
        pending.wanted.row.members[written.column][written.key] = written.member;
    else
        pending.refusal = written.refusal;
}

void DatabaseWriter::handleMacWritten(std::string const& peer, Table table, Qor::Entity& row,
                                      Qor::AttributeId attribute) {
    Place const place(table, nameOf(table, row));
    Pending& pending = touch(place, peer);
    if (!isInDatabase(place)) return;
    auto* const unicast = dynamic_cast<Vgw::UcastMacsLocal*>(&row);
    auto* const multicast = dynamic_cast<Vgw::McastMacsLocal*>(&row);
    if (!isMirrored(place, &row))
        pending.refusal = "the row is there already";
    else if (isLogicalSwitch(table, attribute))
        pending.wanted.mac.logicalSwitch = std::string(
            (unicast != nullptr ? unicast->logicalSwitch() : multicast->logicalSwitch()).view());
    else if (!isVtepIp(table, attribute))
        pending.refusal =
            std::string(row.attributeString(attribute).view()) + " may not be written";
    else if (unicast != nullptr)
        pending.wanted.mac.vtepIp = unicast->vtepIp();
    else
        noteVteps(place, pending, *multicast);
}

// What has changed is found out once; from then on each change is heard by its address.
void DatabaseWriter::noteVteps(Place const& place, Pending& pending, Vgw::McastMacsLocal& row) {
    if (pending.vteps && pending.vteps->qorNotifier() == &row) return;
    MacChanges known = pending.sent.mac;
    known.add(pending.wanted.mac);
    MacChanges changes;
    changes.vtepIps =
        differenceOf(locatorSetOf(client_.rows(), place.first, place.second), known, row);
    pending.wanted.mac.add(changes);
    pending.vteps = watchVteps(row, [this, place](Kelp::IpAddr address, bool isThere) {
        handleVtep(place, address, isThere);
    });
}

void DatabaseWriter::handleVtep(Place const& place, Kelp::IpAddr address, bool isThere) {
    if (working_ == 0) touch(place, {}).wanted.mac.vtepIps[address] = isThere;
}

void DatabaseWriter::handleRowWritten(std::string const& peer, Table table, Qor::Entity& row,
                                      Qor::AttributeId attribute) {
    Pending& pending = touch({table, std::string(row.qorName().view())}, peer);
    WrittenValue const written = writtenValue(row, attribute);
    if (!written.refusal.empty())
        pending.refusal = written.refusal;
    else if (!written.column.empty())
        pending.wanted.row.columns[written.column] = written.value;
}

DatabaseWriter::Pending& DatabaseWriter::touch(Place const& place, std::string const& peer) {
    auto const [found, isFirst] = work_.try_emplace(place);
    Pending& pending = found->second;
    if (isFirst) pending.isNew = isLocalMac(place.first) && !isInDatabase(place);
    pending.touched = Clock::now();
    if (!std::exchange(pending.isDue, true)) pending.begun = pending.touched;
    if (!peer.empty()) peerIs(pending, peer);
    turnIs(place, pending, gatheredAt(place, pending));
    return pending;
}

void DatabaseWriter::peerIs(Pending& pending, std::string const& peer) {
    if (pending.peer == peer) return;
    if (pending.isNew && !peer.empty()) ++newRows_[peer];
    auto const before = newRows_.find(pending.peer);
    if (pending.isNew && before != newRows_.end() && --before->second == 0) newRows_.erase(before);
    pending.peer = peer;
}

std::size_t DatabaseWriter::newRowsOf(std::string const& peer) const {
    auto const found = newRows_.find(peer);
    return found == newRows_.end() ? 0 : found->second;
}

void DatabaseWriter::forget(Place const& place) {
    auto const found = work_.find(place);
    if (found == work_.end()) return;
    noTurn(found->second);
    peerIs(found->second, {});
    work_.erase(found);
}

bool DatabaseWriter::covers(Table table, Ovsdb::Uuid const& uuid) const {
    return !work_.empty() && work_.contains({table, uuid.text()});
}

bool DatabaseWriter::hides(Table table, Ovsdb::Uuid const& uuid) const {
    auto const found = work_.empty() ? work_.end() : work_.find({table, uuid.text()});
    return found != work_.end() && found->second.isTakenOut;
}

void DatabaseWriter::inStepIs(bool inStep) {
    if (inStep && !inStep_) takesUuids_ = true;
    inStep_ = inStep;
    run();
}

bool DatabaseWriter::isInDatabase(Place const& place) const {
    auto const uuid = Ovsdb::Uuid::parse(place.second);
    // In another spelling it is a writer's name, and no row stands under it.
    return uuid && uuid->text() == place.second &&
           client_.rows().find(place.first, *uuid) != nullptr;
}

// A peer may have put another one under its UUID.
bool DatabaseWriter::isMirrored(Place const& place, Qor::Entity const* row) const {
    return mirror_.macRow(place.first, *Ovsdb::Uuid::parse(place.second)).ptr() == row;
}

// A row of the mirror stands under its UUID, as long as nobody writes over that, and one that a
// peer makes under the name that was told of it.
std::string DatabaseWriter::nameOf(Table table, Qor::Entity const& row) const {
    Qor::Dir const& rows = directory(table);
    auto const made = made_.find(&row);
    std::string const told = made == made_.end() ? std::string() : made->second.second;
    for (Qor::Name const& name : {Qor::Name(uuidOf(row)), Qor::Name(std::string_view(told))})
        if (rows.entry(name).ptr() == &row) return std::string(name.view());
    for (auto at = rows.entryIteratorConst(); at; ++at)
        if (at.value().ptr() == &row) return std::string(at.key().view());
    return {};
}

std::string DatabaseWriter::pathOf(Place const& place) const {
    auto const& [table, name] = place;
    if (isLocalMac(table)) return std::string(directory(table).uriPath().view()) + "/" + name;
    std::string const rows(mirror_.database().uriPath().view());
    switch (table) {
        case Table::physicalSwitch:
            return rows + "/physicalSwitchRaw/" + name;
        case Table::physicalPort:
            return rows + "/physicalPort/" + name;
        default:
            return rows + "/logicalBindingStats/" + name;
    }
}

}  // namespace Vgwd
