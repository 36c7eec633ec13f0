// The agent driven and read by code that knows no class of it: paths, names and texts alone.

#include "AgentUnderTest.h"

#include <qor/generic/GenericList.h>
#include <qor/tree/EntityPath.h>

namespace Vgwd {
namespace {

class GenericAgentTest : public AgentTest {
  protected:
    using Op = Qor::GenericIf::AttributeOp;

    void SetUp() override {
        server_.start();
        // vtep-ctl gives an empty database its Global row, whatever it is asked: not amid the test.
        server_.vtepCtl("get-manager");
        startAgent();
        ASSERT_TRUE(inStep());
        Qor::rootDirIs(agent_->tree().root());
    }
    void TearDown() override { Qor::rootDirIs(nullptr); }

    static Qor::GenericIf::Ptr at(char const* path) {
        Qor::Ptr<Qor::Entity> const entity = Qor::entityAt(path);
        return entity ? entity->fwkType()->genericIf_(entity.ptr(), false) : nullptr;
    }
    static std::string get(char const* path, char const* attribute) {
        Qor::GenericIf::Ptr const wrapper = at(path);
        return std::string(wrapper->attributeOp(wrapper->attributeId(attribute))->strRep().view());
    }
    static void set(char const* path, char const* attribute, char const* text) {
        Qor::GenericIf::Ptr const wrapper = at(path);
        Qor::QorType* const type = wrapper->fwkType()->attr(Qor::Name(attribute))->valueType();
        wrapper->attributeOp(wrapper->attributeId(attribute), Op::opSet, nullptr,
                             type->genericIfFromStrep(text, false));
    }
    bool managerBecomes(std::string const& wanted) {
        return becomes([&] { return server_.vtepCtl("get-manager") == wanted; });
    }
};

TEST_F(GenericAgentTest, SettingManagerIpByNameSetsTheDatabasesManager) {
    set("/vgw/cliConfig", "managerIp", "'192.0.2.1'");
    EXPECT_TRUE(managerBecomes("ssl:192.0.2.1:6632"));
    set("/vgw/cliConfig", "managerIp", "'0.0.0.0'");
    EXPECT_TRUE(managerBecomes(""));
}

TEST_F(GenericAgentTest, TheBooksAreReadByName) {
    set("/vgw/cliConfig", "managerIp", "'192.0.2.1'");
    ASSERT_TRUE(managerBecomes("ssl:192.0.2.1:6632"));
    constexpr char const* session = "/vgw/status/ovsdbSessionStatus";
    EXPECT_TRUE(
        becomes([&] { return get(session, "lastSuccessfulMsg") == "'Transaction request'"; }));
    EXPECT_EQ(get(session, "numSuccessfulMsg"), "2");
    EXPECT_EQ(get(session, "sessionState"), "'stateConnected'");
}

TEST_F(GenericAgentTest, ResetByNameTurnsTheAgentOff) {
    Qor::GenericIf::Ptr const cli = at("/vgw/cliConfig");
    cli->attributeOp(cli->attributeId("reset"), Op::opGet, Qor::make<Qor::GenericIf::List_>());
    EXPECT_TRUE(becomes([&] { return get("/vgw/status", "running") == "false"; }));
}

}  // namespace
}  // namespace Vgwd
