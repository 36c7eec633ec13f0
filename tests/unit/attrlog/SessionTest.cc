// Two whole sessions in one thread.
#include "Records.h"

#include <qor/attrlog/dir/DirAdapter.h>
#include <qor/core/Now.h>

#include <tests/support/SessionPair.h>
#include <vgw/attrlog/CliConfig.h>
#include <vgw/attrlog/LogicalSwitch.h>
#include <vgw/attrlog/Status.h>
#include <vgw/attrlog/UcastMacsLocal.h>

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

using Qor::make;
using Qor::Name;
using Qor::String8;
using Qor::NboAttrLog::MountId;
using Qor::NboAttrLog::Session;
using Side = Qor::NboAttrLog::Demuxer::Side;

struct Heard : Qor::NboAttrLog::SessionListener {
    void onMounted(MountId, Qor::Ptr<Qor::Entity> const& entity) override { mounted = entity; }
    void onSynced(MountId mount) override { synced = mount; }
    void onRefused(MountId, String8 const& reason) override { refused = reason; }
    void onPong(Qor::Seconds seconds) override { pong = seconds; }

    Qor::Ptr<Qor::Entity> mounted;
    MountId synced = 0;
    String8 refused;
    Qor::Seconds pong = -1;
};

// An agent with a tree and a reader without one.
class Sessions : public testing::Test, protected SessionPair {
  protected:
    Sessions() {
        root->entryIs(Name("cliConfig"), cli);
        root->entryIs(Name("status"), status);
    }
    void connect(bool peerMayWrite = true) {
        Session::Config agents;
        agents.name = Name("agent");
        agents.peerMayWrite = peerMayWrite;
        SessionPair::connect(root, agents);
        reader->listenerIs(&heard);
    }

    Qor::Ptr<Qor::Dir> root = make<Qor::Dir>(Name("vgw"));
    Qor::Ptr<Vgw::CliConfig> cli = make<Vgw::CliConfig>(Name("cliConfig"));
    Qor::Ptr<Vgw::Status> status = make<Vgw::Status>(Name("status"));
    Heard heard;
};

TEST_F(Sessions, EntityIsMountedByItsPathIntoACopyOfItsClass) {
    connect();
    cli->managerPortIs(1);
    MountId const mount = reader->mount("/vgw/cliConfig", false);
    settle();
    auto const copy = Qor::dynamicCast<Vgw::CliConfig>(heard.mounted);
    ASSERT_TRUE(copy);
    EXPECT_EQ(heard.synced, mount);
    EXPECT_EQ(reader->mounted(mount), copy);
    EXPECT_EQ(copy->managerPort(), 1);
    cli->managerPortIs(2);
    settle();
    EXPECT_EQ(copy->managerPort(), 2);
    EXPECT_EQ(reader->closed(), String8());
    EXPECT_EQ(agent->closed(), String8());
}

TEST_F(Sessions, CopyThatMayOnlyBeReadRefusesChanges) {
    connect();
    reader->mount("/vgw/cliConfig", false);
    settle();
    auto const copy = Qor::dynamicCast<Vgw::CliConfig>(heard.mounted);
    copy->managerPortIs(9);
    settle();
    EXPECT_EQ(cli->managerPort(), 6632);
    EXPECT_EQ(reader->demuxer().counters().refusedLocally, 1U);
    EXPECT_EQ(agent->closed(), String8());
}

TEST_F(Sessions, CopyThatMayBeWrittenWrites) {
    connect();
    reader->mount("/vgw/cliConfig", true);
    settle();
    Qor::dynamicCast<Vgw::CliConfig>(heard.mounted)->managerPortIs(9);
    settle();
    EXPECT_EQ(cli->managerPort(), 9);
}

TEST_F(Sessions, WritingIsRefusedWhereThePeerMayOnlyRead) {
    connect(false);
    reader->mount("/vgw/cliConfig", true);
    settle();
    EXPECT_EQ(heard.refused, "/vgw/cliConfig may only be read");
    EXPECT_EQ(reader->closed(), String8());
}

TEST_F(Sessions, RefusalsNameTheirReason) {
    connect();
    reader->mount("/vgw/nothing", false);
    settle();
    EXPECT_EQ(heard.refused, "/vgw/nothing does not exist");
    reader->mount("vgw", false);
    settle();
    EXPECT_NE(heard.refused.view().find("a slash"), std::string_view::npos);
    reader->mount("/other/cliConfig", false);
    settle();
    EXPECT_EQ(heard.refused, "/other/cliConfig does not exist");
}

