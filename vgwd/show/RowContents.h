#ifndef VGWD_SHOW_ROW_CONTENTS_H
#define VGWD_SHOW_ROW_CONTENTS_H

// The attributes of one row, in ascending order of their names.

#include <vgw/OvsdbDataTypes.h>
#include <vgwd/show/ContentSink.h>

namespace Vgwd {

void tellRow(Vgw::Global const& row, ContentSink& sink);
void tellRow(Vgw::Manager const& row, ContentSink& sink);
void tellRow(Vgw::PhysicalSwitch const& row, ContentSink& sink);
void tellRow(Vgw::PhysicalPort const& row, ContentSink& sink);
void tellRow(Vgw::LogicalBindingStats const& row, ContentSink& sink);
void tellRow(Vgw::LogicalSwitch const& row, ContentSink& sink);
void tellRow(Vgw::PhysicalLocator const& row, ContentSink& sink);
void tellRow(Vgw::PhysicalLocatorSet const& row, ContentSink& sink);
void tellRow(Vgw::UcastMacsLocal const& row, ContentSink& sink);
void tellRow(Vgw::McastMacsLocal const& row, ContentSink& sink);
void tellRow(Vgw::UcastMacsRemote const& row, ContentSink& sink);
void tellRow(Vgw::McastMacsRemote const& row, ContentSink& sink);

}  // namespace Vgwd

#endif
