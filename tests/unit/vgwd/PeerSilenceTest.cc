// A served tree and its peers in one process and one thread, with short times.
#include <vgwd/serve/Server.h>

#include <qor/attrlog/session/Session.h>
#include <qor/tree/Dir.h>
#include <vgw/agent/CliConfig.h>

#include <gtest/gtest.h>

#include <fcntl.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>
#include <cstdlib>
#include <filesystem>
#include <functional>

namespace Vgwd {
namespace {

using Qor::NboAttrLog::Session;
using std::chrono::milliseconds;

struct Listener : ServerListener {
    std::string whyReadOnly(std::string const&, Qor::Entity&) override { return {}; }
    std::string whyNotCalled(std::string const&, Qor::Entity&) override { return {}; }
    std::size_t rowsWaiting(std::string const&) override { return rows; }
    void onWritten(Peer const&, Qor::Entity&, Qor::AttributeId) override { ++written; }
    void onTraffic(Peer const&) override { ++traffic; }
    int written = 0;
    int traffic = 0;
    std::size_t rows = 0;
};

class PeerSilence : public testing::Test {
  protected:
    PeerSilence() {
        directory_ = (std::filesystem::temp_directory_path() / "vgw-peers-XXXXXX").string();
        ::mkdtemp(directory_.data());
        root_->entryIs("cliConfig", cli_);
        options_.runDirectory = directory_;
        options_.access.owner = ::geteuid();
        options_.access.tcpReads = true;
        options_.times = {milliseconds(200), milliseconds(100), milliseconds(300)};
        options_.listen = {parseListenAddress("unix:" + directory_ + "/s"),
                           parseListenAddress("ptcp:0")};
        server_.start(options_);
    }
    ~PeerSilence() override {
        if (socket_ >= 0) ::close(socket_);
        server_.stop("over");
        loop_.restart();
        loop_.poll();
        std::filesystem::remove_all(directory_);
    }

    void connectUnix() {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        (directory_ + "/s").copy(address.sun_path, sizeof address.sun_path - 1);
        connect(AF_UNIX, reinterpret_cast<sockaddr*>(&address), sizeof address);
    }
    void connectTcp() {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_port = htons(server_.addresses().back().port);
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        connect(AF_INET, reinterpret_cast<sockaddr*>(&address), sizeof address);
    }
    void connect(int family, sockaddr* address, socklen_t size) {
        socket_ = ::socket(family, SOCK_STREAM, 0);
        ASSERT_EQ(::connect(socket_, address, size), 0);
        ::fcntl(socket_, F_SETFL, O_NONBLOCK);
        transport_.emplace(socket_);
    }
    // The peer speaks while this runs, unless it is made deaf.
    bool becomes(std::function<bool()> const& holds, milliseconds limit = milliseconds(5000)) {
        auto const end = std::chrono::steady_clock::now() + limit;
        while (!holds()) {
            if (std::chrono::steady_clock::now() > end) return false;
            if (session_ && !isDeaf_) session_->service();
            loop_.restart();
            loop_.run_for(milliseconds(5));
        }
        return true;
    }
    void mount() {
        session_.emplace(Session::Config{}, *transport_, nullptr);
        auto const id = session_->mount("/vgw/cliConfig", false);
        ASSERT_TRUE(becomes([&] { return session_->mounted(id) != nullptr; }));
    }
    bool isGone() { return server_.peers().empty(); }
    Peer const& peer() { return *server_.peers().front(); }

