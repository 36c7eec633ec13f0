// The second pass of the mirror: the library's rows, out in one order and in in the other.

#include <ovsdb/mirror/Bfd.h>
#include <ovsdb/mirror/Mirror.h>
#include <ovsdb/mirror/RowWriter.h>
#include <ovsdb/mirror/Values.h>

namespace Ovsdb {

// The order in which the container is cleared, after the MAC rows.
void Mirror::remove() {
    for (MacNode* const node : macs_) macRows_.remove(*node);
    refs_.tellGone();
    references_.removeRemoteLocators();
    removeRows(Table::physicalLocatorSet);
    references_.removePhysicalLocators();
    removeRows(Table::physicalLocator);
    removeRows(Table::physicalPort);
    removeRows(Table::logicalBindingStats);
    removeRows(Table::logicalSwitch);
    references_.removePhysicalSwitches();
    removeRows(Table::physicalSwitch);
    removeRows(Table::global);
    removeRows(Table::manager);
}

void Mirror::removeRows(Table table) {
    for (RowChange const* const change : changes_[index(table)])
        if (change->after == nullptr) removeRow(*change);
}

void Mirror::removeRow(RowChange const& change) {
    Qor::Name const name = textOf(change.uuid);
    switch (change.table) {
        case Table::manager:
            return void(database_->managerDel(name));
        case Table::global:
            return void(database_->rootDel(name));
        case Table::physicalSwitch:
            return void(database_->physicalSwitchRawDel(name));
        case Table::logicalSwitch:
            return void(database_->logicalSwitchDel(name));
        case Table::logicalBindingStats:
            return void(database_->logicalBindingStatsDel(name));
        case Table::physicalPort:
            return void(database_->physicalPortDel(name));
        case Table::physicalLocator:
            graph_.locator(change.uuid).row = nullptr;
            return void(database_->physicalLocatorRawDel(name));
        case Table::physicalLocatorSet:
            return void(database_->physicalLocatorSetDel(name));
        default:
            return;
    }
}

void Mirror::add() {
    addRows(Table::manager);
    addRows(Table::global);
    addRows(Table::physicalSwitch);
    references_.addPhysicalSwitches();
    addRows(Table::logicalSwitch);
    addRows(Table::logicalBindingStats);
    addRows(Table::physicalPort);
    addRows(Table::physicalLocator);
    for (LocatorNode* const node : bfdLocators_)
        if (node->row) writeBfd(*node, plan_, store_);
    references_.addPhysicalLocators();
    addRows(Table::physicalLocatorSet);
    references_.addRemoteLocators();
    for (MacNode* const node : macs_)
        if (node->raw != nullptr) macRows_.write(*node);
    refs_.tellPresent();
}

void Mirror::addRows(Table table) {
    for (RowChange const* const change : changes_[index(table)])
        if (change->after != nullptr) addRow(*change);
}

void Mirror::addRow(RowChange const& change) {
    Qor::Name const name = textOf(change.uuid);
    Row const& raw = *change.after;
    Staging const overlay = [&](Vgw::OvsdbDataModel& staged) {
        if (overlay_ != nullptr) overlay_->put(change.table, change.uuid, staged);
    };
    switch (change.table) {
        case Table::manager:
            return write(*database_->managerIs(name), raw);
        case Table::global:
            return write(*database_->rootIs(name), raw);
        case Table::physicalSwitch:
            return write(*database_->physicalSwitchRawIs(name), raw, overlay);
        case Table::logicalSwitch:
            return write(*database_->logicalSwitchIs(name), raw);
        case Table::logicalBindingStats:
            return write(*database_->logicalBindingStatsIs(name), raw, overlay);
        case Table::physicalPort:
            return write(*database_->physicalPortIs(name), raw, overlay);
        case Table::physicalLocator: {
            LocatorNode& node = graph_.locator(change.uuid);
            node.row = database_->physicalLocatorRawIs(name);
            return write(*node.row, raw);
        }
        case Table::physicalLocatorSet:
            return write(*database_->physicalLocatorSetIs(name), raw);
        default:
            return;
    }
}

Qor::Ptr<Vgw::OvsdbDataModel> Mirror::macRow(Table table, Uuid const& uuid) const {
    auto const& nodes = graph_.macs(table);
    auto const found = nodes.find(uuid);
    return found == nodes.end() ? nullptr : found->second.row;
}

void Mirror::restore(Table table, Uuid const& uuid) {
    Row const* const raw = store_.find(table, uuid);
    if (raw == nullptr) return;
    switch (table) {
        case Table::ucastMacsLocal:
        case Table::mcastMacsLocal:
        case Table::ucastMacsRemote:
        case Table::mcastMacsRemote:
            return macRows_.restore(graph_.mac(table, uuid));
        default:
            return addRow({table, uuid, {}, raw});
    }
}

}  // namespace Ovsdb
