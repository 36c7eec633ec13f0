// Each record kind, byte for byte.
#include "Peers.h"
#include "Records.h"

#include <vgw/attrlog/BackupManager.h>
#include <vgw/attrlog/HwVtepOvsdb.h>
#include <vgw/attrlog/LogicalBindingStats.h>
#include <vgw/attrlog/LogicalSwitch.h>
#include <vgw/attrlog/OvsdbSessionStatus.h>
#include <vgw/attrlog/PhysicalLocator.h>
#include <vgw/attrlog/PhysicalPort.h>
#include <vgw/attrlog/PhysicalSwitch.h>
#include <vgw/attrlog/Status.h>
#include <vgw/attrlog/UcastMacsLocal.h>
#include <vgw/attrlog/UcastMacsRemote.h>

#include <gtest/gtest.h>

namespace {

using Qor::make;
using Qor::Name;

class RecordBytes : public testing::Test {
  protected:
    std::string sent() { return hex(takeBytes(peer.out())); }

    Peer peer{Peer::Demuxer::Side::connecting};
};

TEST_F(RecordBytes, FrameIsSizeKindHeaderTokensAndPayload) {
    auto const row = make<Vgw::LogicalSwitch>(Name("ls"));
    auto const adapter = peer.attach(row);
    row->tunnelKeyIs(5000);
    EXPECT_EQ(sent(),
              "0000001d"          // 29 bytes follow
              "00"                // a record
              "0000000000000003"  // the entity
              "00000184"          // attribute 388
              "01"                // with a payload
              "00000000"
              "00000000"
              "00"
              "01"        // begin
              "00001388"  // 5000
              "03");      // end
}

TEST_F(RecordBytes, ScalarsOfEveryWidth) {
    auto const stats = make<Vgw::LogicalBindingStats>(Name("st"));
    auto const a = peer.attach(stats);
    stats->inBytesIs(0x0102030405060708);
    EXPECT_EQ(sent(), record(3, 386, "0102030405060708"));
    auto const session = make<Vgw::OvsdbSessionStatus>(Name("s"));
    auto const b = peer.attach(session);
    session->lastStateChangeIs(1.5);
    EXPECT_EQ(sent(), record(5, 259, "3ff8000000000000"));
    session->sessionStateIs(Vgw::stateConnected);
    EXPECT_EQ(sent(), record(5, 258, "00000003"));
    session->isNondestructingIs(true);
    EXPECT_EQ(sent(), record(5, 6, "01"));
    session->isNondestructingIs(false);
    EXPECT_EQ(sent(), record(5, 6, "00"));
}

TEST_F(RecordBytes, NetworkValues) {
    auto const remote = make<Vgw::UcastMacsRemote>(Name("u"));
    auto const a = peer.attach(remote);
    remote->macIs(Kelp::EthAddr("00:00:5e:00:53:01"));
    EXPECT_EQ(sent(), record(3, 386, "00005e005301"));
    remote->ipAddrIs(Kelp::IpAddr("192.0.2.1"));
    EXPECT_EQ(sent(), record(3, 389, "c0000201"));
    auto const local = make<Vgw::UcastMacsLocal>(Kelp::EthAddr("00:00:5e:00:53:02"));
    auto const b = peer.attach(local);
    local->vniIs(Vxlan::Vni(0xABCDEF));
    EXPECT_EQ(sent(), record(5, 389, "00abcdef"));
    auto const locator = make<Vgw::PhysicalLocator>(Name("l"));
    auto const c = peer.attach(locator);
    locator->keyIs(Vgw::PhysicalLocatorKey(Vgw::unknownEncapType, Kelp::IpAddr("192.0.2.9")));
    EXPECT_EQ(sent(), record(7, 386, "00000000c0000209"));
}

TEST_F(RecordBytes, NameIsSentWholeAndTextAsChunk) {
    auto const row = make<Vgw::PhysicalSwitch>(Name("s"));
    auto const a = peer.attach(row);
    row->displayNameIs(Name("leaf"));
    EXPECT_EQ(sent(), record(3, 386, "000000046c656166"));
    row->descIs("leaf");
    EXPECT_EQ(sent(), record(3, 387, "6c656166"));
    row->descIs("");
    EXPECT_EQ(sent(), record(3, 387, ""));
}

TEST_F(RecordBytes, LongTextGoesInChunksThatSayThatMoreFollow) {
    auto const row = make<Vgw::LogicalSwitch>(Name("ls"));
    auto const a = peer.attach(row);
    row->descIs(Qor::String8(std::string(32740, 'x')));
    peer.demuxer->serveFlows(~Qor::U64{0});
    auto const bytes = takeBytes(peer.out());
    // 32768 - 29 of them, then one.
    EXPECT_EQ(hex(bytes.substr(0, 4 + 1)), "00007ffc80");
    EXPECT_EQ(bytes.size(), 32768U + 30U);
    EXPECT_EQ(hex(bytes.substr(32768)), record(3, 387, "78"));
}

TEST_F(RecordBytes, FlagMemberAndItsRemoval) {
    auto const row = make<Vgw::PhysicalSwitch>(Name("s"));
    auto const a = peer.attach(row);
    row->portIs("p", true);
    EXPECT_EQ(sent(), record(3, 388, "000000017001"));
    row->portIs("p", false);
    EXPECT_EQ(sent(), record(3, 388, "000000017000"));
    row->portDel("p");
    EXPECT_EQ(sent(), record(3, -388, "0000000170"));
    row->mgmtIpIs(Kelp::IpAddr("192.0.2.1"), true);
    EXPECT_EQ(sent(), record(3, 389, "c000020101"));
    row->invalidAttribIs("port", true);
    EXPECT_EQ(sent(), record(3, 259, "00000004706f727401"));
}

TEST_F(RecordBytes, TextMemberAndItsRemoval) {
    auto const port = make<Vgw::PhysicalPort>(Name("p"));
    auto const a = peer.attach(port);
    port->vlanBindingIs(7, "ls");
    EXPECT_EQ(sent(), record(3, 388, "00076c73"));
    port->vlanStatIs(7, "");
    EXPECT_EQ(sent(), record(3, 389, "00000007"));
    port->vlanBindingDel(7);
    EXPECT_EQ(sent(), record(3, -388, "0007"));
    auto const locator = make<Vgw::PhysicalLocator>(Name("l"));
    auto const b = peer.attach(locator);
    locator->bfdIs("k", "v");
    EXPECT_EQ(sent(), record(5, 387, "000000016b76"));
}

TEST_F(RecordBytes, ChunkOfATextMemberLeavesRoomForItsKey) {
    auto const port = make<Vgw::PhysicalPort>(Name("p"));
    auto const a = peer.attach(port);
    port->vlanBindingIs(7, Qor::String8(std::string(32738, 'x')));
    peer.demuxer->serveFlows(~Qor::U64{0});
    auto const bytes = takeBytes(peer.out());
    // A record of 32768 bytes with a chunk of 32737, then the last byte under the same key.
    EXPECT_EQ(hex(bytes.substr(0, 5)), "00007ffc80");
    EXPECT_EQ(hex(bytes.substr(32768)), record(3, 388, "000778"));
    port->vlanStatIs(7, Qor::String8(std::string(32736, 'x')));
    peer.demuxer->serveFlows(~Qor::U64{0});
    EXPECT_EQ(hex(takeBytes(peer.out()).substr(32768)), record(3, 389, "0000000778"));
}

TEST_F(RecordBytes, ReferenceAndItsRemoval) {
    auto const ovsdb = Vgw::hwVtepOvsdbFactory(Name("db"));
    auto const a = peer.attach(ovsdb);
    auto const row = ovsdb->physicalSwitchRawIs(Name("s"));
    takeBytes(peer.out());
    ovsdb->physicalSwitchIs("leaf", row);
    EXPECT_EQ(sent(), record(3, 260, "000000046c6561660000000000000005"));
    ovsdb->physicalSwitchDel("leaf");
    EXPECT_EQ(sent(), record(3, -260, "000000046c656166"));
}

TEST_F(RecordBytes, ChildIsAnnouncedByItsParentAndRemovedByItsName) {
    auto const ovsdb = Vgw::hwVtepOvsdbFactory(Name("db"));
    auto const a = peer.attach(ovsdb);
    ovsdb->rootIs(Name("r"));
    EXPECT_EQ(sent(), record(3, 258, "00000001720000000000000005", 1, 151));
    ovsdb->rootDel(Name("r"));
    EXPECT_EQ(sent(), record(3, -258, "0000000172"));
}

TEST_F(RecordBytes, SingleChildIsRemovedWithoutAPayload) {
    auto const status = Vgw::statusFactory(Name("st"));
    auto const a = peer.attach(status);
    status->ovsdbIs(Name("db"));
    EXPECT_EQ(sent(), record(3, 259, "0000000264620000000000000005", 1, 151));
    status->ovsdbDel();
    EXPECT_EQ(sent(), record(3, -259, "", 0));
    status->ovsdbSessionStatusIs(Name("s"));
    takeBytes(peer.out());
    status->ovsdbSessionStatusDel();
    EXPECT_EQ(sent(), record(3, -258, "", 0));
}

TEST_F(RecordBytes, OrphanHasTypeChainNameAndId) {
    auto const row = make<Vgw::BackupManager>(Name("b"));
    auto const a = peer.attach(row);
    a->doSerializeOrphan();
    auto const text = [](char const* name) {
        std::string const length(1, static_cast<char>(std::string_view(name).size()));
        return "000000" + hex(length) + hex(name);
    };
    std::string const chain =
        text("Vgw::BackupManager") + text("Vgw::Manager") + text("Vgw::OvsdbDataModel");
    std::string const payload = "01" + std::string("0000003d") + chain + "03" + "00000005" +
                                "0000000162" + "04" + "00000008" + "0000000000000003";
    auto const bytes = sent();
    auto const expected = record(1, 136, payload);
    EXPECT_EQ(bytes.substr(0, expected.size()), expected);
}

TEST_F(RecordBytes, TransactionMarkers) {
    auto const row = make<Vgw::PhysicalSwitch>(Name("s"));
    auto const a = peer.attach(row);
    a->sendTransactionMarker(388, Qor::StreamAdapter::begin, 0);
    EXPECT_EQ(sent(), marker(3, 388, "00"));
    a->sendTransactionMarker(388, Qor::StreamAdapter::abort, 0);
    EXPECT_EQ(sent(), marker(3, 388, "01"));
    a->sendTransactionMarker(388, Qor::StreamAdapter::end, 0);
    EXPECT_EQ(sent(), marker(3, 388, "02"));
}

TEST(SizeEstimate, IsThatOfTheTable) {
    using Qor::NboAttrLog::pessimisticMessageSizeEstimate;
    Qor::String8 const text("12345");
    EXPECT_EQ(pessimisticMessageSizeEstimate(Qor::U16{1}, text, true), 31U);
    EXPECT_EQ(pessimisticMessageSizeEstimate(Qor::U32{1}, text, true), 33U);
    EXPECT_EQ(pessimisticMessageSizeEstimate(Qor::String8("abc"), text, true), 3U + 33);
    EXPECT_EQ(pessimisticMessageSizeEstimate(Qor::U16{1}, text, false), 5U + 35);
    EXPECT_EQ(pessimisticMessageSizeEstimate(Qor::U32{1}, text, false), 5U + 37);
    EXPECT_EQ(pessimisticMessageSizeEstimate(Qor::String8("abc"), text, false), 3U + 5 + 37);
}

}  // namespace