TEST_F(Sessions, WholeDirectoryTravelsWithItsClasses) {
    auto const macs = make<Qor::Dir>(Name("ucastMacsLocal"));
    root->entryIs(Name("ucastMacsLocal"), macs);
    auto const mac = make<Vgw::UcastMacsLocal>(Kelp::EthAddr("00:00:5e:00:53:01"));
    mac->uuidIs("u1");
    macs->entryIs(Name("u1"), mac);
    macs->entryStateIs(Name("u1"), Qor::Dir::EntryState::stale);
    status->ovsdbIs(Name("db"))->logicalSwitchIs(Name("ls"))->tunnelKeyIs(7);
    connect();
    reader->mount("/vgw", false);
    settle();
    auto const copy = Qor::dynamicCast<Qor::Dir>(heard.mounted);
    ASSERT_TRUE(copy);
    ASSERT_EQ(reader->closed(), String8());
    EXPECT_EQ(copy->entrys(), 3U);
    auto const mirror = Qor::dynamicCast<Vgw::Status>(copy->entry(Name("status")));
    ASSERT_TRUE(mirror && mirror->ovsdb());
    EXPECT_EQ(mirror->ovsdb()->logicalSwitch(Name("ls"))->tunnelKey(), 7U);
    auto const rows = Qor::dynamicCast<Qor::Dir>(copy->entry(Name("ucastMacsLocal")));
    ASSERT_TRUE(rows);
    auto const row = Qor::dynamicCast<Vgw::UcastMacsLocal>(rows->entry(Name("u1")));
    ASSERT_TRUE(row);
    EXPECT_EQ(row->macAddr(), Kelp::EthAddr("00:00:5e:00:53:01"));
    EXPECT_EQ(row->uuid(), "u1");
    EXPECT_EQ(rows->entryState(Name("u1")), Qor::Dir::EntryState::stale);
    macs->entryDel(Name("u1"));
    settle();
    EXPECT_EQ(rows->entrys(), 0U);
    EXPECT_EQ(reader->closed(), String8());
}

TEST_F(Sessions, EntryThatComesLaterArrivesWhole) {
    connect();
    reader->mount("/vgw", false);
    settle();
    auto const row = make<Vgw::LogicalSwitch>(Name("ls"));
    row->tunnelKeyIs(7);
    root->entryIs(Name("ls"), row);
    settle();
    auto const copy = Qor::dynamicCast<Qor::Dir>(heard.mounted);
    auto const here = Qor::dynamicCast<Vgw::LogicalSwitch>(copy->entry(Name("ls")));
    ASSERT_TRUE(here);
    EXPECT_EQ(here->tunnelKey(), 7U);
}

TEST_F(Sessions, UnmountedCopyStaysAsItWas) {
    connect();
    MountId const mount = reader->mount("/vgw/status", false);
    status->ovsdbIs(Name("db"))->logicalSwitchIs(Name("ls"));
    settle();
    auto const copy = Qor::dynamicCast<Vgw::Status>(heard.mounted);
    ASSERT_TRUE(copy->ovsdb());
    reader->unmount(mount);
    settle();
    EXPECT_EQ(reader->demuxer().adapters(), 0U);
    EXPECT_EQ(agent->demuxer().adapters(), 0U);
    status->runningIs(true);
    settle();
    EXPECT_FALSE(copy->running());
    EXPECT_TRUE(copy->ovsdb());
}

TEST_F(Sessions, EntityBelowAMountedOneIsTheSame) {
    connect();
    status->ovsdbIs(Name("db"));
    reader->mount("/vgw/status", false);
    settle();
    auto const copy = Qor::dynamicCast<Vgw::Status>(heard.mounted);
    MountId const below = reader->mount("/vgw/status/ovsdb", false);
    settle();
    EXPECT_EQ(heard.mounted, copy->ovsdb());
    EXPECT_EQ(reader->closed(), String8());
    reader->unmount(below);
    settle();
    status->ovsdb()->logicalSwitchIs(Name("ls"));
    settle();
    EXPECT_EQ(copy->ovsdb()->logicalSwitchs(), 1U);
}

TEST_F(Sessions, CutEndsBothWithANamedReasonAndTheCopyStays) {
    connect();
    reader->mount("/vgw/cliConfig", false);
    settle();
    near.cut();
    reader->service();
    agent->service();
    EXPECT_EQ(reader->closed(), "the connection was cut");
    EXPECT_EQ(agent->closed(), "the connection was cut");
    EXPECT_EQ(agent->demuxer().adapters(), 0U);
    EXPECT_TRUE(heard.mounted);
    cli->managerPortIs(3);
    EXPECT_EQ(cli->notifierList().count(), 0U);
}

