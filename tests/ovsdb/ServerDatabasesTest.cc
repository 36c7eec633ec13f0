#include "JsonText.h"

#include <ovsdb/client/ServerDatabases.h>

#include <gtest/gtest.h>

namespace Ovsdb {
namespace {

TEST(ServerDatabases, AClusterMemberTellsWhereItStands) {
    ServerDatabases databases;
    databases.apply(
        JsonText(
            R"({"Database":{"r1":{"initial":{"name":"_Server","model":"standalone","connected":true}},
        "r2":{"initial":{"name":"hardware_vtep","model":"clustered","connected":true,"index":128,
        "cid":["uuid","00000000-0000-4000-8000-000000000001"]}}}})")
            .root());
    ServerDatabase const* const database = databases.find("hardware_vtep");
    ASSERT_NE(database, nullptr);
    EXPECT_TRUE(database->clustered());
    EXPECT_TRUE(database->connected);
    EXPECT_FALSE(database->leader);
    EXPECT_EQ(database->index, 128);
    EXPECT_EQ(database->clusterId, "00000000-0000-4000-8000-000000000001");
}

TEST(ServerDatabases, AModifiedRowKeepsWhatIsNotTold) {
    ServerDatabases databases;
    databases.apply(
        JsonText(
            R"({"Database":{"r":{"initial":{"name":"d","model":"clustered","connected":true}}}})")
            .root());
    databases.apply(JsonText(R"({"Database":{"r":{"modify":{"connected":false}}}})").root());
    EXPECT_EQ(databases.find("d")->model, "clustered");
    EXPECT_FALSE(databases.find("d")->connected);
}

TEST(ServerDatabases, ADeletedRowIsGone) {
    ServerDatabases databases;
    databases.apply(JsonText(R"({"Database":{"r":{"initial":{"name":"d"}}}})").root());
    databases.apply(JsonText(R"({"Database":{"r":{"delete":null}}})").root());
    EXPECT_EQ(databases.find("d"), nullptr);
}

TEST(ServerDatabases, WhatCannotBeReadIsLeftOut) {
    ServerDatabases databases;
    for (char const* const text : {"[]", "{}", R"({"Database":[]})", R"({"Database":{"r":17}})",
                                   R"({"Database":{"r":{"initial":{"name":1}}}})"})
        databases.apply(JsonText(text).root());
    EXPECT_EQ(databases.find("d"), nullptr);
}

}  // namespace
}  // namespace Ovsdb
