// A small tree of the agent's classes, as the process's root.
#ifndef TESTS_UNIT_VGWCTL_SAMPLE_TREE_H
#define TESTS_UNIT_VGWCTL_SAMPLE_TREE_H

#include <qor/tree/EntityPath.h>
#include <vgw/agent/CliConfig.h>
#include <vgw/agent/Status.h>

struct SampleTree {
    SampleTree() {
        root->entryIs(Qor::Name("cliConfig"), cli);
        root->entryIs(Qor::Name("status"), status);
        red->displayNameIs("tenant red");
        red->tunnelKeyIs(5001);
        port->vlanBindingIs(100, "red");
        port->vlanBindingIs(7, "blue");
        port->invalidAttribIs("desc", true);
        Qor::rootDirIs(root);
    }
    ~SampleTree() { Qor::rootDirIs(nullptr); }

    Qor::Dir::Ptr root = Qor::make<Qor::Dir>(Qor::Name("vgw"));
    Vgw::CliConfig::Ptr cli = Qor::make<Vgw::CliConfig>(Qor::Name("cliConfig"));
    Vgw::Status::Ptr status = Qor::make<Vgw::Status>(Qor::Name("status"));
    Vgw::HwVtepOvsdb::Ptr database = status->ovsdbIs(Qor::Name("ovsdb"));
    Vgw::LogicalSwitch::Ptr red = database->logicalSwitchIs("red");
    Vgw::PhysicalPort::Ptr port = database->physicalPortIs("one");
};

#endif
