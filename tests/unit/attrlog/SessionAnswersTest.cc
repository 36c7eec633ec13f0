// What a peer asks of a session: nothing that it sends leaves service() as an exception, what can't
// be answered is refused by name, and one that asks much holds up nobody.
#include "Records.h"

#include <qor/attrlog/dir/DirAdapter.h>

#include <tests/support/SessionPair.h>
#include <vgw/attrlog/LogicalSwitch.h>
#include <vgw/attrlog/Status.h>

#include <gtest/gtest.h>

#include <sys/socket.h>
#include <unistd.h>

#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using Qor::make;
using Qor::Name;
using Qor::String8;
using namespace Qor::NboAttrLog;

// What one end is told.
struct AnswersHeard : SessionListener {
    void onMounted(MountId mount, Qor::Ptr<Qor::Entity> const& entity) override {
        mounted[mount] = entity;
    }
    void onRefused(MountId mount, String8 const& reason) override { refused[mount] = reason; }
    void onReturned(CallId, bool isDone, String8 const& text) override {
        if (!isDone) notCalled = text;
    }
    void onDigested(DigestPage const&, StateDigest const& digest, String8 const& fault) override {
        digests.push_back(digest);
        faults.push_back(fault);
    }
    void onPong(Qor::Seconds) override { ++pongs; }

    std::map<MountId, Qor::Ptr<Qor::Entity>> mounted;
    std::map<MountId, String8> refused;
    String8 notCalled;
    std::vector<StateDigest> digests;
    std::vector<String8> faults;
    unsigned pongs = 0;
};

// Throws where it is asked for one path.
struct ThrowingOwner : SessionListener {
    String8 onAsked(String8 const& path, bool, Qor::Entity&) override {
        if (path == "/vgw/status/ovsdb") throw std::runtime_error("not today");
        return {};
    }
};

// A tree's owner, and one who takes frames as short as may be.
class SessionAnswers : public testing::Test, protected SessionPair {
  protected:
    SessionAnswers() {
        root->entryIs(Name("status"), status);
        status->ovsdbIs(Name("db"));
        Session::Config config;
        config.peerMayWrite = true;
        Session::Config readers;
        readers.greatestFrame = leastGreatestFrame;
        connect(root, config, readers);
        reader->listenerIs(&heard);
    }
    void settle() {
        for (int turn = 0; turn < 20; ++turn) {
            reader->service();
            ASSERT_NO_THROW(agent->service());
        }
    }
    void expectOpen() const {
        EXPECT_EQ(agent->closed(), String8());
        EXPECT_EQ(reader->closed(), String8());
    }
    static String8 longPath() { return std::string_view("/vgw/" + std::string(80000, 'a')); }

    Qor::Ptr<Qor::Dir> root = make<Qor::Dir>(Name("vgw"));
    Qor::Ptr<Vgw::Status> status = make<Vgw::Status>(Name("status"));
    AnswersHeard heard;
    ThrowingOwner thrower;
};

TEST_F(SessionAnswers, DigestOfAPathLongerThanAFrameIsRefusedInShort) {
    reader->askForDigest({longPath(), 0, "", 1});
    reader->askForDigest({"/vgw/status", 0, "", 1});
    settle();
    ASSERT_EQ(heard.faults.size(), 2U);
    EXPECT_EQ(heard.faults[0].length(), 1024U);
    EXPECT_TRUE(heard.faults[0].view().starts_with("/vgw/aaa"));
    EXPECT_TRUE(heard.faults[0].view().ends_with("..."));
    EXPECT_EQ(heard.faults[1], String8());
    expectOpen();
}

TEST_F(SessionAnswers, DigestWhoseNextKeyIsLongerThanAFrameIsRefusedByName) {
    auto const rows = status->ovsdb();
    rows->logicalSwitchIs(Name(std::string_view(std::string(80000, 'a'))));
    rows->logicalSwitchIs(Name(std::string_view(std::string(80000, 'b'))));
    reader->askForDigest({"/vgw/status/ovsdb", 263, "", 1});
    settle();
    ASSERT_EQ(heard.faults.size(), 1U);
    EXPECT_TRUE(heard.faults[0].view().ends_with("the greatest is 65536")) << heard.faults[0];
    EXPECT_EQ(heard.digests[0].rows, 0U);
    expectOpen();
}

