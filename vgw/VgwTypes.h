// What the agent is told to do, what it reports of itself, and the books on its OVSDB session.
//
// The classes are told in VgwTypes.model, beside this header, and made from it.
#ifndef VGW_VGW_TYPES_H
#define VGW_VGW_TYPES_H

#include <vgw/agent/CliConfig.h>
#include <vgw/agent/Config.h>
#include <vgw/agent/OvsdbSessionStatus.h>
#include <vgw/agent/RequestAccounting.h>
#include <vgw/agent/Status.h>
#include <vgw/values/CliDefaults.h>
#include <vgw/values/OvsdbLogLevel.h>
#include <vgw/values/OvsdbRequestType.h>
#include <vgw/values/SessionState.h>
#include <vgw/values/VtepListType.h>

#endif
