// What the model cannot hold, and what several rows have to agree on.

#include "MirrorMessages.h"

#include <qor/attrlog/flow/Demuxer.h>

#include <gtest/gtest.h>

namespace Ovsdb {
namespace {

TEST(MirrorLoss, WhatDoesNotFitIsMarkedAndThePartThatFitsIsHeld) {
    MirrorUnderTest mirror;
    mirror.update(
        {{"Physical_Switch",
          {{uuidText(41), insert({{"name", "tor-1"},
                                  {"description", "a"},
                                  {"management_ips", set({"192.0.2.101", "2001:db8::1"})}})}}}});
    auto const row = [&] { return mirror.dump()["ovsdb"]["physicalSwitchRaw"][uuidText(41)]; };
    EXPECT_EQ(row()["mgmtIp"], json::array({"192.0.2.101"}));
    EXPECT_EQ(row()["invalidAttrib"], json::array({"mgmtIp"}));
    EXPECT_EQ(mirror.dump()["lost"],
              json::array({"Physical_Switch " + uuidText(41) + " management_ips"}));
    // Differences go on applying to the column, marked or not.
    mirror.update(
        {{"Physical_Switch",
          {{uuidText(41), modify({{"description", "b"},
                                  {"management_ips", set({"192.0.2.101", "192.0.2.102"})}})}}}});
    EXPECT_EQ(row()["mgmtIp"], json::array({"192.0.2.102"}));
    EXPECT_EQ(row()["desc"], "b");
    EXPECT_EQ(row()["invalidAttrib"], json::array({"mgmtIp"}));
    mirror.update(
        {{"Physical_Switch", {{uuidText(41), modify({{"management_ips", "2001:db8::1"}})}}}});
    EXPECT_EQ(row()["mgmtIp"], json::array({"192.0.2.102"}));
    EXPECT_TRUE(row()["invalidAttrib"].empty());
    EXPECT_TRUE(mirror.dump()["lost"].empty());
}

TEST(MirrorLoss, NumbersOutsideTheModelAreMarkedAndReadAsTheirDefault) {
    MirrorUnderTest mirror;
    mirror.update(
        {{"Logical_Switch", {{uuidText(red), logicalSwitch("red", 99999999999)}}},
         {"Logical_Binding_Stats",
          {{uuidText(51), insert({{"bytes_from_local", -1}, {"packets_to_local", 4}})}}}});
    json const dump = mirror.dump();
    EXPECT_EQ(dump["ovsdb"]["logicalSwitch"][uuidText(red)]["tunnelKey"], 0x1000000);
    EXPECT_EQ(dump["ovsdb"]["logicalSwitch"][uuidText(red)]["invalidAttrib"],
              json::array({"tunnelKey"}));
    EXPECT_EQ(dump["ovsdb"]["logicalBindingStats"][uuidText(51)],
              (json{{"inBytes", 0},
                    {"inPackets", 0},
                    {"outBytes", 0},
                    {"outPackets", 4},
                    {"invalidAttrib", json::array({"inBytes"})}}));
    EXPECT_EQ(dump["lost"],
              json::array({"Logical_Binding_Stats " + uuidText(51) + " bytes_from_local",
                           "Logical_Switch " + uuidText(red) + " tunnel_key"}));
}

TEST(MirrorLoss, ATextThatIsNoAddressMakesNoRow) {
    MirrorUnderTest mirror;
    mirror.update(network());
    mirror.update({{"Ucast_Macs_Remote",
                    {{uuidText(31), ucast("junk", red, locatorA)},
                     {uuidText(32), ucast("unknown-dst", red, locatorA)}}}});
    EXPECT_TRUE(mirror.dump()["ucastMacsRemote"].empty());
    EXPECT_EQ(mirror.dump()["lost"].size(), 2U);
    mirror.update(
        {{"Ucast_Macs_Remote", {{uuidText(31), modify({{"MAC", "00:00:5e:00:53:07"}})}}}});
    EXPECT_EQ(mirror.dump()["ucastMacsRemote"][uuidText(31)]["mac"], "00:00:5e:00:53:07");
    mirror.update({{"Ucast_Macs_Remote", {{uuidText(31), modify({{"MAC", "junk"}})}}}});
    EXPECT_TRUE(mirror.dump()["ucastMacsRemote"].empty());
    EXPECT_TRUE(
        mirror.dump()["ovsdb"]["physicalLocatorRaw"][uuidText(locatorA)]["ucastMacRef"].empty());
}

TEST(MirrorLoss, TunnelsThatDisagreeGiveNoBfd) {
    auto const tunnel = [](char const* state) {
        return insert({{"remote", ref(locatorA)},
                       {"bfd_params", map({{"enable", "true"}})},
                       {"bfd_status", map({{"state", state}})}});
    };
    json schema = fullSchema();
    schema["tables"]["Physical_Locator"]["columns"].erase("bfd");
    schema["tables"]["Physical_Locator"]["columns"].erase("bfd_status");
    MirrorUnderTest mirror(schema);
    mirror.update(network());
    mirror.update({{"Tunnel", {{uuidText(61), tunnel("up")}, {uuidText(62), tunnel("up")}}}});
    auto const row = [&] {
        return mirror.dump()["ovsdb"]["physicalLocatorRaw"][uuidText(locatorA)];
    };
    EXPECT_EQ(row()["bfd"], pairs({{"enable", "true"}}));
    EXPECT_EQ(row()["bfdStatus"], pairs({{"state", "up"}}));
    mirror.update(
        {{"Tunnel", {{uuidText(62), modify({{"bfd_status", map({{"state", "down"}})}})}}}});
    EXPECT_TRUE(row()["bfdStatus"].empty());
    EXPECT_EQ(row()["invalidAttrib"], json::array({"bfdStatus"}));
    EXPECT_EQ(mirror.dump()["lost"],
              json::array({"Physical_Locator " + uuidText(locatorA) + " bfdStatus"}));
    mirror.update({{"Tunnel", {{uuidText(61), gone}}}});
    EXPECT_EQ(row()["bfdStatus"], pairs({{"state", "down"}}));
    EXPECT_TRUE(row()["invalidAttrib"].empty());
}

TEST(MirrorLoss, BfdColumnsOfALocatorGoBeforeTunnels) {
    json schema = fullSchema();
    MirrorUnderTest mirror(schema);
    json tables = network();
    tables["Physical_Locator"][uuidText(locatorA)]["insert"]["bfd_status"] = map({{"state", ""}});
    tables["Tunnel"][uuidText(61)] =
        insert({{"remote", ref(locatorA)}, {"bfd_status", map({{"state", "up"}})}});
    mirror.update(tables);
    auto const status = [&] {
        return mirror.dump()["ovsdb"]["physicalLocatorRaw"][uuidText(locatorA)]["bfdStatus"];
    };
    EXPECT_EQ(status(), pairs({{"state", ""}}));
    // The schema is changed: the columns move to the tunnels.
    schema["tables"]["Physical_Locator"]["columns"].erase("bfd");
    schema["tables"]["Physical_Locator"]["columns"].erase("bfd_status");
    mirror.planIs(schema);
    mirror.update(json::object());
    EXPECT_EQ(status(), pairs({{"state", "up"}}));
}

// An adapter that sends to a peer which never reads.
class Sending {
  public:
    explicit Sending(Vgw::PhysicalLocator::Ptr const& row) {
        auto const bits = Qor::AdapterState::Bits(Qor::AdapterState::weakNotifier);
        row->qorNboAttrLogSaIs(bits, 1, demuxer_->out(), nullptr)->qorOnInit();
    }
    ~Sending() { demuxer_->close(); }
    Sending(Sending const&) = delete;
    Sending& operator=(Sending const&) = delete;

