#include <ovsdb/mirror/Bfd.h>

#include <string>
#include <unordered_set>

#include <ovsdb/mirror/RowWriter.h>
#include <ovsdb/store/Datum.h>
#include <qor/attrlog/MessageSize.h>

namespace Ovsdb {
namespace {

constexpr ColumnType textToText{Shape::map, AtomType::string, AtomType::string};

bool isHeld(std::string_view key) { return key.size() <= Qor::NboAttrLog::longestTextKey; }

BfdMap asHeld(std::string_view datum) {
    BfdMap map{datum};
    // A datum is at least as long as its keys.
    if (isHeld(datum)) return map;
    for (DatumItems at(textToText, datum); at.next();) map.isLost = map.isLost || !isHeld(at.key());
    return map;
}

BfdMap mapOf(LocatorNode const& locator, MonitorPlan const& plan, RowStore const& store,
             std::size_t ownColumn, std::size_t tunnelColumn) {
    if (plan.has(Table::physicalLocator, ownColumn)) {
        return asHeld(locator.raw->column(ownColumn));
    }
    std::string_view map;
    bool first = true;
    for (Uuid const& uuid : locator.tunnels) {
        Row const* const tunnel = store.find(Table::tunnel, uuid);
        if (tunnel == nullptr) continue;
        std::string_view const datum = tunnel->column(tunnelColumn);
        if (first)
            map = datum;
        else if (map != datum)
            return {{}, true};
        first = false;
    }
    return asHeld(map);
}

template <class Walk>
void removeOthers(Walk walk, std::string_view datum) {
    std::unordered_set<std::string> keys;
    if (walk)
        for (DatumItems at(textToText, datum); at.next();) keys.emplace(at.key());
    for (; walk; ++walk)
        if (!keys.contains(std::string(walk.key().view()))) walk.del();
}

}  // namespace

BfdMap bfdOf(LocatorNode const& locator, MonitorPlan const& plan, RowStore const& store) {
    return mapOf(locator, plan, store, PhysicalLocatorColumn::bfd, TunnelColumn::bfdParams);
}

BfdMap bfdStatusOf(LocatorNode const& locator, MonitorPlan const& plan, RowStore const& store) {
    return mapOf(locator, plan, store, PhysicalLocatorColumn::bfdStatus, TunnelColumn::bfdStatus);
}

// By setters and not by isEqualTo and clone: here a value may be the empty text, which comparison
// takes for an absent key and copying removes and makes anew.
void writeBfd(LocatorNode const& locator, MonitorPlan const& plan, RowStore const& store) {
    Vgw::PhysicalLocator& row = *locator.row;
    BfdMap const bfd = bfdOf(locator, plan, store);
    BfdMap const status = bfdStatusOf(locator, plan, store);
    mark(row, "bfd", bfd.isLost);
    mark(row, "bfdStatus", status.isLost);
    removeOthers(row.bfdIterator(), bfd.datum);
    removeOthers(row.bfdStatusIterator(), status.datum);
    for (DatumItems at(textToText, bfd.datum); at.next();)
        if (isHeld(at.key())) row.bfdIs(at.key(), at.value());
    for (DatumItems at(textToText, status.datum); at.next();)
        if (isHeld(at.key())) row.bfdStatusIs(at.key(), at.value());
}

}  // namespace Ovsdb
