// All of the library: the rows, the agent's entities, and the types by name.
#ifndef VGW_VGW_H
#define VGW_VGW_H

#include <qor/generic/GenericIf.h>
#include <qor/generic/GenericList.h>
#include <vgw/OvsdbDataTypes.h>
#include <vgw/VgwTypes.h>
#include <vgw/registry/OvsdbDataTypesRegistration.h>
#include <vgw/registry/VgwTypesRegistration.h>

#endif
