#include <vgwd/agent/ManagerRequest.h>

#include <gtest/gtest.h>

namespace Vgwd {
namespace {

using nlohmann::json;

constexpr char const* global = "00000000-0000-4000-8000-000000000001";
constexpr char const* first = "00000000-0000-4000-8000-000000000002";
constexpr char const* second = "00000000-0000-4000-8000-000000000003";
constexpr char const* target = "ssl:192.0.2.1:6632";

class ManagerRequest : public testing::Test {
  protected:
    void add(char const* uuid, char const* its) {
        database_->managerIs(uuid)->targetIs(its);
        database_->rootIs(global)->managerIs(uuid, true);
    }

    Vgw::HwVtepOvsdb::Ptr database_ = Vgw::hwVtepOvsdbFactory("ovsdb");
};

TEST_F(ManagerRequest, ADatabaseWithoutGlobalIsGivenOneUnlessAnotherWriterWasFaster) {
    EXPECT_EQ(managerSetting(*database_, target), json::parse(R"([
        {"op": "comment", "comment": "vgwd: set manager ssl:192.0.2.1:6632"},
        {"op": "wait", "timeout": 0, "table": "Global", "where": [], "columns": ["managers"],
         "until": "==", "rows": []},
        {"op": "insert", "table": "Manager", "row": {"target": "ssl:192.0.2.1:6632"},
         "uuid-name": "manager"},
        {"op": "insert", "table": "Global", "row": {"managers": ["named-uuid", "manager"]}}])"));
}

TEST_F(ManagerRequest, OtherManagersAreReplacedUnlessTheyChangedMeanwhile) {
    add(first, "tcp:192.0.2.2:1");
    EXPECT_EQ(managerSetting(*database_, target), json::parse(R"([
        {"op": "comment", "comment": "vgwd: set manager ssl:192.0.2.1:6632"},
        {"op": "wait", "timeout": 0, "table": "Global",
         "where": [["_uuid", "==", ["uuid", "00000000-0000-4000-8000-000000000001"]]],
         "columns": ["managers"], "until": "==",
         "rows": [{"managers": ["set", [["uuid", "00000000-0000-4000-8000-000000000002"]]]}]},
        {"op": "insert", "table": "Manager", "row": {"target": "ssl:192.0.2.1:6632"},
         "uuid-name": "manager"},
        {"op": "update", "table": "Global", "row": {"managers": ["named-uuid", "manager"]},
         "where": [["_uuid", "==", ["uuid", "00000000-0000-4000-8000-000000000001"]]]}])"));
}

TEST_F(ManagerRequest, TheOneManagerThatIsWantedNeedsNoTransaction) {
    add(first, target);
    EXPECT_EQ(managerSetting(*database_, target), json::array());
}

TEST_F(ManagerRequest, ARowWithTheTargetIsKeptAmongOthers) {
    add(first, target);
    add(second, "tcp:192.0.2.2:1");
    json const operations = managerSetting(*database_, target);
    ASSERT_EQ(operations.size(), 3U);
    EXPECT_EQ(operations[2]["row"]["managers"], (json{"uuid", first}));
}

TEST_F(ManagerRequest, RemovalTouchesTheNamedTargetsAlone) {
    add(first, target);
    add(second, "tcp:192.0.2.2:1");
    EXPECT_EQ(managerRemoval(*database_, {"ssl:192.0.2.9:1", target}), json::parse(R"([
        {"op": "comment", "comment": "vgwd: remove the manager"},
        {"op": "mutate", "table": "Global",
         "where": [["_uuid", "==", ["uuid", "00000000-0000-4000-8000-000000000001"]]],
         "mutations": [["managers", "delete",
                        ["set", [["uuid", "00000000-0000-4000-8000-000000000002"]]]]]}])"));
}

TEST_F(ManagerRequest, RemovalOfWhatIsNotThereNeedsNoTransaction) {
    EXPECT_EQ(managerRemoval(*database_, {target}), json::array());
    add(second, "tcp:192.0.2.2:1");
    EXPECT_EQ(managerRemoval(*database_, {target}), json::array());
}

}  // namespace
}  // namespace Vgwd