TEST_F(SessionAnswers, MountOrCallOfAPathLongerThanAFrameIsRefusedInShort) {
    MountId const mount = reader->mount(longPath(), false);
    reader->call(longPath(), "reset", {});
    settle();
    EXPECT_EQ(heard.refused[mount].length(), 1024U);
    EXPECT_EQ(heard.notCalled.length(), 1024U);
    expectOpen();
}

// The reason is told to who sent the name, whose frames may be shorter than it is.
TEST_F(SessionAnswers, FaultThatHoldsALongNameOfThePeersIsToldInShort) {
    MemoryTransport peer;
    MemoryTransport own;
    MemoryTransport::connect(peer, own);
    Session::Config config;
    config.takesTypes = true;
    Session session(config, own, nullptr);
    peer.write(bytesOf(frameHex(2, 0, 0, "01" + hexOf("QORL") + "00000002" + "00010000", 1, 0)));
    session.service();
    std::string const name = "00013880" + hexOf(std::string(80000, 'n'));
    peer.write(bytesOf(frameHex(2, 0, 0, "0b00000001" + name + "00000000" + "07", 1, 0)));
    ASSERT_NO_THROW(session.service());
    EXPECT_TRUE(session.closed().view().starts_with("a type of an unknown kind: nnn"))
        << session.closed();
    EXPECT_EQ(session.closed().length(), 1024U);
    unsigned char told[4096];
    std::size_t const count = peer.read(told);
    std::string_view const wire(reinterpret_cast<char const*>(told), count);
    EXPECT_NE(wire.find("a type of an unknown kind: nnn"), std::string_view::npos);
}

TEST_F(SessionAnswers, ReasonIsCutBetweenCharacters) {
    std::string reason = "x";
    while (reason.size() < 2000) reason += "\xc3\xa4";
    reader->close(std::string_view(reason));
    EXPECT_EQ(reader->closed().view(), reason.substr(0, 1021) + "...");
    reason.erase(0, 1);
    agent->close(std::string_view(reason));
    EXPECT_EQ(agent->closed().view(), reason.substr(0, 1020) + "...");
}

TEST_F(SessionAnswers, MountThatCanNotBeGivenLaterIsRefusedAndThoseBesideItAreGiven) {
    agent->listenerIs(&thrower);
    for (int i = 0; i < 3000; ++i) {
        std::string const name = "ls" + std::to_string(i);
        status->ovsdb()
            ->logicalSwitchIs(Name(std::string_view(name)))
            ->descIs(std::string_view(std::string(300, 'x')));
    }
    near.roomIs(1000);
    MountId const above = reader->mount("/vgw", false);
    MountId const bad = reader->mount("/vgw/status/ovsdb", false);
    MountId const good = reader->mount("/vgw/status/ovsdb/logicalSwitch/ls2999", false);
    reader->service();
    agent->service();
    ASSERT_TRUE(agent->demuxer().owes());
    near.roomIs(~std::size_t{0});
    settle();
    EXPECT_TRUE(heard.mounted[above]);
    EXPECT_EQ(heard.refused[bad], "not today");
    EXPECT_TRUE(heard.mounted[good]);
    expectOpen();
}

TEST_F(SessionAnswers, MountThatIsGivenBackAsSoonAsItIsToldLeavesNoAdapter) {
    struct GivesBack : SessionListener {
        void onMounted(MountId mount, Qor::Ptr<Qor::Entity> const& entity) override {
            session->unmount(mount);
            told = entity;
        }
        Session* session = nullptr;
        Qor::Ptr<Qor::Entity> told;
    } listener;
    listener.session = reader.get();
    reader->listenerIs(&listener);
    reader->mount("/vgw/status", false);
    status->runningIs(true);
    settle();
    ASSERT_TRUE(Qor::dynamicCast<Vgw::Status>(listener.told));
    EXPECT_FALSE(Qor::dynamicCast<Vgw::Status>(listener.told)->running());
    EXPECT_EQ(reader->demuxer().adapters(), 0U);
    EXPECT_EQ(agent->demuxer().adapters(), 0U);
    expectOpen();
}

