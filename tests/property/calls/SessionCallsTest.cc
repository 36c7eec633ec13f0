// Two processes' sessions over a socket, each of whose system calls fails in turn: what is for
// later changes nothing; what ends the connection is told at both ends, and a new one works.
#include "FailingCalls.h"

#include <qor/attrlog/session/Session.h>
#include <qor/tree/Dir.h>
#include <tests/support/Settings.h>
#include <vgw/agent/Status.h>

#include <gtest/gtest.h>

#include <sys/socket.h>
#include <unistd.h>
#include <array>
#include <cerrno>
#include <memory>
#include <string>

namespace {

using Calls::Call;
using Qor::make;
using Qor::Name;
using Qor::NboAttrLog::FdTransport;
using Qor::NboAttrLog::Session;

constexpr std::array<int, 6> outcomes{EINTR, EAGAIN, Calls::oneByte, EPIPE, ECONNRESET, ETIMEDOUT};

class SocketedSessions {
  public:
    SocketedSessions(Qor::Ptr<Qor::Dir> const& root, Vgw::Status::Ptr const& copy) {
        EXPECT_EQ(::socketpair(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK, 0, ends_.data()), 0);
        // Some of what is sent has to wait.
        int const room = 4096;
        for (int const end : ends_) ::setsockopt(end, SOL_SOCKET, SO_SNDBUF, &room, sizeof room);
        near_ = std::make_unique<FdTransport>(ends_[0]);
        far_ = std::make_unique<FdTransport>(ends_[1]);
        Session::Config config;
        config.peerMayWrite = true;
        reader_ = std::make_unique<Session>(config, *near_, nullptr);
        config.side = Qor::NboAttrLog::Demuxer::Side::accepting;
        agent_ = std::make_unique<Session>(config, *far_, root);
        reader_->mount("/vgw/status", true, copy);
    }
    ~SocketedSessions() {
        reader_.reset();
        agent_.reset();
        for (int const end : ends_) ::close(end);
    }
    SocketedSessions(SocketedSessions const&) = delete;
    SocketedSessions& operator=(SocketedSessions const&) = delete;

    void serve() {
        for (int turn = 0; turn < 12; ++turn) {
            agent_->service(20000);
            reader_->service(20000);
        }
    }
    std::string agentsEnd() const { return std::string(agent_->closed().view()); }
    std::string readersEnd() const { return std::string(reader_->closed().view()); }

  private:
    std::array<int, 2> ends_{};
    std::unique_ptr<FdTransport> near_;
    std::unique_ptr<FdTransport> far_;
    std::unique_ptr<Session> reader_;
    std::unique_ptr<Session> agent_;
};

class SessionCalls : public testing::Test {
  protected:
    SessionCalls() { root_->entryIs(Name("status"), source_); }
    ~SessionCalls() override { Calls::failNone(); }

    // Both ends write while they are connected.
    void play(SocketedSessions& sessions) {
        sessions.serve();
        source_->ovsdbIs(Name("db"))
            ->logicalSwitchIs(Name("ls"))
            ->descIs(std::string_view(std::string(20000, 'd')));
        sessions.serve();
        if (auto const db = copy_->ovsdb()) db->logicalSwitchIs(Name("far"))->tunnelKeyIs(7);
        sessions.serve();
    }
    void expectEqual() {
        ASSERT_TRUE(copy_->ovsdb());
        auto const here = source_->ovsdb();
        auto const there = copy_->ovsdb();
        ASSERT_EQ(there->logicalSwitchs(), here->logicalSwitchs());
        for (auto at = here->logicalSwitchIterator(); at; ++at) {
            auto const row = there->logicalSwitch(at.key());
            ASSERT_TRUE(row);
            ASSERT_EQ(row->desc(), at.value()->desc());
            ASSERT_EQ(row->tunnelKey(), at.value()->tunnelKey());
        }
    }
    void expectEnds(SocketedSessions& sessions, int error) {
        bool const isOver = Calls::hasFailed() && Calls::isEnd(error);
        EXPECT_EQ(!sessions.agentsEnd().empty(), isOver) << sessions.agentsEnd();
        EXPECT_EQ(!sessions.readersEnd().empty(), isOver) << sessions.readersEnd();
    }
    // Fails the nth of such calls; whether there was one.
    bool playFailing(Call call, int error, std::uint64_t nth) {
        source_->ovsdbDel();
        copy_->ovsdbDel();
        {
            Calls::failAt({call, error, nth});
            SocketedSessions sessions(root_, copy_);
            play(sessions);
            Calls::failNone();
            sessions.serve();
            expectEnds(sessions, error);
            if (!Calls::isEnd(error)) expectEqual();
        }
        SocketedSessions again(root_, copy_);
        play(again);
        EXPECT_EQ(again.agentsEnd() + again.readersEnd(), "");
        expectEqual();
        return Calls::hasFailed();
    }
    void failEach(Call call) {
        for (int const error : outcomes) {
            std::uint64_t nth = 1;
            for (; !HasFailure(); nth += Settings::volume(1, 3, 3)) {
                SCOPED_TRACE("call " + std::to_string(nth) + ", error " + std::to_string(error));
                if (!playFailing(call, error, nth)) break;
            }
            EXPECT_GT(nth, 10U);
        }
    }

    Qor::Ptr<Qor::Dir> root_ = make<Qor::Dir>(Name("vgw"));
    Vgw::Status::Ptr source_ = Vgw::statusFactory(Name("status"));
    Vgw::Status::Ptr copy_ = Vgw::statusFactory(Name("status"));
};

TEST_F(SessionCalls, EachWriteMayEndInEachWay) { failEach(Call::send); }

TEST_F(SessionCalls, EachReadMayEndInEachWay) { failEach(Call::read); }

}  // namespace
