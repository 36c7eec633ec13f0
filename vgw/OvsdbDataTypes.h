// The tables of a hardware VTEP's database: its enumerations and values, one entity class for each
// table, the container that owns the rows, and, as members of the rows, their comparison and
// copying.
//
// The classes are told in OvsdbDataTypes.model, beside this header, and made from it.
#ifndef VGW_OVSDB_DATA_TYPES_H
#define VGW_OVSDB_DATA_TYPES_H

#include <vgw/tables/BackupManager.h>
#include <vgw/tables/Global.h>
#include <vgw/tables/HwVtepOvsdb.h>
#include <vgw/tables/LogicalBindingStats.h>
#include <vgw/tables/LogicalSwitch.h>
#include <vgw/tables/Manager.h>
#include <vgw/tables/McastMacsLocal.h>
#include <vgw/tables/McastMacsRemote.h>
#include <vgw/tables/OvsdbDataModel.h>
#include <vgw/tables/PhysicalLocator.h>
#include <vgw/tables/PhysicalLocatorSet.h>
#include <vgw/tables/PhysicalPort.h>
#include <vgw/tables/PhysicalSwitch.h>
#include <vgw/tables/UcastMacsLocal.h>
#include <vgw/tables/UcastMacsRemote.h>
#include <vgw/values/EncapsulationType.h>
#include <vgw/values/MacVniPair.h>
#include <vgw/values/OvsdbDataType.h>
#include <vgw/values/PhysicalLocatorKey.h>

#endif
