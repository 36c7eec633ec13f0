// Records on their way in, as bytes that the library's own writer did not make.
#include "Inbound.h"

#include <vgw/attrlog/CliConfig.h>
#include <vgw/attrlog/Global.h>
#include <vgw/attrlog/HwVtepOvsdb.h>
#include <vgw/attrlog/LogicalSwitch.h>
#include <vgw/attrlog/McastMacsLocal.h>
#include <vgw/attrlog/OvsdbSessionStatus.h>
#include <vgw/attrlog/PhysicalLocator.h>
#include <vgw/attrlog/PhysicalPort.h>
#include <vgw/attrlog/PhysicalSwitch.h>
#include <vgw/attrlog/Status.h>

#include <qor/tree/Dir.h>

namespace {

using Qor::make;
using Qor::Name;
using Qor::String8;

TEST_F(Inbound, AppliedRecordIsNotSentBack) {
    auto const row = make<Vgw::LogicalSwitch>(Name("ls"));
    auto const a = enter(row);
    feed(record(first, 388, "00000007"));
    EXPECT_EQ(row->tunnelKey(), 7U);
    EXPECT_EQ(sent(), "");
    EXPECT_FALSE(a->isActive());
}

TEST_F(Inbound, RecordThatChangesNothingLeavesNoEchoBehind) {
    auto const row = make<Vgw::LogicalSwitch>(Name("ls"));
    auto const a = enter(row);
    row->tunnelKeyIs(7);
    sent();
    feed(record(first, 388, "00000007"));
    row->tunnelKeyIs(8);
    EXPECT_EQ(sent(), record(first, 388, "00000008"));
}

TEST_F(Inbound, EveryOtherConnectionHearsOfIt) {
    auto const row = make<Vgw::LogicalSwitch>(Name("ls"));
    auto const a = enter(row);
    Peer other(Peer::Demuxer::Side::accepting);
    auto const b = other.attach(row);
    feed(record(first, 388, "00000007"));
    EXPECT_EQ(sent(), "");
    EXPECT_EQ(hex(takeBytes(other.out())), record(first, 388, "00000007"));
}

TEST_F(Inbound, UnknownEnumerationIsCountedAndKept) {
    auto const cli = make<Vgw::CliConfig>(Name("cli"));
    auto const a = enter(cli);
    feed(record(first, 260, "0000002a"));
    EXPECT_EQ(static_cast<int>(cli->vtepListType()), 42);
    EXPECT_EQ(peer.demuxer->counters().unknownEnums, 1U);
    EXPECT_EQ(peer.failure, String8());
}

TEST_F(Inbound, KeysOfTwoAttributesAreNotTakenForEachOther) {
    auto const port = make<Vgw::PhysicalPort>(Name("p"));
    auto const a = enter(port);
    feed(chunk(first, 388, "0007" + hexOf("ab")));
    feed(record(first, 389, "00000007" + hexOf("x")));
    EXPECT_EQ(port->vlanStat(7), "x");
    feed(record(first, 388, "0007" + hexOf("c")));
    EXPECT_EQ(port->vlanBinding(7), "abc");
}

TEST_F(Inbound, FlagReferenceAndRemoval) {
    auto const ovsdb = make<Vgw::HwVtepOvsdb>(Name("db"));
    auto const a = enter(ovsdb);
    feed(record(first, 266,
                "0000000173"
                "8000000000000005",
                1, 151));
    auto const row = ovsdb->physicalSwitchRaw(Name("s"));
    ASSERT_TRUE(row);
    feed(record(first + 2, 388, "000000017001") + record(first, 260, "000000016c8000000000000005"));
    EXPECT_TRUE(row->port("p"));
    EXPECT_EQ(ovsdb->physicalSwitch("l"), row);
    feed(record(first + 2, -388, "0000000170") + record(first, -260, "000000016c"));
    EXPECT_EQ(row->ports(), 0U);
    EXPECT_FALSE(ovsdb->physicalSwitch("l"));
    EXPECT_EQ(sent(), "");
    EXPECT_EQ(peer.failure, String8());
}

TEST_F(Inbound, NullReferenceRemovesTheKey) {
    auto const ovsdb = make<Vgw::HwVtepOvsdb>(Name("db"));
    auto const row = ovsdb->physicalSwitchRawIs(Name("s"));
    ovsdb->physicalSwitchIs("l", row);
    auto const a = enter(ovsdb);
    feed(record(first, 260, "000000016c0000000000000000"));
    EXPECT_FALSE(ovsdb->physicalSwitch("l"));
}

TEST_F(Inbound, ReferenceToTheWrongClassEndsTheConnection) {
    auto const ovsdb = make<Vgw::HwVtepOvsdb>(Name("db"));
    auto const a = enter(ovsdb);
    feed(record(first, 258, "00000001728000000000000005", 1, 151));
    feed(record(first, 260, "000000016c8000000000000005"));
    EXPECT_EQ(peer.failure, "Entity is the wrong type");
    EXPECT_FALSE(ovsdb->physicalSwitch("l"));
}

TEST_F(Inbound, VniOverItsMaximumEndsTheConnectionAndChangesNothing) {
    auto const row = make<Vgw::McastMacsLocal>(Kelp::EthAddr("00:00:5e:00:53:01"));
    auto const a = enter(row);
    feed(record(first, 389, "01000000"));
    EXPECT_EQ(peer.failure, "Vni::value < Vni::min or > Vni::max not allowed");
    EXPECT_EQ(row->vni(), Vxlan::Vni());
}

TEST_F(Inbound, CutPayloadEndsTheConnectionAndChangesNothing) {
    auto const row = make<Vgw::LogicalSwitch>(Name("ls"));
    auto const a = enter(row);
    auto const before = row->tunnelKey();
    feed(record(first, 388, "000000"));
    EXPECT_NE(peer.failure.view().find("bytes needed"), std::string_view::npos);
    EXPECT_EQ(row->tunnelKey(), before);
}

TEST_F(Inbound, UnknownAttributeIsSkippedAndCounted) {
    auto const row = make<Vgw::LogicalSwitch>(Name("ls"));
    auto const a = enter(row);
    feed(record(first, 399, "0011") + record(first, -388, "") + record(first, 388, "00000007"));
    EXPECT_EQ(row->tunnelKey(), 7U);
    EXPECT_EQ(peer.demuxer->counters().unknownAttributes, 2U);
}

TEST_F(Inbound, RecordForAGoneEntityIsSkippedAndCounted) {
    feed(record(first, 388, "00000007"));
    EXPECT_EQ(peer.demuxer->counters().unknownEntities, 1U);
    EXPECT_EQ(peer.failure, String8());
}

TEST_F(Inbound, ReadOnlyProxyRefusesEveryWrite) {
    auto const row = make<Vgw::PhysicalSwitch>(Name("s"));
    row->portIs("p", true);
    auto const a = enter(row, first, Qor::AdapterState::readOnlyRemote);
    feed(record(first, -388, "0000000170"));
    EXPECT_EQ(peer.failure, "write-update from readonly proxy: s");
    EXPECT_TRUE(row->port("p"));
    EXPECT_FALSE(a->isActive());
}

TEST_F(Inbound, ReadOnlyProxyRefusesASnapshotToo) {
    auto const row = make<Vgw::PhysicalSwitch>(Name("s"));
    row->portIs("p", true);
    auto const a = enter(row, first, Qor::AdapterState::readOnlyRemote);
    feed(marker(first, 388, "00") + marker(first, 388, "02"));
    EXPECT_EQ(peer.failure, "write-update from readonly proxy: s");
    EXPECT_TRUE(row->port("p"));
}

TEST_F(Inbound, ReadOnlyThatMayBeConvertedTakesWrites) {
    auto const row = make<Vgw::LogicalSwitch>(Name("ls"));
    auto const a = enter(row, first, Qor::AdapterState::readOnlyRemote);
    peer.demuxer->mayConvertIs(true);
    feed(record(first, 388, "00000007"));
    EXPECT_EQ(row->tunnelKey(), 7U);
}

TEST_F(Inbound, RecordInsideARecordIsRefused) {
    auto const row = make<Vgw::LogicalSwitch>(Name("ls"));
    auto const a = enter(row);
    a->flagIs(Qor::AdapterState::isActive, true);
    feed(record(first, 388, "00000007"));
    EXPECT_EQ(peer.failure, "entity reactor is already active");
}

TEST_F(Inbound, ChildThatStandsAlreadyGetsAnAdapterAndStays) {
    auto const ovsdb = make<Vgw::HwVtepOvsdb>(Name("db"));
    auto const row = ovsdb->logicalSwitchIs(Name("ls"));
    auto const a = enter(ovsdb);
    feed(record(first, 263, "000000026c738000000000000005", 1, 151));
    EXPECT_EQ(ovsdb->logicalSwitch(Name("ls")), row);
    ASSERT_TRUE(peer.adapter(row));
    EXPECT_EQ(peer.adapter(row)->entityId(), Qor::EntityId(first + 2));
    EXPECT_FALSE(a->isActive());
    EXPECT_EQ(sent(), "");
}

TEST_F(Inbound, ChildAnnouncedUnderANewIdIsAnotherOne) {
    auto const ovsdb = make<Vgw::HwVtepOvsdb>(Name("db"));
    auto const a = enter(ovsdb);
    feed(record(first, 263, "000000026c738000000000000005", 1, 151));
    auto const row = ovsdb->logicalSwitch(Name("ls"));
    feed(record(first, 263, "000000026c738000000000000007", 1, 151));
    EXPECT_NE(ovsdb->logicalSwitch(Name("ls")), row);
    EXPECT_FALSE(row->parent());
    EXPECT_EQ(peer.adapter(ovsdb->logicalSwitch(Name("ls")))->entityId(), Qor::EntityId(first + 4));
}

TEST_F(Inbound, IdOfTheWrongHalfOrInUseIsRefused) {
    auto const ovsdb = make<Vgw::HwVtepOvsdb>(Name("db"));
    auto const a = enter(ovsdb);
    feed(record(first, 263, "000000026c730000000000000005", 1, 151));
    EXPECT_EQ(peer.failure, "the id 5 is not the peer's to give");
}

TEST_F(Inbound, IdInUseIsRefused) {
    auto const ovsdb = make<Vgw::HwVtepOvsdb>(Name("db"));
    auto const a = enter(ovsdb);
    feed(record(first, 263, "000000026c738000000000000003", 1, 151));
    EXPECT_EQ(peer.failure, "the id 8000000000000003 stands for another entity");
}

TEST_F(Inbound, SingleChildComesAndGoes) {
    auto const status = make<Vgw::Status>(Name("st"));
    auto const a = enter(status);
    feed(record(first, 258, "00000001738000000000000005", 1, 151));
    ASSERT_TRUE(status->ovsdbSessionStatus());
    EXPECT_TRUE(peer.adapter(status->ovsdbSessionStatus()));
    feed(record(first, -258, "", 0));
    EXPECT_FALSE(status->ovsdbSessionStatus());
    EXPECT_EQ(sent(), "");
    EXPECT_EQ(peer.failure, String8());
}

TEST_F(Inbound, AliasFrameNamesAnAttributeThatIsKnown) {
    auto const ovsdb = make<Vgw::HwVtepOvsdb>(Name("db"));
    auto const a = enter(ovsdb);
    // Candidates 999 and 258; the word behind a positive one; key; a gap; the id at offset 25.
    feed(record(first, 144,
                "000c0019"
                "000003e7"
                "00000102"
                "deadbeef"
                "0000000172"
                "ffffffff"
                "8000000000000005"));
    ASSERT_EQ(peer.failure, String8());
    ASSERT_TRUE(ovsdb->root(Name("r")));
    EXPECT_EQ(peer.adapter(ovsdb->root(Name("r")))->entityId(), Qor::EntityId(first + 2));
    feed(record(first, -144,
                "00080000"
                "fffffefe"
                "0000000172"));
    EXPECT_FALSE(ovsdb->root(Name("r")));
}

TEST_F(Inbound, AliasFrameWithoutAKnownCandidateIsSkipped) {
    auto const status = make<Vgw::Status>(Name("st"));
    auto const a = enter(status);
    feed(record(first, 144,
                "00080000"
                "00000104"
                "00000000"));
    feed(record(first, -144,
                "00080000"
                "fffffefc"));
    EXPECT_EQ(peer.demuxer->counters().unknownAttributes, 2U);
    EXPECT_EQ(peer.failure, String8());
}

TEST_F(Inbound, AliasFrameOfAnotherClassIsSkipped) {
    auto const row = make<Vgw::LogicalSwitch>(Name("ls"));
    auto const a = enter(row);
    feed(record(first, 144, ""));
    EXPECT_EQ(peer.demuxer->counters().unknownAttributes, 1U);
}

TEST_F(Inbound, BodyOutsideItsRecordIsRefused) {
    auto const ovsdb = make<Vgw::HwVtepOvsdb>(Name("db"));
    auto const a = enter(ovsdb);
    feed(record(first, 144,
                "0008ffff"
                "00000102"
                "00000000"
                "0000000172"
                "8000000000000005"));
    EXPECT_EQ(peer.failure, "a body outside its record");
    EXPECT_EQ(ovsdb->roots(), 0U);
}

TEST_F(Inbound, SyncModeReachesEveryAdapterOfTheEntityUnderThatId) {
    auto const row = make<Vgw::LogicalSwitch>(Name("ls"));
    auto const a = enter(row);
    Qor::globalNboAttrLogDemuxerManager().nboDemuxerIs(peer.demuxer);
    feed(record(first, 135, "00000002"));
    EXPECT_EQ(a->syncMode(), Qor::StreamAdapter::resync);
    EXPECT_FALSE(a->has(Qor::AdapterState::syncModeFanOut));
    feed(record(first, 135, "00000009"));
    EXPECT_EQ(peer.failure, "Qor::StreamAdapter::SyncMode");
    Qor::globalNboAttrLogDemuxerManager().nboDemuxerDel(Name("peer"));
}

TEST_F(Inbound, ReleasedEntityIsMarkedInItsDirectory) {
    auto const dir = make<Qor::Dir>(Name("d"));
    auto const row = make<Vgw::LogicalSwitch>(Name("ls"));
    dir->entryIs(Name("ls"), row);
    auto const a = enter(row);
    feed(record(first, 135, "00000001"));
    EXPECT_EQ(dir->entryState(Name("ls")), Qor::Dir::EntryState::released);
    EXPECT_EQ(static_cast<int>(dir->entryState(Name("ls"))), 3);
}

TEST_F(Inbound, EchoOnlyReadsAndSendsWhatStandsHere) {
    auto const row = make<Vgw::LogicalSwitch>(Name("ls"));
    row->tunnelKeyIs(9);
    auto const a = enter(row);
    auto const in = make<Qor::NboAttrLog::In>();
    in->receive(bytesOf("00000007"));
    a->handleAttrDeserialization(388, 0, 4, in);
    EXPECT_EQ(row->tunnelKey(), 9U);
    EXPECT_EQ(sent(), record(first, 388, "00000009"));
    EXPECT_EQ(in->available(), 0U);
}

TEST_F(Inbound, MessageChannelHearsWhatWasApplied) {
    auto const row = make<Vgw::LogicalSwitch>(Name("ls"));
    auto const entry = make<Qor::MsgChannel::Constrainer::QorEntry>();
    auto const a = Vgw::LogicalSwitch::QorNboAttrLogSa::QorNboAttrLogSaIs(
        Qor::AdapterState::Bits(), row, 1, peer.outPtr(), entry.ptr());
    a->doEntityIdIs(Qor::EntityId(first), peer.demuxer, true);
    feed(record(first, 388, "00000007"));
    EXPECT_EQ(entry->mode(), Qor::MsgChannel::Mode::idle);
    feed(record(first, 387, hexOf("x")));
    EXPECT_EQ(entry->mode(), Qor::MsgChannel::Mode::applied);
    feed(record(first, 135, "00000000"));
    EXPECT_EQ(entry->mode(), Qor::MsgChannel::Mode::syncMode);
}

TEST_F(Inbound, EntitiesAreKeptWithinTheQuota) {
    auto const ovsdb = make<Vgw::HwVtepOvsdb>(Name("db"));
    auto const a = enter(ovsdb);
    peer.demuxer->quotaIs({1, 100});
    feed(record(first, 258, "00000001728000000000000005", 1, 151));
    EXPECT_EQ(peer.failure, "more than 1 entities");
}

TEST_F(Inbound, ParentWithoutASharedIdIsWrittenIntoTheRecord) {
    auto const ovsdb = make<Vgw::HwVtepOvsdb>(Name("db"));
    auto const a = Vgw::HwVtepOvsdb::QorNboAttrLogSa::QorNboAttrLogSaIs(
        Qor::AdapterState::Bits(), ovsdb, 1, peer.outPtr(), nullptr);
    a->entityIdIs(Qor::EntityId(0x0102030405060708));
    auto& in = *peer.demuxer->in();
    in.receive(
        bytesOf("0000000172"
                "8000000000000005"));
    a->handleAttrDeserialization(258, 0, 13, nullptr);
    ASSERT_TRUE(ovsdb->root(Name("r")));
    in.readPositionIs(5);
    Qor::U64 word = 0;
    std::memcpy(&word, in.pieceAt(5).data(), sizeof word);
    EXPECT_EQ(word, 0x0102030405060708U);
}

TEST(RingRewrite, IdThatWrapsIsCutAndItsSecondPartIsNotTheIds) {
    Qor::NboAttrLog::In in(16);
    in.receive(std::string(12, 'x'));
    in.readPositionIs(11);
    in.releaseRead();
    in.receive(std::string(9, 'y'));
    Qor::NboAttrLog::rewriteEntityId(in, 12, Qor::EntityId(0x0102030405060708));
    std::string bytes;
    in.readPositionIs(12);
    while (in.available() != 0) bytes += static_cast<char>(in.nextU8());
    EXPECT_EQ(hex(bytes),
              "08070605"
              "00000000"
              "79");
}

// The least id has no counterpart to negate it to.
TEST_F(Inbound, LeastAttributeIdIsNoAttribute) {
    constexpr std::int32_t least = std::numeric_limits<std::int32_t>::min();
    auto const ovsdb = make<Vgw::HwVtepOvsdb>(Name("db"));
    auto const adapter = enter(ovsdb);
    feed(record(first, least, ""));
    feed(record(first, 144,
                "00080000"
                "80000000"));
    EXPECT_EQ(peer.failure, String8());
    EXPECT_EQ(peer.demuxer->counters().unknownAttributes, 2U);
    feed(marker(first, least, "00"));
    EXPECT_EQ(peer.failure, String8());
}

}  // namespace
