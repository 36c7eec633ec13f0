#include "VgwShapes.h"

#include "ShapeOf.h"

#include <vgw/OvsdbDataTypesList.h>
#include <vgw/VgwTypesList.h>
#include <vgw/attrlog/BackupManager.h>
#include <vgw/attrlog/CliConfig.h>
#include <vgw/attrlog/Config.h>
#include <vgw/attrlog/Global.h>
#include <vgw/attrlog/HwVtepOvsdb.h>
#include <vgw/attrlog/LogicalBindingStats.h>
#include <vgw/attrlog/LogicalSwitch.h>
#include <vgw/attrlog/Manager.h>
#include <vgw/attrlog/McastMacsLocal.h>
#include <vgw/attrlog/McastMacsRemote.h>
#include <vgw/attrlog/OvsdbDataModel.h>
#include <vgw/attrlog/OvsdbSessionStatus.h>
#include <vgw/attrlog/PhysicalLocator.h>
#include <vgw/attrlog/PhysicalLocatorSet.h>
#include <vgw/attrlog/PhysicalPort.h>
#include <vgw/attrlog/PhysicalSwitch.h>
#include <vgw/attrlog/Status.h>
#include <vgw/attrlog/UcastMacsLocal.h>
#include <vgw/attrlog/UcastMacsRemote.h>

namespace Sim {

std::vector<Shape const*> vgwShapes(Knowledge knowledge) {
    std::vector<Shape const*> all;
    auto const add = [&]<class X>() { all.push_back(&shapeOf<X>(knowledge)); };
    Vgw::OvsdbDataTypesEntities::forEach(add);
    Vgw::VgwTypesEntities::forEach(add);
    return all;
}

}  // namespace Sim
