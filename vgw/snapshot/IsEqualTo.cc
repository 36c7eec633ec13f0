// The comparison of a row with another of its class, attribute by attribute in a fixed order. The
// guards are taken from the left row. PhysicalSwitch asks for its ports under "ports", where
// copying asks under "port": agents rely on marking the two apart.
#include <vgw/OvsdbDataTypes.h>
#include <vgw/snapshot/RowComparison.h>
#include <vgw/values/Trace.h>

namespace Vgw {

namespace {

constexpr char const* function = "isEqualTo";

// A difference as the trace tells it, right value first.
template <class Left, class Right>
void traceDifference(int line, char const* what, Right const& rhs, char const* between,
                     Left const& lhs) {
    Qor::trace(traceHandle(), 6, ovsdbDataTypesUnit, line, function,
               [&](std::ostream& out) { out << what << rhs << between << lhs; });
}

void traceLengths(int line, unsigned long rhs, unsigned long lhs) {
    traceDifference(line, "Rhs len: ", rhs, " lhs len:", lhs);
}

// Whether the values of a collection are equal; tells the first that is not.
template <class A>
bool sameValues(Global const& lhs, Global const& rhs, int line) {
    auto const difference = firstDifference<A>(lhs, rhs);
    if (difference) {
        traceDifference(line, "Rhs uuid: ", difference->second, " lhs uuid: ", difference->first);
    }
    return !difference;
}

}  // namespace

// A difference in pSwitch ends in the line about the manager counts too, equal as they may be.
bool Global::isEqualTo(Global::PtrConst const& rhs) const {
    traceEntry(ovsdbDataTypesUnit, 26, function,
               "bool Vgw::Global::isEqualTo(const Vgw::Global::PtrConst&) const");
    bool pSwitchesEqual = false;
    if (pSwitchs() == rhs->pSwitchs()) {
        pSwitchesEqual = sameValues<PSwitchAttr>(*this, *rhs, 32);
    } else {
        traceLengths(38, rhs->pSwitchs(), pSwitchs());
    }
    if (pSwitchesEqual && managers() == rhs->managers()) {
        return sameValues<ManagerAttr>(*this, *rhs, 45);
    }
    traceLengths(51, rhs->managers(), managers());
    return false;
}

bool Manager::isEqualTo(Manager::PtrConst const& rhs) const {
    traceEntry(ovsdbDataTypesUnit, 90, function,
               "bool Vgw::Manager::isEqualTo(const Vgw::Manager::PtrConst&) const");
    return RowComparison(*this, *rhs).equal<TargetAttr>();
}

bool PhysicalSwitch::isEqualTo(PhysicalSwitch::PtrConst const& rhs) const {
    traceEntry(ovsdbDataTypesUnit, 104, function,
               "bool Vgw::PhysicalSwitch::isEqualTo(const Vgw::PhysicalSwitch::PtrConst&) const");
    RowComparison const rows(*this, *rhs);
    return rows.same<DisplayNameAttr>() && rows.same<DescAttr>() && rows.same<PortAttr>("ports") &&
           rows.same<MgmtIpAttr>() && rows.same<TunnelIpAttr>() && rows.same<FaultAttr>();
}

bool PhysicalPort::isEqualTo(PhysicalPort::PtrConst const& rhs) const {
    traceEntry(ovsdbDataTypesUnit, 239, function,
               "bool Vgw::PhysicalPort::isEqualTo(const Vgw::PhysicalPort::PtrConst&) const");
    RowComparison const rows(*this, *rhs);
    return rows.same<DisplayNameAttr>() && rows.same<DescAttr>() && rows.same<VlanBindingAttr>() &&
           rows.same<VlanStatAttr>() && rows.same<FaultAttr>();
}

bool PhysicalLocator::isEqualTo(PhysicalLocator::PtrConst const& rhs) const {
    traceEntry(ovsdbDataTypesUnit, 443, function,
               "bool Vgw::PhysicalLocator::isEqualTo(const Vgw::PhysicalLocator::PtrConst&) const");
    RowComparison const rows(*this, *rhs);
    return rows.same<KeyAttr>() && rows.same<BfdAttr>() && rows.same<BfdStatusAttr>();
}

bool PhysicalLocatorSet::isEqualTo(PhysicalLocatorSet::PtrConst const& rhs) const {
    traceEntry(
        ovsdbDataTypesUnit, 526, function,
        "bool Vgw::PhysicalLocatorSet::isEqualTo(const Vgw::PhysicalLocatorSet::PtrConst&) const");
    return RowComparison(*this, *rhs).same<LocatorAttr>();
}

}  // namespace Vgw
