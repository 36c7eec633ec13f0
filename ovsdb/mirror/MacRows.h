#ifndef OVSDB_MIRROR_MAC_ROWS_H
#define OVSDB_MIRROR_MAC_ROWS_H

// The rows of the four MAC tables. They stand outside the container, each table in a directory of
// its own, under the row's uuid: an address may occur in several rows, even of one switch.
//
// `vni` and `vtepIp` of local rows, and the pairs that a row gives to locators, depend on its
// logical switch and its locators: whoever changes those writes the rows anew. A text that is no
// address makes no row.

#include <ovsdb/mirror/Graph.h>
#include <ovsdb/mirror/MacRefs.h>
#include <ovsdb/mirror/Overlay.h>
#include <qor/tree/Dir.h>

#include <array>

namespace Ovsdb {

// One directory a table.
struct MacDirectories {
    Qor::Dir::Ptr ucastMacsLocal;
    Qor::Dir::Ptr mcastMacsLocal;
    Qor::Dir::Ptr ucastMacsRemote;
    Qor::Dir::Ptr mcastMacsRemote;

    Qor::Dir& of(Table table) const;
};

class MacRows {
  public:
    explicit MacRows(MacDirectories directories) : directories_(std::move(directories)) {}

    /// Which pairs the row gives to which locators, from now on.
    void recount(MacNode& node, MacRefs& refs) const;
    /// Takes the row out if it is gone, has no address any more or, a local one, has another.
    void remove(MacNode& node) const;
    /// Makes the row if need be, and brings it up to date. REQUIRES: node.raw.
    void write(MacNode& node) const;

    /// The same for one that somebody else may have changed or taken out.
    void restore(MacNode& node) const;

    /// What local rows hold beside the database; null: nothing.
    void overlayIs(Overlay const* overlay) { overlay_ = overlay; }

    MacDirectories const& directories() const { return directories_; }

  private:
    void show(MacNode const& node) const;
    template <class X>
    void writeLocal(MacNode const& node) const;

    MacDirectories directories_;
    Overlay const* overlay_ = nullptr;
};

}  // namespace Ovsdb

#endif
