#ifndef VGWD_WRITE_MAC_REQUEST_H
#define VGWD_WRITE_MAC_REQUEST_H

// The transactions (RFC 7047 section 4.1.3) that bring a local MAC row into the database, change or
// remove it there. A row names its VTEP by address; the database wants a row of Physical_Locator,
// or for several addresses one of Physical_Locator_Set. A locator that is there is used, one that
// is not comes into being in the same transaction.

#include <kelp/EthAddr.h>
#include <kelp/IpAddr.h>
#include <ovsdb/schema/MirroredTables.h>
#include <ovsdb/store/RowStore.h>
#include <vgw/tables/HwVtepOvsdb.h>
#include <vgwd/write/RowChanges.h>

#include <nlohmann/json.hpp>

#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace Vgwd {

/// What a local MAC row says, as far as it is written.
struct MacContent {
    Kelp::EthAddr mac;
    std::string logicalSwitch;          ///< the row's UUID as text
    std::vector<Kelp::IpAddr> vtepIps;  ///< of a unicast row one

    bool operator==(MacContent const&) const = default;
};

/// What is to become of a row that the database has.
struct MacChanges {
    std::optional<std::string> logicalSwitch;
    std::optional<Kelp::IpAddr> vtepIp;    ///< of a unicast row
    std::map<Kelp::IpAddr, bool> vtepIps;  ///< of a multicast row: there from now on, or not

    bool isEmpty() const { return !logicalSwitch && !vtepIp && vtepIps.empty(); }
    void add(MacChanges const& later);
};

/// The locators that the database has for a multicast row.
struct LocatorSet {
    std::string uuid;
    std::map<std::string, std::optional<Kelp::IpAddr>> members;  ///< by UUID; none: not IPv4

    std::set<Kelp::IpAddr> addresses() const;
};

constexpr bool isLocalMac(Ovsdb::Table table) {
    return table == Ovsdb::Table::ucastMacsLocal || table == Ovsdb::Table::mcastMacsLocal;
}

/// What the row holds; none if it is no local MAC row.
std::optional<MacContent> macContentOf(Qor::Entity const& row);
/// What it lacks to be written, in words; empty: nothing.
std::string macLacks(MacContent const& content);

/// Of no members for a unicast row, and for one that the database does not have.
LocatorSet locatorSetOf(Ovsdb::RowStore const& rows, Ovsdb::Table table, std::string const& uuid);
/// What a row would lack once it is changed.
std::string macLacks(MacChanges const& changes, LocatorSet const& there);

/// `uuid` is to be the row's (ovsdb-server(7), section 4.1.3, "uuid" of an insert); empty: the
/// server chooses.
nlohmann::json macInsertion(Ovsdb::Table table, MacContent const& content,
                            Vgw::HwVtepOvsdb const& database, std::string const& uuid);
nlohmann::json macUpdate(Ovsdb::Table table, std::string const& uuid, MacChanges const& changes,
                         LocatorSet const& there, Vgw::HwVtepOvsdb const& database);
/// Whether the transaction makes a locator. It fails where another made one of that address since.
bool makesLocators(nlohmann::json const& operations);
nlohmann::json rowRemoval(Ovsdb::Table table, std::string const& uuid);
/// Columns and members of any row. A row that is gone meanwhile fails the transaction. Rows of
/// statistics that a port's column names but by a name come into being in it.
nlohmann::json rowUpdate(Ovsdb::Table table, std::string const& uuid, RowChanges const& changes);

}  // namespace Vgwd

#endif