TEST_F(Sessions, RowOfAnotherAddressUnderTheSameKeyIsNotTheCopyFromBeforeTheCut) {
    auto const macs = make<Qor::Dir>(Name("ucastMacsLocal"));
    root->entryIs(Name("ucastMacsLocal"), macs);
    macs->entryIs(Name("stays"), make<Vgw::UcastMacsLocal>(Kelp::EthAddr("00:00:5e:00:53:01")));
    macs->entryIs(Name("moves"), make<Vgw::UcastMacsLocal>(Kelp::EthAddr("00:00:5e:00:53:02")));
    connect();
    reader->mount("/vgw/ucastMacsLocal", false);
    settle();
    auto const copy = Qor::dynamicCast<Qor::Dir>(heard.mounted);
    auto const stays = copy->entry(Name("stays"));
    auto const moves = copy->entry(Name("moves"));
    reader.reset();
    agent.reset();
    macs->entryIs(Name("moves"), make<Vgw::UcastMacsLocal>(Kelp::EthAddr("00:00:5e:00:53:03")));
    connect();
    reader->mount("/vgw/ucastMacsLocal", false, copy);
    settle();
    EXPECT_EQ(copy->entry(Name("stays")), stays);
    EXPECT_NE(copy->entry(Name("moves")), moves);
    auto const moved = Qor::dynamicCast<Vgw::UcastMacsLocal>(copy->entry(Name("moves")));
    EXPECT_EQ(moved->macAddr(), Kelp::EthAddr("00:00:5e:00:53:03"));
    EXPECT_EQ(reader->closed(), String8());
}

TEST_F(Sessions, FaultOfThePeerIsToldAtBothEnds) {
    connect();
    settle();
    near.write(bytesOf("00000004ffffffff"));
    agent->service();
    EXPECT_EQ(agent->closed(), "a frame of 4 bytes, the least is 25");
    reader->service();
    EXPECT_EQ(reader->closed(), "the peer: a frame of 4 bytes, the least is 25");
}

TEST_F(Sessions, PeerThatSpeaksSomethingElseIsRefused) {
    connect();
    Qor::NboAttrLog::MemoryTransport a;
    Qor::NboAttrLog::MemoryTransport b;
    Qor::NboAttrLog::MemoryTransport::connect(a, b);
    Session session(Session::Config(), a, nullptr);
    b.write(bytesOf(frameHex(2, 0, 0,
                             "08"
                             "0000000000000000",
                             1, 0)));
    session.service();
    EXPECT_EQ(session.closed(), "the peer does not begin with a hello");
}

TEST_F(Sessions, PingMeasuresTheRoundTrip) {
    Qor::Seconds clock = 100;
    Qor::nowIs([&] { return clock; });
    connect();
    reader->ping();
    reader->service();
    clock = 100.25;
    agent->service();
    reader->service();
    Qor::nowIs({});
    EXPECT_EQ(heard.pong, 0.25);
}

TEST_F(Sessions, OneByteOfRoomIsEnough) {
    roomIs(1);
    connect();
    for (int i = 0; i < 20; ++i) {
        status->ovsdbIs(Name("db"))->logicalSwitchIs(Name(std::to_string(i).c_str()));
    }
    reader->mount("/vgw/status", false);
    for (int i = 0; i < 100000 && heard.synced == 0; ++i) {
        reader->service();
        agent->service();
    }
    auto const copy = Qor::dynamicCast<Vgw::Status>(heard.mounted);
    ASSERT_TRUE(copy);
    EXPECT_EQ(copy->ovsdb()->logicalSwitchs(), 20U);
}

TEST_F(Sessions, WhatIsGivenCountsTowardsNoQuotaOfThePeers) {
    auto const macs = make<Qor::Dir>(Name("macs"));
    root->entryIs(Name("macs"), macs);
    for (char const* const name : {"a", "b", "c"}) {
        macs->entryIs(Name(name), make<Vgw::LogicalSwitch>(Name(name)));
    }
    Session::Config agents;
    agents.peerMayWrite = true;
    agents.quota.entities = 2;
    SessionPair::connect(root, agents);
    reader->listenerIs(&heard);
    reader->mount("/vgw/macs", true);
    ASSERT_TRUE(settle());
    auto const copy = Qor::dynamicCast<Qor::Dir>(heard.mounted);
    copy->entryIs(Name("d"), make<Vgw::LogicalSwitch>(Name("d")));
    copy->entryIs(Name("e"), make<Vgw::LogicalSwitch>(Name("e")));
    ASSERT_TRUE(settle());
    EXPECT_EQ(agent->demuxer().peersEntities(), 2U);
    copy->entryDel(Name("d"));
    copy->entryIs(Name("f"), make<Vgw::LogicalSwitch>(Name("f")));
    ASSERT_TRUE(settle());
    EXPECT_EQ(closed(), "");
    EXPECT_EQ(macs->entrys(), 5U);
    copy->entryIs(Name("g"), make<Vgw::LogicalSwitch>(Name("g")));
    settle();
    EXPECT_EQ(agent->closed(), "more than 2 entities");
}

