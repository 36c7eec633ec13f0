// The copying of a row over another of its class. The target keeps its identity, its name, its
// parent, its type and its own marks of invalid attributes. Which attributes the source's marks
// exclude differs by class: most rows test each attribute, the MAC rows demand a source without any
// mark, and Manager and LogicalSwitch test nothing.
#include <vgw/OvsdbDataTypes.h>
#include <vgw/snapshot/RowCopy.h>

namespace Vgw {

namespace {

[[noreturn]] void refuseClone(int line, char const* banner) {
    Qor::assertionFailed("0 && \"Not implemented.\"", ovsdbDataTypesUnit, line, banner);
}

// REQUIRES: no member in the source's invalidAttrib, whatever its value
void needWhollyValid(OvsdbDataModel const& source, char const* text, int line, char const* banner) {
    Qor::assertThat(source.invalidAttribs() == 0, text, ovsdbDataTypesUnit, line, banner);
}

}  // namespace

void OvsdbDataModel::clone(OvsdbDataModel::PtrConst const&) {
    constexpr char const* banner =
        "virtual void Vgw::OvsdbDataModel::clone(const Vgw::OvsdbDataModel::PtrConst&)";
    traceClone(20, banner);
    refuseClone(21, banner);
}

void Global::clone(OvsdbDataModel::PtrConst const& rhs) {
    constexpr char const* banner =
        "virtual void Vgw::Global::clone(const Vgw::OvsdbDataModel::PtrConst&)";
    traceClone(59, banner);
    RowCopy const copy(*this, rhs, 61, banner);
    copy.mirrorUnlessInvalid<PSwitchAttr>();
    copy.mirrorUnlessInvalid<ManagerAttr>();
}

// targetIs is virtual: a class below may watch what is copied.
void Manager::clone(OvsdbDataModel::PtrConst const& rhs) {
    constexpr char const* banner =
        "virtual void Vgw::Manager::clone(const Vgw::OvsdbDataModel::PtrConst&)";
    traceClone(96, banner);
    RowCopy const copy(*this, rhs, 98, banner);
    auto const& source = copy.source();
    targetIs(source.target());
}

void PhysicalSwitch::clone(OvsdbDataModel::PtrConst const& rhs) {
    constexpr char const* banner =
        "virtual void Vgw::PhysicalSwitch::clone(const Vgw::OvsdbDataModel::PtrConst&)";
    traceClone(176, banner);
    RowCopy const copy(*this, rhs, 178, banner);
    copy.copyUnlessInvalid<DisplayNameAttr>();
    copy.copyUnlessInvalid<DescAttr>();
    copy.mirrorUnlessInvalid<PortAttr>();
    copy.mirrorUnlessInvalid<MgmtIpAttr>();
    copy.mirrorUnlessInvalid<TunnelIpAttr>();
    copy.mirrorUnlessInvalid<FaultAttr>();
}

void PhysicalPort::clone(OvsdbDataModel::PtrConst const& rhs) {
    constexpr char const* banner =
        "virtual void Vgw::PhysicalPort::clone(const Vgw::OvsdbDataModel::PtrConst&)";
    traceClone(298, banner);
    RowCopy const copy(*this, rhs, 300, banner);
    copy.copyUnlessInvalid<DisplayNameAttr>();
    copy.copyUnlessInvalid<DescAttr>();
    copy.mirrorUnlessInvalid<VlanBindingAttr>();
    copy.mirrorUnlessInvalid<VlanStatAttr>();
    copy.mirrorUnlessInvalid<FaultAttr>();
}

void LogicalBindingStats::clone(OvsdbDataModel::PtrConst const&) {
    constexpr char const* banner =
        "virtual void Vgw::LogicalBindingStats::clone(const Vgw::OvsdbDataModel::PtrConst&)";
    traceClone(349, banner);
    refuseClone(350, banner);
}

void LogicalSwitch::clone(OvsdbDataModel::PtrConst const& rhs) {
    constexpr char const* banner =
        "virtual void Vgw::LogicalSwitch::clone(const Vgw::OvsdbDataModel::PtrConst&)";
    traceClone(355, banner);
    RowCopy const copy(*this, rhs, 357, banner);
    auto const& source = copy.source();
    displayNameIs(source.displayName());
    descIs(source.desc());
    tunnelKeyIs(source.tunnelKey());
}

void UcastMacsLocal::clone(OvsdbDataModel::PtrConst const& rhs) {
    constexpr char const* banner =
        "virtual void Vgw::UcastMacsLocal::clone(const Vgw::OvsdbDataModel::PtrConst&)";
    traceClone(366, banner);
    RowCopy const copy(*this, rhs, 368, banner);
    auto const& source = copy.source();
    needWhollyValid(source, "!rhs->invalidAttribs() && \"Invalid attribs in UcastMacsLocal\"", 370,
                    banner);
    vtepIpIs(source.vtepIp());
    uuidIs(source.uuid());
    vniIs(source.vni());
}

void McastMacsLocal::clone(OvsdbDataModel::PtrConst const& rhs) {
    constexpr char const* banner =
        "virtual void Vgw::McastMacsLocal::clone(const Vgw::OvsdbDataModel::PtrConst&)";
    traceClone(379, banner);
    RowCopy const copy(*this, rhs, 381, banner);
    auto const& source = copy.source();
    needWhollyValid(source, "!rhs->invalidAttribs() && \"Invalid attribs in McastMacsLocal\"", 383,
                    banner);
    copy.mirror<VtepIpAttr>();
    physicalLocatorSetIs(source.physicalLocatorSet());
    uuidIs(source.uuid());
    vniIs(source.vni());
}

void UcastMacsRemote::clone(OvsdbDataModel::PtrConst const& rhs) {
    constexpr char const* banner =
        "virtual void Vgw::UcastMacsRemote::clone(const Vgw::OvsdbDataModel::PtrConst&)";
    traceClone(404, banner);
    RowCopy const copy(*this, rhs, 406, banner);
    auto const& source = copy.source();
    needWhollyValid(source, "!rhs->invalidAttribs() && \"Invalid attribs in UcastMacsRemote\"", 407,
                    banner);
    macIs(source.mac());
    logicalSwitchIs(source.logicalSwitch());
    physicalLocatorIs(source.physicalLocator());
    ipAddrIs(source.ipAddr());
}

void McastMacsRemote::clone(OvsdbDataModel::PtrConst const& rhs) {
    constexpr char const* banner =
        "virtual void Vgw::McastMacsRemote::clone(const Vgw::OvsdbDataModel::PtrConst&)";
    traceClone(417, banner);
    RowCopy const copy(*this, rhs, 419, banner);
    auto const& source = copy.source();
    needWhollyValid(source, "!rhs->invalidAttribs() && \"Invalid attribs in McastMacsRemote\"", 420,
                    banner);
    macIs(source.mac());
    logicalSwitchIs(source.logicalSwitch());
    physicalLocatorSetIs(source.physicalLocatorSet());
    ipAddrIs(source.ipAddr());
}

void PhysicalLocator::clone(OvsdbDataModel::PtrConst const& rhs) {
    constexpr char const* banner =
        "virtual void Vgw::PhysicalLocator::clone(const Vgw::OvsdbDataModel::PtrConst&)";
    traceClone(483, banner);
    RowCopy const copy(*this, rhs, 485, banner);
    copy.copyUnlessInvalid<KeyAttr>();
    copy.mirrorUnlessInvalid<BfdAttr>();
    copy.mirrorUnlessInvalid<BfdStatusAttr>();
    copy.addKeys<UcastMacRefAttr>();
    copy.addKeys<McastMacRefAttr>();
}

void PhysicalLocatorSet::clone(OvsdbDataModel::PtrConst const& rhs) {
    constexpr char const* banner =
        "virtual void Vgw::PhysicalLocatorSet::clone(const Vgw::OvsdbDataModel::PtrConst&)";
    traceClone(547, banner);
    RowCopy const copy(*this, rhs, 549, banner);
    copy.mirrorUnlessInvalid<LocatorAttr>();
}

}  // namespace Vgw
