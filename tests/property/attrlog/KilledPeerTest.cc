// A process is killed at each write of a mount, on either end: the other says why its session has
// ended and goes on; a new process in the place of the old one converges.
#include <qor/attrlog/session/Session.h>
#include <qor/tree/Dir.h>
#include <vgw/agent/Status.h>

#include <gtest/gtest.h>

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>
#include <csignal>

#include <cstdlib>

namespace {

using Qor::make;
using Qor::Name;
using Qor::NboAttrLog::FdTransport;
using Qor::NboAttrLog::Session;
using Side = Qor::NboAttrLog::Demuxer::Side;

constexpr unsigned switches = 40;

// Kills its process in the nth write, behind a part of the bytes.
class KillingTransport final : public Qor::NboAttrLog::Transport {
  public:
    KillingTransport(int fd, unsigned nth) : inner_(fd), left_(nth) {}
    std::size_t write(std::string_view bytes) override {
        std::string_view const piece = bytes.substr(0, 97);  // many writes
        if (left_ != 0 && --left_ == 0) {
            inner_.write(piece.substr(0, piece.size() / 2));
            ::raise(SIGKILL);
        }
        return inner_.write(piece);
    }
    std::size_t read(std::span<unsigned char> room) override { return inner_.read(room); }
    Qor::String8 closed() const override { return inner_.closed(); }

  private:
    FdTransport inner_;
    unsigned left_;
};

Qor::Ptr<Qor::Dir> tree() {
    auto const root = make<Qor::Dir>(Name("vgw"));
    auto const status = Vgw::statusFactory(Name("status"));
    root->entryIs(Name("status"), status);
    auto const db = status->ovsdbIs(Name("db"));
    for (unsigned i = 0; i < switches; ++i) {
        std::string const name = "ls" + std::to_string(i);
        db->logicalSwitchIs(Name(std::string_view(name)))->tunnelKeyIs(i);
    }
    return root;
}

void pump(Session& session, int fd) {
    session.service();
    pollfd waiting{fd, static_cast<short>(session.wantsWrite() ? POLLIN | POLLOUT : POLLIN), 0};
    ::poll(&waiting, 1, 20);
}

// The child's part; never returns. Two seconds at most: nothing is left running.
[[noreturn]] void runAgent(int fd, unsigned killedAt) {
    ::alarm(20);
    KillingTransport transport(fd, killedAt);
    Session::Config config;
    config.side = Side::accepting;
    Session session(config, transport, tree());
    while (session.closed().length() == 0) pump(session, fd);
    ::_exit(0);
}
[[noreturn]] void runReader(int fd, unsigned killedAt) {
    ::alarm(20);
    KillingTransport transport(fd, killedAt);
    Session session({}, transport, nullptr);
    session.mount("/vgw/status", false, Vgw::statusFactory(Name("status")));
    while (session.closed().length() == 0) pump(session, fd);
    ::_exit(0);
}

struct Child {
    template <class Run>
    Child(Run const& run, unsigned killedAt) {
        int ends[2];
        if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK, 0, ends) != 0) std::abort();
        pid = ::fork();
        if (pid == 0) {
            ::close(ends[0]);
            run(ends[1], killedAt);
        }
        ::close(ends[1]);
        fd = ends[0];
    }
    ~Child() {
        ::close(fd);
        ::kill(pid, SIGKILL);
        int status = 0;
        ::waitpid(pid, &status, 0);
    }
    Child(Child const&) = delete;
    Child& operator=(Child const&) = delete;

    int fd = -1;
    pid_t pid = -1;
};

unsigned sum(Vgw::Status const& copy) {
    unsigned total = 0;
    auto const db = copy.ovsdb();
    if (!db) return total;
    for (auto at = db->logicalSwitchIterator(); at; ++at) {
        total += at.value()->tunnelKey() < switches ? at.value()->tunnelKey() + 1 : 0;
    }
    return total;
}

constexpr unsigned wholeSum = switches * (switches + 1) / 2;

// Mounts from a child that is killed at its nth write, into the copy. Whether it came to be whole.
bool mountFrom(Vgw::Status::Ptr const& copy, unsigned killedAt) {
    Child const child(runAgent, killedAt);
    FdTransport transport(child.fd);
    Session session({}, transport, nullptr);
    session.mount("/vgw/status", false, copy);
    for (int turn = 0; turn < 2000; ++turn) {
        pump(session, child.fd);
        if (session.closed().length() != 0) return false;
        if (killedAt == 0 && sum(*copy) == wholeSum) return true;
    }
    return sum(*copy) == wholeSum;
}

class KilledPeer : public testing::Test {
  protected:
    KilledPeer() { ::signal(SIGPIPE, SIG_IGN); }
};

TEST_F(KilledPeer, ReaderGoesOnAndARestartConverges) {
    auto const copy = Vgw::statusFactory(Name("status"));
    unsigned last = 0;
    for (unsigned nth = 1; nth < 60; ++nth) {
        SCOPED_TRACE("write " + std::to_string(nth));
        bool const isOver = mountFrom(copy, nth);
        ASSERT_FALSE(isOver);
        unsigned const now = sum(*copy);
        ASSERT_GE(now, last) << "what had come has gone";
        last = now;
        if (now == wholeSum) break;
    }
    EXPECT_TRUE(mountFrom(copy, 0));
    EXPECT_EQ(sum(*copy), wholeSum);
}

TEST_F(KilledPeer, AgentGoesOnAndServesTheNext) {
    auto const root = tree();
    for (unsigned nth = 1; nth < 4; ++nth) {
        SCOPED_TRACE("write " + std::to_string(nth));
        Child const child(runReader, nth);
        FdTransport transport(child.fd);
        Session::Config config;
        config.side = Side::accepting;
        Session session(config, transport, root);
        for (int turn = 0; turn < 30 && session.closed().length() == 0; ++turn) {
            pump(session, child.fd);
        }
        EXPECT_TRUE(nth > 1 || session.closed().length() != 0);
    }
    int ends[2];
    ASSERT_EQ(::socketpair(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK, 0, ends), 0);
    FdTransport near(ends[0]);
    FdTransport far(ends[1]);
    auto const copy = Vgw::statusFactory(Name("status"));
    Session reader({}, near, nullptr);
    Session::Config config;
    config.side = Side::accepting;
    Session agent(config, far, root);
    reader.mount("/vgw/status", false, copy);
    for (int turn = 0; turn < 100 && sum(*copy) != wholeSum; ++turn) {
        agent.service();
        reader.service();
    }
    EXPECT_EQ(sum(*copy), wholeSum);
    ::close(ends[0]);
    ::close(ends[1]);
}

}  // namespace
