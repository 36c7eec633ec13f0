#include <vgwd/agent/DatabaseBooks.h>

#include <ovsdb/store/Datum.h>
#include <qor/core/Now.h>

namespace Vgwd {
namespace {

// Rows that are named; of all others only the number is told.
constexpr std::size_t mostNamed = 1000;

Qor::String8 text(std::string const& value) { return std::string_view(value); }

std::string joined(std::vector<std::string_view> const& columns) {
    std::string all;
    for (std::string_view const column : columns)
        all.append(all.empty() ? "" : ", ").append(column);
    return all;
}

}  // namespace

DatabaseBooks::DatabaseBooks(DatabaseReport::Ptr report, Ovsdb::Mirror const& mirror)
    : report_(std::move(report)), mirror_(mirror) {
    report_->sinceIs(Qor::now());
}

void DatabaseBooks::planIs(Ovsdb::MonitorPlan const& plan) {
    report_->schemaVersionIs(text(plan.version()));
    std::set<std::string> const complaints(plan.complaints().begin(), plan.complaints().end());
    for (auto at = report_->complaintIterator(); at; ++at)
        if (!complaints.contains(std::string(at.key().view()))) at.del();
    for (std::string const& complaint : complaints) report_->complaintIs(text(complaint), true);
}

void DatabaseBooks::step(std::vector<Ovsdb::RowChange> const& changes) {
    using Ovsdb::Table;
    // A locator's BFD columns are those of the tunnels that end there: it is looked at once, since
    // that is a look at all of them.
    std::set<Ovsdb::Uuid> locators;
    for (Ovsdb::RowChange const& change : changes) {
        look(change.table, change.uuid);
        if (change.table != Table::tunnel) continue;
        using Ovsdb::TunnelColumn::remote;
        if (change.before) locators.insert(Ovsdb::uuidOf(change.before.column(remote)));
        if (change.after != nullptr) locators.insert(Ovsdb::uuidOf(change.after->column(remote)));
    }
    for (Ovsdb::Uuid const& locator : locators) look(Table::physicalLocator, locator);
    report_->lostRowsIs(lost_.size());
}

void DatabaseBooks::look(Ovsdb::Table table, Ovsdb::Uuid const& uuid) {
    Place const place(table, uuid);
    auto const columns = mirror_.lost(table, uuid);
    bool const isKnown = lost_.contains(place);
    if (columns.empty()) {
        if (!isKnown) return;
        lost_.erase(place);
        return tell(place, {});
    }
    lost_.insert(place);
    tell(place, joined(columns));
}

void DatabaseBooks::tell(Place const& place, std::string const& columns) {
    std::string const row =
        std::string(Ovsdb::mirroredTable(place.first).name) + " " + place.second.text();
    if (columns.empty()) {
        report_->lostDel(text(row));
        return;
    }
    bool const hasRoom = report_->losts() < mostNamed || report_->lost(text(row)).length() != 0;
    if (hasRoom) report_->lostIs(text(row), text(columns));
}

void DatabaseBooks::lookAgain() {
    for (Place const& place : std::set(lost_)) look(place.first, place.second);
    report_->lostRowsIs(lost_.size());
}

void DatabaseBooks::inStep(std::string const& remote) { stateIs(true, remote, {}); }

void DatabaseBooks::outOfStep(std::string const& remote, std::string const& reason) {
    stateIs(false, remote, reason);
}

void DatabaseBooks::stateIs(bool inStep, std::string const& remote, std::string const& reason) {
    report_->remoteIs(text(remote));
    report_->reasonIs(text(reason));
    if (report_->inStep() == inStep) return;
    report_->inStepIs(inStep);
    report_->sinceIs(Qor::now());
}

void DatabaseBooks::taken() { report_->writtenIs(report_->written() + 1); }

void DatabaseBooks::refused(std::string const& path, std::string const& peer,
                            std::string const& reason) {
    report_->refusedPathIs(text(path));
    report_->refusedPeerIs(text(peer));
    report_->refusedReasonIs(text(reason));
    report_->refusedAtIs(Qor::now());
    report_->refusedIs(report_->refused() + 1);
}

}  // namespace Vgwd
