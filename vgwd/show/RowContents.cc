#include <vgwd/show/RowContents.h>

#include <algorithm>

namespace Vgwd {
namespace {

Cell cellOf(Qor::String8 const& text) { return text.view(); }
Cell cellOf(Kelp::IpAddr address) { return address.stringValue().view(); }
Cell cellOf(Kelp::EthAddr const& address) { return address.stringValue().view(); }
Cell cellOf(Vxlan::Vni vni) { return std::uint64_t{vni.value()}; }
Cell cellOf(std::uint64_t number) { return number; }

// The members of a set whose flag holds.
template <class Walk>
void tellSet(std::string_view name, Walk walk, ContentSink& sink) {
    std::vector<decltype(walk.key())> keys;
    for (; walk; ++walk)
        if (walk.value()) keys.push_back(walk.key());
    std::sort(keys.begin(), keys.end());
    std::vector<Cell> cells;
    cells.reserve(keys.size());
    for (auto const& key : keys) cells.push_back(cellOf(key));
    sink.list(name, cells);
}

template <class Walk>
void tellMap(std::string_view name, Walk walk, ContentSink& sink) {
    std::vector<std::pair<decltype(walk.key()), Qor::String8>> entries;
    for (; walk; ++walk) entries.emplace_back(walk.key(), walk.value());
    std::sort(entries.begin(), entries.end());
    std::vector<CellPair> cells;
    cells.reserve(entries.size());
    for (auto const& [key, value] : entries) cells.emplace_back(cellOf(key), cellOf(value));
    sink.pairs(name, cells);
}

template <class Walk>
void tellMacRefs(std::string_view name, Walk walk, ContentSink& sink) {
    std::vector<Vgw::MacVniPair> pairs;
    for (; walk; ++walk)
        if (walk.value()) pairs.push_back(walk.key());
    std::sort(pairs.begin(), pairs.end());
    std::vector<CellPair> cells;
    cells.reserve(pairs.size());
    for (Vgw::MacVniPair const& pair : pairs)
        cells.emplace_back(cellOf(pair.mac()), cellOf(pair.vni()));
    sink.pairs(name, cells);
}

void tellMarks(Vgw::OvsdbDataModel const& row, ContentSink& sink) {
    tellSet("invalidAttrib", row.invalidAttribIteratorConst(), sink);
}

}  // namespace

void tellRow(Vgw::Global const& row, ContentSink& sink) {
    tellMarks(row, sink);
    tellSet("manager", row.managerIteratorConst(), sink);
    tellSet("pSwitch", row.pSwitchIteratorConst(), sink);
}

void tellRow(Vgw::Manager const& row, ContentSink& sink) {
    tellMarks(row, sink);
    sink.value("target", cellOf(row.target()));
}

void tellRow(Vgw::PhysicalSwitch const& row, ContentSink& sink) {
    sink.value("desc", cellOf(row.desc()));
    sink.value("displayName", cellOf(row.displayName()));
    tellSet("fault", row.faultIteratorConst(), sink);
    tellMarks(row, sink);
    tellSet("mgmtIp", row.mgmtIpIteratorConst(), sink);
    tellSet("port", row.portIteratorConst(), sink);
    tellSet("tunnelIp", row.tunnelIpIteratorConst(), sink);
}

void tellRow(Vgw::PhysicalPort const& row, ContentSink& sink) {
    sink.value("desc", cellOf(row.desc()));
    sink.value("displayName", cellOf(row.displayName()));
    tellSet("fault", row.faultIteratorConst(), sink);
    tellMarks(row, sink);
    tellMap("vlanBinding", row.vlanBindingIteratorConst(), sink);
    tellMap("vlanStat", row.vlanStatIteratorConst(), sink);
}

void tellRow(Vgw::LogicalBindingStats const& row, ContentSink& sink) {
    sink.value("inBytes", cellOf(row.inBytes()));
    sink.value("inPackets", cellOf(row.inPackets()));
    tellMarks(row, sink);
    sink.value("outBytes", cellOf(row.outBytes()));
    sink.value("outPackets", cellOf(row.outPackets()));
}

void tellRow(Vgw::LogicalSwitch const& row, ContentSink& sink) {
    sink.value("desc", cellOf(row.desc()));
    sink.value("displayName", cellOf(row.displayName()));
    tellMarks(row, sink);
    sink.value("tunnelKey", cellOf(std::uint64_t{row.tunnelKey()}));
}

void tellRow(Vgw::PhysicalLocator const& row, ContentSink& sink) {
    tellMap("bfd", row.bfdIteratorConst(), sink);
    tellMap("bfdStatus", row.bfdStatusIteratorConst(), sink);
    tellMarks(row, sink);
    sink.begin("key");
    sink.value("dstIp", cellOf(row.key().dstIp()));
    sink.value("encapType", cellOf(Vgw::stringValue(row.key().encapType())));
    sink.end();
    tellMacRefs("mcastMacRef", row.mcastMacRefIteratorConst(), sink);
    tellMacRefs("ucastMacRef", row.ucastMacRefIteratorConst(), sink);
}

void tellRow(Vgw::PhysicalLocatorSet const& row, ContentSink& sink) {
    tellMarks(row, sink);
    tellSet("locator", row.locatorIteratorConst(), sink);
}

void tellRow(Vgw::UcastMacsLocal const& row, ContentSink& sink) {
    sink.value("logicalSwitch", cellOf(row.logicalSwitch()));
    sink.value("macAddr", cellOf(row.macAddr()));
    sink.value("uuid", cellOf(row.uuid()));
    sink.value("vni", cellOf(row.vni()));
    sink.value("vtepIp", cellOf(row.vtepIp()));
}

void tellRow(Vgw::McastMacsLocal const& row, ContentSink& sink) {
    sink.value("logicalSwitch", cellOf(row.logicalSwitch()));
    sink.value("macAddr", cellOf(row.macAddr()));
    sink.value("physicalLocatorSet", cellOf(row.physicalLocatorSet()));
    sink.value("uuid", cellOf(row.uuid()));
    sink.value("vni", cellOf(row.vni()));
    tellSet("vtepIp", row.vtepIpIteratorConst(), sink);
}

void tellRow(Vgw::UcastMacsRemote const& row, ContentSink& sink) {
    sink.value("ipAddr", cellOf(row.ipAddr()));
    sink.value("logicalSwitch", cellOf(row.logicalSwitch()));
    sink.value("mac", cellOf(row.mac()));
    sink.value("physicalLocator", cellOf(row.physicalLocator()));
}

void tellRow(Vgw::McastMacsRemote const& row, ContentSink& sink) {
    sink.value("ipAddr", cellOf(row.ipAddr()));
    sink.value("logicalSwitch", cellOf(row.logicalSwitch()));
    sink.value("mac", cellOf(row.mac()));
    sink.value("physicalLocatorSet", cellOf(row.physicalLocatorSet()));
}

}  // namespace Vgwd
