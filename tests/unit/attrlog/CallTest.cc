// Operations that one end calls at the other, by their names.
#include <qor/attrlog/dir/DirAdapter.h>

#include <qor/registry/QorType.h>
#include <tests/support/SessionPair.h>
#include <vgw/agent/CliConfig.h>
#include <vgw/agent/Status.h>

#include <gtest/gtest.h>

#include <memory>

namespace {

using Qor::make;
using Qor::Name;
using Qor::String8;
using Qor::NboAttrLog::CallId;
using Qor::NboAttrLog::Session;

struct Caller : Qor::NboAttrLog::SessionListener {
    void onReturned(CallId call, bool isDone, String8 const& result) override {
        last = call;
        done = isDone;
        text = result;
    }
    CallId last = 0;
    bool done = false;
    String8 text;
};

struct Owner : Qor::NboAttrLog::SessionListener {
    String8 onAskedToCall(String8 const& path, String8 const&, Qor::Entity&) override {
        return path == "/vgw/status" ? String8("the status is kept by the agent") : String8();
    }
};

class RemoteCall : public testing::Test, protected SessionPair {
  protected:
    void connect(bool peerMayWrite = true) {
        root->entryIs(Name("cliConfig"), cli);
        root->entryIs(Name("status"), status);
        Session::Config config;
        config.peerMayWrite = peerMayWrite;
        SessionPair::connect(root, config);
        agent->listenerIs(&owner);
        reader->listenerIs(&caller);
    }
    // The answer's text; whether it was done stands in the caller.
    String8 called(char const* path, char const* operation, std::vector<String8> arguments = {}) {
        CallId const call = reader->call(path, operation, arguments);
        EXPECT_TRUE(settle());
        EXPECT_EQ(caller.last, call);
        EXPECT_EQ(closed(), "");
        return caller.text;
    }

    Qor::Dir::Ptr const root = make<Qor::Dir>(Name("vgw"));
    Vgw::CliConfig::Ptr const cli = make<Vgw::CliConfig>(Name("cliConfig"));
    Vgw::Status::Ptr const status = make<Vgw::Status>(Name("status"));
    Caller caller;
    Owner owner;
};

TEST_F(RemoteCall, IsDoneAtTheOwner) {
    connect();
    cli->managerPortIs(7000);
    EXPECT_EQ(called("/vgw/cliConfig", "reset"), "");
    EXPECT_TRUE(caller.done);
    EXPECT_EQ(cli->managerPort(), 6632U);
}

TEST_F(RemoteCall, TakesEntitiesByTheirPathsAndGivesTheResultAsText) {
    connect();
    auto const database = status->ovsdbIs(Name("ovsdb"));
    database->logicalSwitchIs("red")->tunnelKeyIs(7);
    database->physicalPortIs("one")->vlanBindingIs(7, "red");
    database->physicalPortIs("two")->vlanBindingIs(7, "red");
    String8 const one("/vgw/status/ovsdb/physicalPort/one");
    String8 const two("/vgw/status/ovsdb/physicalPort/two");
    EXPECT_EQ(called(one.charPtr(), "isEqualTo", {two}), "true");
    EXPECT_TRUE(caller.done);
    database->physicalPortIs("two")->vlanBindingIs(8, "red");
    EXPECT_EQ(called(one.charPtr(), "isEqualTo", {two}), "false");
}

TEST_F(RemoteCall, OfWhoMayOnlyReadIsRefused) {
    connect(false);
    cli->managerPortIs(7000);
    EXPECT_EQ(called("/vgw/cliConfig", "reset"), "/vgw/cliConfig may only be read");
    EXPECT_FALSE(caller.done);
    EXPECT_EQ(cli->managerPort(), 7000U);
}

TEST_F(RemoteCall, IsRefusedByTheOwnerWithItsReason) {
    connect();
    EXPECT_EQ(called("/vgw/status", "qorHasAttrLogInterface"), "the status is kept by the agent");
    EXPECT_FALSE(caller.done);
}

TEST_F(RemoteCall, OfWhatIsNotThereNamesIt) {
    connect();
    EXPECT_EQ(called("/vgw/nothing", "reset"), "/vgw/nothing does not exist");
    EXPECT_EQ(called("/vgw/cliConfig", "explode"), "Vgw::CliConfig has no operation explode");
    EXPECT_EQ(called("/vgw/cliConfig", "managerPort"),
              "Vgw::CliConfig has no operation managerPort");
    EXPECT_EQ(called("/vgw/cliConfig", "reset", {"1"}), "reset takes another number of arguments");
    EXPECT_FALSE(caller.done);
}

TEST_F(RemoteCall, WithoutTheEntityThatItNeedsIsRefused) {
    connect();
    status->ovsdbIs(Name("ovsdb"))->physicalPortIs("one");
    EXPECT_EQ(called("/vgw/status/ovsdb/physicalPort/one", "isEqualTo", {"/vgw/nothing"}),
              "/vgw/nothing does not exist");
    EXPECT_FALSE(caller.done);
    EXPECT_NE(called("/vgw/status/ovsdb/physicalPort/one", "isEqualTo", {"/vgw/cliConfig"}), "");
    EXPECT_FALSE(caller.done);
}

// A row is copied over one of its own class alone; any other would stop the process.
TEST_F(RemoteCall, IsRefusedUnlessTheOwnerLetsItIn) {
    connect();
    auto const database = status->ovsdbIs(Name("ovsdb"));
    database->logicalSwitchIs("red");
    database->managerIs("m");
    char const* const manager = "/vgw/status/ovsdb/manager/m";
    std::vector<String8> const row{"/vgw/status/ovsdb/logicalSwitch/red"};
    String8 const refused("the operations of /vgw/status/ovsdb/manager/m are its owner's own");
    agent->listenerIs(nullptr);
    EXPECT_EQ(called(manager, "clone", row), refused);
    EXPECT_FALSE(caller.done);
    Qor::NboAttrLog::SessionListener listener;
    agent->listenerIs(&listener);
    EXPECT_EQ(called(manager, "clone", row), refused);
    EXPECT_FALSE(caller.done);
}

// What the agent lets its peers call.
TEST_F(RemoteCall, OfEachOperationOfTheConfigurationRequiresNothing) {
    connect();
    int calls = 0;
    for (auto const& attribute : cli->fwkType()->attributes()) {
        if (!attribute->introspection().isFunction()) continue;
        ASSERT_TRUE(attribute->arguments().empty()) << attribute->name().view();
        called("/vgw/cliConfig", attribute->name().charPtr());
        ++calls;
    }
    EXPECT_GE(calls, 3);
}

}  // namespace