TEST_F(SessionAnswers, OneDigestIsToldInEachTurn) {
    for (int i = 0; i < 5; ++i) reader->askForDigest({"/vgw/status/ovsdb", 263, "", 10});
    reader->service();
    for (unsigned turn = 1; turn <= 5; ++turn) {
        agent->service();
        EXPECT_EQ(agent->wantsWrite(), turn < 5) << turn;
        reader->service();
        EXPECT_EQ(heard.digests.size(), turn);
    }
    expectOpen();
}

TEST_F(SessionAnswers, SyncModeReachesTheAdaptersUnderTheSameIdOnAllConnections) {
    auto const& manager = Qor::globalNboAttrLogDemuxerManager();
    ASSERT_EQ(manager.nboDemuxers(), 2U);
    Session::Config config;
    config.side = Demuxer::Side::accepting;
    config.peerMayWrite = true;
    std::vector<std::unique_ptr<Session>> sessions;
    MemoryTransport peers[2];
    MemoryTransport owns[2];
    for (int i = 0; i < 2; ++i) {
        MemoryTransport::connect(peers[i], owns[i]);
        sessions.push_back(std::make_unique<Session>(config, owns[i], root));
        peers[i].write(
            bytesOf(frameHex(2, 0, 0, "01" + hexOf("QORL") + "00000002" + "00100000", 1, 0) +
                    frameHex(2, 0, 0,
                             "020000000101"
                             "0000000b" +
                                 hexOf("/vgw/status"),
                             1, 0)));
        sessions[i]->service();
    }
    EXPECT_EQ(manager.nboDemuxers(), 4U);
    auto const adapter = [&](int i) {
        return status->qorNboAttrLogSa(Qor::Ptr<Out const>(sessions[i]->demuxer().out()));
    };
    ASSERT_TRUE(adapter(0) && adapter(1));
    ASSERT_EQ(adapter(0)->entityId(), adapter(1)->entityId());
    peers[0].write(bytesOf(record(adapter(0)->entityId().value(), 135, "00000002")));
    sessions[0]->service();
    EXPECT_EQ(sessions[0]->closed(), String8());
    EXPECT_EQ(adapter(0)->syncMode(), Qor::StreamAdapter::resync);
    EXPECT_EQ(adapter(1)->syncMode(), Qor::StreamAdapter::resync);
    sessions.clear();
    EXPECT_EQ(manager.nboDemuxers(), 2U);
}

// Each end has asked, written what its ring holds, and asked again: questions are the first that
// the other meets, and what its own ring in takes does not help.
TEST_F(SessionAnswers, TwoThatAskEachOtherWithFullRingsGoOn) {
    constexpr unsigned rows = 3000;
    constexpr unsigned pings = 5000;
    auto const ping = [&] {
        for (unsigned nth = 0; nth < pings / 2; ++nth) {
            agent->ping();
            reader->ping();
        }
    };
    AnswersHeard heardByAgent;
    agent->listenerIs(&heardByAgent);
    auto const nameOf = [](unsigned row) {
        return Name(std::string_view("ls" + std::to_string(row)));
    };
    for (unsigned row = 0; row < rows; ++row) status->ovsdb()->logicalSwitchIs(nameOf(row));
    MountId const mount = reader->mount("/vgw/status", true);
    settle();
    auto const copy = Qor::dynamicCast<Vgw::Status>(heard.mounted[mount]);
    ASSERT_TRUE(copy && copy->ovsdb() && copy->ovsdb()->logicalSwitchs() == rows);
    near.roomIs(0);
    far.roomIs(0);
    ping();
    for (unsigned row = 0; row < rows; ++row) {
        auto const& writer = row % 2 == 0 ? *status : *copy;
        writer.ovsdb()->logicalSwitch(nameOf(row))->descIs(std::string_view(std::string(300, 'x')));
    }
    ping();
    ASSERT_LT(agent->demuxer().out()->freeBytes(), Out::blockSize);
    ASSERT_LT(reader->demuxer().out()->freeBytes(), Out::blockSize);
    near.roomIs(5000);
    far.roomIs(5000);
    for (int turn = 0; turn < 5000; ++turn) {
        agent->service();
        reader->service();
    }
    expectOpen();
    EXPECT_EQ(heard.pongs, pings);
    EXPECT_EQ(heardByAgent.pongs, pings);
    EXPECT_FALSE(agent->wantsWrite() || reader->wantsWrite());
    for (unsigned row = 0; row < rows; ++row) {
        ASSERT_EQ(status->ovsdb()->logicalSwitch(nameOf(row))->desc().length(), 300U);
        ASSERT_EQ(copy->ovsdb()->logicalSwitch(nameOf(row))->desc().length(), 300U);
    }
}