    asio::io_context loop_{1};
    std::string directory_;
    Qor::Dir::Ptr root_ = Qor::make<Qor::Dir>("vgw");
    Vgw::CliConfig::Ptr cli_ = Vgw::cliConfigFactory("cliConfig");
    Listener listener_;
    ServeOptions options_;
    Server server_{loop_, root_, listener_,
                   [this](auto, std::string const& text) { said_ += text + "\n"; }};
    std::string said_;
    int socket_ = -1;
    std::optional<Qor::NboAttrLog::FdTransport> transport_;
    std::optional<Session> session_;
    bool isDeaf_ = false;
};

TEST_F(PeerSilence, WhoSaysNothingIsCut) {
    connectUnix();
    ASSERT_TRUE(becomes([&] { return !isGone(); }));
    EXPECT_TRUE(becomes([&] { return isGone(); }));
    EXPECT_NE(said_.find("nothing was said for too long"), std::string::npos);
}

TEST_F(PeerSilence, WhoWasGreetedIsNotCutForSayingNothingMore) {
    connectUnix();
    mount();
    EXPECT_FALSE(becomes([&] { return isGone(); }, milliseconds(1000)));
}

TEST_F(PeerSilence, AtRestNothingIsAskedAfterOneAnswer) {
    connectUnix();
    mount();
    EXPECT_FALSE(becomes([] { return false; }, milliseconds(500)));
    auto const before = session_->counters();
    EXPECT_FALSE(becomes([] { return false; }, milliseconds(1000)));
    EXPECT_EQ(session_->counters().bytesIn, before.bytesIn);
    EXPECT_EQ(session_->counters().bytesOut, before.bytesOut);
}

TEST_F(PeerSilence, AStoppedPeerOnThisMachineIsToldAndNotCut) {
    connectUnix();
    mount();
    isDeaf_ = true;
    cli_->managerPortIs(7);
    ASSERT_TRUE(becomes([&] { return peer().isSilent(); }));
    EXPECT_NE(said_.find("does not answer"), std::string::npos);
    EXPECT_FALSE(becomes([&] { return isGone(); }, milliseconds(800)));
    isDeaf_ = false;
    EXPECT_TRUE(becomes([&] { return !peer().isSilent(); }));
    EXPECT_NE(said_.find("is heard of again"), std::string::npos);
}

// The socket stays full of its questions, which is no reason to look at it again and again.
TEST_F(PeerSilence, WhoAsksAndNeverReadsWakesNobody) {
    connectUnix();
    mount();
    isDeaf_ = true;
    std::string ping("\0\0\0\x22\2", 5);
    ping += std::string(12, '\0') + "\1" + std::string(9, '\0') + "\1\x08" + std::string(8, '\0') +
            "\3";
    std::string wire;
    for (int i = 0; i < 1000; ++i) wire += ping;
    std::size_t at = 0;
    for (int turn = 0; turn < 500; ++turn) {
        at = (at + transport_->write(std::string_view(wire).substr(at))) % wire.size();
        loop_.restart();
        loop_.run_for(milliseconds(1));
    }
    ASSERT_EQ(transport_->write(std::string_view(wire).substr(at)), 0U);
    loop_.restart();
    EXPECT_LT(loop_.run_for(milliseconds(300)), 100U);
    isDeaf_ = false;
    auto const port = [&] {
        return Qor::dynamicCast<Vgw::CliConfig>(session_->mounted(1))->managerPort();
    };
    cli_->managerPortIs(7);
    EXPECT_TRUE(becomes([&] { return port() == 7; }));
}

TEST_F(PeerSilence, AStoppedPeerOnANetworkIsCut) {
    connectTcp();
    mount();
    isDeaf_ = true;
    cli_->managerPortIs(7);
    EXPECT_TRUE(becomes([&] { return isGone(); }));
}

TEST_F(PeerSilence, APeerThatAnswersIsKept) {
    connectTcp();
    mount();
    for (Qor::U16 port = 1; port <= 10; ++port) {
        cli_->managerPortIs(port);
        EXPECT_FALSE(becomes([&] { return isGone(); }, milliseconds(150)));
    }
}

TEST_F(PeerSilence, ExcusedFramesAreNoTraffic) {
    connectUnix();
    mount();
    EXPECT_FALSE(becomes([] { return false; }, milliseconds(500)));
    int const before = listener_.traffic;
    cli_->managerPortIs(7);
    server_.peers().front()->excuse(1);
    EXPECT_FALSE(becomes([] { return false; }, milliseconds(500)));
    EXPECT_EQ(listener_.traffic, before);
    cli_->managerPortIs(8);
    EXPECT_TRUE(becomes([&] { return listener_.traffic > before; }));
}

struct Refusals : Qor::NboAttrLog::SessionListener {
    void onRefused(Qor::NboAttrLog::MountId, Qor::String8 const& reason) override {
        reasons.emplace_back(reason.view());
    }
    std::vector<std::string> reasons;
};

TEST_F(PeerSilence, WhoseRowsWaitUpToTheLimitMountsNothingToBeWritten) {
    connectUnix();
    mount();
    Refusals refusals;
    session_->listenerIs(&refusals);
    session_->unmount(1);
    listener_.rows = options_.quotas.entities;
    session_->mount("/vgw/cliConfig", true);
    ASSERT_TRUE(becomes([&] { return !refusals.reasons.empty(); }));
    EXPECT_EQ(refusals.reasons,
              std::vector<std::string>{"262144 rows of " + peer().identity().name +
                                       " wait for the database already"});
    listener_.rows -= 1;
    auto const id = session_->mount("/vgw/cliConfig", true);
    EXPECT_TRUE(becomes([&] { return session_->mounted(id) != nullptr; }));
    session_->listenerIs(nullptr);
}

TEST_F(PeerSilence, WhoseRowsWaitUpToTheLimitIsCutForTheNextOne) {
    auto const rows = Qor::make<Qor::Dir>("rows");
    root_->entryIs("rows", rows);
    connectUnix();
    mount();
    auto const id = session_->mount("/vgw/rows", true);
    ASSERT_TRUE(becomes([&] { return session_->mounted(id) != nullptr; }));
    auto const copy = Qor::dynamicCast<Qor::Dir>(session_->mounted(id));
    listener_.rows = options_.quotas.entities;
    copy->entryIs("last", Vgw::cliConfigFactory("last"));
    ASSERT_TRUE(becomes([&] { return rows->entrys() == 1; }));
    EXPECT_FALSE(becomes([&] { return isGone(); }, milliseconds(300)));
    listener_.rows += 1;
    copy->entryIs("next", Vgw::cliConfigFactory("next"));
    EXPECT_TRUE(becomes([&] { return isGone(); }));
    EXPECT_NE(said_.find("more than 262144 rows of "), std::string::npos);
}

// It stands in the books under its path, which a peer that may write can have made.
TEST_F(PeerSilence, APathThatNoKeyCanHoldIsNotMounted) {
    std::string const name(50'000, 'a');
    root_->entryIs(std::string_view(name), Qor::make<Vgw::CliConfig>("long"));
    connectUnix();
    mount();
    Refusals refusals;
    session_->listenerIs(&refusals);
    session_->mount(std::string_view("/vgw/" + name), false);
    EXPECT_TRUE(becomes([&] { return !refusals.reasons.empty(); }));
    EXPECT_EQ(refusals.reasons,
              std::vector<std::string>{
                  "a path of 50005 bytes; the longest that can be mounted has 49118"});
    EXPECT_EQ(server_.peers().front()->mounts().size(), 1U);
    session_->listenerIs(nullptr);
}

}  // namespace
}  // namespace Vgwd
