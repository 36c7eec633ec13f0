// A served tree whose system calls fail: to take a connection, and to read and write one.
#include "FailingCalls.h"

#include <vgwd/serve/Server.h>

#include <qor/attrlog/session/Session.h>
#include <qor/tree/Dir.h>
#include <tests/support/Settings.h>
#include <vgw/agent/CliConfig.h>

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>
#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <functional>

namespace {

using Calls::Call;
using Qor::NboAttrLog::FdTransport;
using Qor::NboAttrLog::Session;
using std::chrono::milliseconds;

struct Anyone : Vgwd::ServerListener {
    std::string whyReadOnly(std::string const&, Qor::Entity&) override { return {}; }
    std::string whyNotCalled(std::string const&, Qor::Entity&) override { return {}; }
    std::size_t rowsWaiting(std::string const&) override { return 0; }
    void onWritten(Vgwd::Peer const&, Qor::Entity&, Qor::AttributeId) override {}
    void onTraffic(Vgwd::Peer const&) override {}
};

// A reader of the tree that the server serves.
class Caller {
  public:
    explicit Caller(std::string const& path) : socket_(::socket(AF_UNIX, SOCK_STREAM, 0)) {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        path.copy(address.sun_path, sizeof address.sun_path - 1);
        EXPECT_EQ(::connect(socket_, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
        ::fcntl(socket_, F_SETFL, O_NONBLOCK);
        session_.emplace(Session::Config{}, transport_, nullptr);
        mount_ = session_->mount("/vgw/cliConfig", false);
    }
    ~Caller() {
        session_.reset();
        ::close(socket_);
    }
    Caller(Caller const&) = delete;
    Caller& operator=(Caller const&) = delete;

    void serve() { session_->service(); }
    bool isServed() const { return session_->mounted(mount_) != nullptr; }
    bool isOver() const { return session_->closed().length() != 0; }
    int socket() const { return socket_; }

  private:
    int const socket_;
    FdTransport transport_{socket_};
    std::optional<Session> session_;
    Qor::NboAttrLog::MountId mount_ = 0;
};

std::string newDirectory() {
    std::string path = (std::filesystem::temp_directory_path() / "vgw-calls-XXXXXX").string();
    return ::mkdtemp(path.data());
}

class ServerCalls : public testing::Test {
  protected:
    ServerCalls() {
        root_->entryIs("cliConfig", Vgw::cliConfigFactory("cliConfig"));
        Vgwd::ServeOptions options;
        options.runDirectory = directory_;
        options.access.owner = ::geteuid();
        options.listen = {Vgwd::parseListenAddress("unix:" + socket_)};
        server_.start(options);
    }
    ~ServerCalls() override {
        Calls::failNone();
        server_.stop("over");
        loop_.restart();
        loop_.poll();
        std::filesystem::remove_all(directory_);
    }
    bool becomes(Caller& caller, std::function<bool()> const& holds) {
        auto const end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
        while (!holds()) {
            if (std::chrono::steady_clock::now() > end) return false;
            caller.serve();
            loop_.restart();
            loop_.run_one_for(milliseconds(5));
        }
        return true;
    }
    void expectServed() {
        Caller caller(socket_);
        EXPECT_TRUE(becomes(caller, [&] { return caller.isServed(); }));
    }
    // A connection with what went wrong at the server's end of it; whether anything did.
    bool isHit(Call call, int error, std::uint64_t nth) {
        {
            Caller caller(socket_);
            Calls::failAt({call, error, nth, 1, caller.socket()});
            auto const isDone = [&] { return caller.isServed() || caller.isOver(); };
            EXPECT_TRUE(becomes(caller, isDone));
            Calls::failNone();
            EXPECT_TRUE(caller.isServed() || (Calls::hasFailed() && Calls::isEnd(error)));
        }
        Caller other(socket_);
        EXPECT_TRUE(becomes(other, [&] { return other.isServed(); }));
        EXPECT_TRUE(becomes(other, [&] { return server_.peers().size() == 1; }));
        return Calls::hasFailed();
    }
    void failEach(Call call) {
        for (int const error : {EINTR, EAGAIN, Calls::oneByte, EPIPE, ECONNRESET, ETIMEDOUT}) {
            std::uint64_t nth = 1;
            for (; !HasFailure(); nth += Settings::volume(1, 3, 3)) {
                SCOPED_TRACE("call " + std::to_string(nth) + ", error " + std::to_string(error));
                if (!isHit(call, error, nth)) break;
            }
            EXPECT_GT(nth, 1U);
        }
    }
    std::ptrdiff_t saidOfConnections(std::string const& why = {}) const {
        return std::count_if(said_.begin(), said_.end(), [&](std::string const& text) {
            return text.find("connections can't be taken: " + why) != std::string::npos;
        });
    }

    std::string directory_ = newDirectory();
    std::string socket_ = directory_ + "/s";
    asio::io_context loop_{1};
    Qor::Dir::Ptr root_ = Qor::make<Qor::Dir>("vgw");
    Anyone listener_;
    std::vector<std::string> said_;
    Vgwd::Server server_{loop_, root_, listener_,
                         [this](auto, std::string const& text) { said_.push_back(text); }};
};

TEST_F(ServerCalls, WhoComesWhileThereIsNoDescriptorIsTakenAMomentLater) {
    for (int const error : {EMFILE, ENFILE, ENOBUFS, ENOMEM}) {
        said_.clear();
        Calls::failAt({Call::accept, error, 1, 3});
        auto const start = std::chrono::steady_clock::now();
        expectServed();
        EXPECT_TRUE(Calls::hasFailed());
        EXPECT_GE(std::chrono::steady_clock::now() - start, milliseconds(300)) << "it spins";
        EXPECT_EQ(saidOfConnections(std::strerror(error)), 1) << "once, and not each time";
    }
}

TEST_F(ServerCalls, WantOfDescriptorsIsSaidAgainWhenItComesAgain) {
    for (int times = 1; times <= 3; ++times) {
        Calls::failAt({Call::accept, EMFILE});
        expectServed();
        EXPECT_EQ(saidOfConnections(), times);
    }
}

TEST_F(ServerCalls, WhoLeavesWhileBeingTakenKeepsNobodyElseOut) {
    for (int const error : {EINTR, ECONNABORTED}) {
        Calls::failAt({Call::accept, error, 1, 5});
        expectServed();
        EXPECT_TRUE(Calls::hasFailed());
        EXPECT_EQ(saidOfConnections(), 0);
    }
}

TEST_F(ServerCalls, EachWriteMayEndInEachWay) { failEach(Call::send); }

TEST_F(ServerCalls, EachReadMayEndInEachWay) { failEach(Call::recv); }

}  // namespace