TEST_F(SessionAnswers, ConnectingEndEndsByNameWhenItIsAskedForMoreThanIsTaken) {
    far.roomIs(0);
    agent->listenerIs(nullptr);
    for (int i = 0; i < 40000; ++i) agent->ping();
    for (int turn = 0; turn < 20; ++turn) {
        agent->service(50000);
        reader->service();
        ASSERT_LE(reader->demuxer().out()->written() - reader->counters().bytesOut,
                  17U * Out::blockSize);
    }
    EXPECT_EQ(reader->closed(), "the peer asks for more than it takes");
    far.roomIs(~std::size_t{0});
    settle();
    EXPECT_EQ(agent->closed(), "the peer: the peer asks for more than it takes");
}

// Its questions stand in the way of its end, until nobody waits for their answers.
TEST_F(SessionAnswers, PeerThatAsksWithoutReadingAndLeavesEndsItsSession) {
    int ends[2];
    ASSERT_EQ(::socketpair(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK, 0, ends), 0);
    FdTransport transport(ends[0]);
    Session::Config config;
    config.side = Demuxer::Side::accepting;
    Session session(config, transport, root);
    std::string wire =
        bytesOf(frameHex(2, 0, 0, "01" + hexOf("QORL") + "00000002" + "00100000", 1, 0));
    for (int i = 0; i < 40000; ++i) wire += bytesOf(frameHex(2, 0, 0, "080000000000000000", 1, 0));
    std::size_t sent = 0;
    for (int turn = 0; turn < 200; ++turn) {
        long const count = ::write(ends[1], wire.data() + sent, wire.size() - sent);
        sent += count > 0 ? static_cast<std::size_t>(count) : 0;
        session.service();
    }
    EXPECT_LT(sent, wire.size());
    EXPECT_FALSE(session.hasRoom());
    EXPECT_EQ(session.closed(), String8());
    ::close(ends[1]);
    for (int turn = 0; turn < 20; ++turn) session.service();
    EXPECT_TRUE(session.closed() == "the peer has closed the connection" ||
                session.closed() == "read: Connection reset by peer")
        << session.closed();
    ::close(ends[0]);
}

// Asks for the next pong in each, so often.
struct AsksOn : Qor::NboAttrLog::SessionListener {
    void onPong(Qor::Seconds) override {
        if (++pongs < 12'000) session->ping();
    }
    Session* session = nullptr;
    int pongs = 0;
};

TEST_F(SessionAnswers, WhatTheConnectingEndAsksOfItselfIsNoAnswer) {
    AsksOn asking;
    asking.session = reader.get();
    reader->listenerIs(&asking);
    reader->ping();
    while (asking.pongs < 12'000) settle();
    far.roomIs(0);
    while (reader->demuxer().out()->freeBytes() >= Qor::NboAttrLog::Out::blockSize) reader->ping();
    agent->ping();
    settle();
    expectOpen();
    reader->listenerIs(nullptr);
}

}  // namespace