  private:
    using Demuxer = Qor::NboAttrLog::Demuxer;
    Demuxer::Ptr demuxer_ =
        Qor::make<Demuxer>(Qor::Name("peer"), Qor::make<Qor::NboAttrLog::In>(),
                           Qor::make<Qor::NboAttrLog::Out>(), Demuxer::Side::accepting);
};

// Not as it is: the message of a failure would hold the long texts.
bool holdsKey(json const& keysAndValues, std::string const& key) {
    for (json const& item : keysAndValues)
        if (item.front() == key) return true;
    return false;
}

TEST(MirrorLoss, AKeyOfBfdThatNoRecordCanHoldIsMarkedAndTheOthersAreHeld) {
    std::string const tooLong(60'000, 'k');
    MirrorUnderTest mirror;
    mirror.update(network());
    std::string const uuid = uuidText(locatorA);
    Sending const sending(mirror.database()->physicalLocatorRaw(std::string_view(uuid)));
    mirror.update({{"Physical_Locator",
                    {{uuid, modify({{"bfd", map({{tooLong, "v"}, {"a", "1"}})},
                                    {"bfd_status", map({{"state", "up"}, {tooLong, "v"}})}})}}}});
    auto const row = [&] { return mirror.dump()["ovsdb"]["physicalLocatorRaw"][uuid]; };
    EXPECT_TRUE(row()["bfd"] == pairs({{"a", "1"}}));
    EXPECT_TRUE(row()["bfdStatus"] == pairs({{"state", "up"}}));
    EXPECT_EQ(row()["invalidAttrib"], json::array({"bfd", "bfdStatus"}));
    EXPECT_EQ(mirror.dump()["lost"], json::array({"Physical_Locator " + uuid + " bfd",
                                                  "Physical_Locator " + uuid + " bfdStatus"}));
    // Differences go on applying to it: the long key goes, another of the longest that is held
    // comes.
    std::string const longest(49'118, 'k');
    mirror.update({{"Physical_Locator",
                    {{uuid, modify({{"bfd", map({{tooLong, "v"}, {longest, "v"}})},
                                    {"bfd_status", map({{tooLong, "v"}})}})}}}});
    EXPECT_TRUE(holdsKey(row()["bfd"], longest));
    EXPECT_TRUE(row()["invalidAttrib"].empty());
    EXPECT_TRUE(mirror.dump()["lost"].empty());
}

TEST(MirrorLoss, AnEmptyBfdValueIsNeitherLostNorToldTwice) {
    MirrorUnderTest mirror;
    Heard heard(mirror);
    json tables = network();
    tables["Physical_Locator"][uuidText(locatorA)]["insert"]["bfd"] = map({{"a", ""}});
    mirror.update(tables);
    static_cast<void>(heard.lines());
    mirror.update(
        {{"Physical_Locator", {{uuidText(locatorA), modify({{"bfd", map({{"b", ""}})}})}}}});
    EXPECT_EQ(heard.lines(), std::vector<std::string>{"/ovsdb/physicalLocatorRaw/" +
                                                      uuidText(locatorA) + ".bfd[b] -> \"\""});
    EXPECT_EQ(mirror.dump()["ovsdb"]["physicalLocatorRaw"][uuidText(locatorA)]["bfd"],
              pairs({{"a", ""}, {"b", ""}}));
}

}  // namespace
}  // namespace Ovsdb