// A ring of one block is full as soon as something stands in it, so a pass over the attributes
// takes many turns; one that found no id for a target forgot that at the end of its turn.
TEST_F(Sessions, ReferenceWhoseTargetNeverComesIsNotTriedForEverInAShortRing) {
    auto const database = status->ovsdbIs(Name("db"));
    auto const elsewhere = make<Vgw::PhysicalSwitch>(Name("elsewhere"));
    database->physicalSwitchIs("away", elsewhere);
    Session::Config agents;
    agents.ringBlocks = 1;
    SessionPair::connect(root, agents);
    reader->listenerIs(&heard);
    reader->mount("/vgw/status", false);
    ASSERT_TRUE(settle());
    EXPECT_NE(heard.synced, 0U);
    EXPECT_EQ(closed(), "");
    auto const there = database->physicalSwitchRawIs(Name("there"));
    database->physicalSwitchIs("away", there);
    ASSERT_TRUE(settle());
    auto const copy = Qor::dynamicCast<Vgw::Status>(heard.mounted)->ovsdb();
    EXPECT_EQ(copy->physicalSwitch("away"), copy->physicalSwitchRaw(Name("there")));
}

TEST_F(Sessions, ReaderThatStopsCostsItsRingAndAMark) {
    connect();
    auto const db = status->ovsdbIs(Name("db"));
    auto const row = db->logicalSwitchIs(Name("ls"));
    reader->mount("/vgw/status", false);
    settle();
    roomIs(0);
    for (Qor::U32 i = 0; i < 1'000'000; ++i) row->tunnelKeyIs(i);
    agent->service();
    EXPECT_LE(agent->counters().flows, 1U);
    EXPECT_LE(agent->demuxer().out()->written() - agent->counters().bytesOut,
              8U * Qor::NboAttrLog::Out::blockSize);
    roomIs(1 << 20);
    settle();
    auto const copy = Qor::dynamicCast<Vgw::Status>(heard.mounted);
    EXPECT_EQ(copy->ovsdb()->logicalSwitch(Name("ls"))->tunnelKey(), 999'999U);
}

TEST_F(Sessions, NothingGoesOverAtRest) {
    connect();
    reader->mount("/vgw", true);
    settle();
    auto const before = agent->counters().bytesOut + reader->counters().bytesOut;
    settle();
    EXPECT_EQ(agent->counters().bytesOut + reader->counters().bytesOut, before);
}

TEST_F(Sessions, ReasonOfAPeerThatHasLeftIsReadAlthoughNothingCanBeSentToIt) {
    int ends[2];
    ASSERT_EQ(::socketpair(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK, 0, ends), 0);
    Qor::NboAttrLog::FdTransport source(ends[0]);
    Qor::NboAttrLog::FdTransport target(ends[1]);
    Session::Config config;
    config.side = Side::accepting;
    Session refusing(config, source, root);
    refusing.close("not you");
    refusing.service();
    ::close(ends[0]);
    Session refused(Session::Config(), target, nullptr);
    EXPECT_EQ(target.write("x"), 1U);
    for (int turn = 0; turn < 3; ++turn) refused.service();
    EXPECT_EQ(refused.closed(), "the peer: not you");
    ::close(ends[1]);
}

TEST_F(Sessions, RunOverASocketPair) {
    int ends[2];
    ASSERT_EQ(socketpair(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK, 0, ends), 0);
    Qor::NboAttrLog::FdTransport a(ends[0]);
    Qor::NboAttrLog::FdTransport b(ends[1]);
    Session::Config agents;
    agents.side = Side::accepting;
    Session far_end(agents, a, root);
    Session near_end(Session::Config(), b, nullptr);
    near_end.listenerIs(&heard);
    near_end.mount("/vgw/cliConfig", false);
    for (int i = 0; i < 20; ++i) {
        near_end.service();
        far_end.service();
    }
    EXPECT_TRUE(heard.mounted);
    EXPECT_NE(heard.synced, 0U);
    close(ends[1]);
    far_end.service();
    EXPECT_EQ(far_end.closed(), "the peer has closed the connection");
    close(ends[0]);
}

}  // namespace
