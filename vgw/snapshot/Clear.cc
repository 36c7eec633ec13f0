// The emptying of a database that lives on. References go before what they refer to; the manager
// rows stay.
#include <vgw/OvsdbDataTypes.h>
#include <vgw/values/Trace.h>

namespace Vgw {

void HwVtepOvsdb::clear() {
    traceEntry(ovsdbDataTypesUnit, 566, "clear", "void Vgw::HwVtepOvsdb::clear()");
    Ptr const held(this);  // a handler may let go of the database
    remoteLocatorDelAll();
    physicalLocatorSetDelAll();
    physicalLocatorDelAll();
    physicalLocatorRawDelAll();
    physicalPortDelAll();
    logicalBindingStatsDelAll();
    logicalSwitchDelAll();
    physicalSwitchDelAll();
    physicalSwitchRawDelAll();
    rootDelAll();
}

}  // namespace Vgw
