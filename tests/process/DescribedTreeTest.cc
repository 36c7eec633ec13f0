// A process that links the framework and the network values alone mounts a whole tree from one that
// has the classes, and prints what the one that has them prints.
#include <gtest/gtest.h>

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <sstream>
#include <string>
#include <thread>

#include <qor/attrlog/session/Session.h>
#include <qor/generic/GenericIf.h>
#include <qor/tree/Dir.h>

#include <vgw/attrlog/CliConfig.h>
#include <vgw/attrlog/McastMacsLocal.h>
#include <vgw/attrlog/Status.h>
#include <vgw/attrlog/UcastMacsLocal.h>
#include <vgw/registry/Status.h>

namespace {

using Qor::GenericIf;
using Qor::make;
using Qor::Name;
using Qor::NboAttrLog::Session;

// As examples/any_agent prints it, in a program that has the classes.
void print(std::ostream& out, std::string const& path, GenericIf::Ptr const& at) {
    out << path << " : " << at->fwkType()->fullName() << '\n';
    bool const isDir = at->fwkType()->fullName() == "Qor::Dir";
    for (auto const& attribute : at->fwkType()->attributes()) {
        bool const isOwn = attribute->id() >= 256 && !attribute->introspection().isFunction();
        if (!isOwn) continue;
        bool const isBelow = attribute->flags().isInstantiating() || isDir;
        std::string const here = path + "/" + attribute->name().charPtr();
        auto const put = [&](std::string const& where, GenericIf::Ptr const& value) {
            if (isBelow && value->entity()) return print(out, where, value);
            out << where << " = " << value->strRep() << '\n';
        };
        if (!attribute->flags().isCollection()) {
            put(here, at->attributeOp(attribute->id()));
            continue;
        }
        for (auto step = at->attributeIteratorConst(attribute->id()); step; ++step) {
            put(here + "[" + step.key()->strRep().charPtr() + "]", step.value());
        }
    }
}

std::string outputOf(std::string const& command, int& exit) {
    std::string text;
    FILE* const pipe = popen(command.c_str(), "r");
    std::array<char, 4096> buffer;
    while (std::size_t const count = std::fread(buffer.data(), 1, buffer.size(), pipe)) {
        text.append(buffer.data(), count);
    }
    exit = pclose(pipe);
    return text;
}

class DescribedTree : public testing::Test {
  protected:
    DescribedTree() {
        std::string folder = std::filesystem::temp_directory_path() / "described.XXXXXX";
        folder_ = mkdtemp(folder.data());
        fill();
    }
    ~DescribedTree() override { std::filesystem::remove_all(folder_); }

    void fill() {
        auto const status = make<Vgw::Status>(Name("status"));
        status->ovsdbIs(Name("ovsdb"));
        status->ovsdbSessionStatusIs(Name("session"));
        auto& db = *status->ovsdb();
        for (int i = 0; i < 300; ++i) {
            auto const name = std::to_string(i);
            auto const row = db.logicalSwitchIs(Name(name));
            row->tunnelKeyIs(static_cast<Qor::U32>(i));
            row->descIs(Qor::String8(std::string(static_cast<std::size_t>(i) * 200, 'd')));
            auto const locator = db.physicalLocatorRawIs(Name(name));
            locator->ucastMacRefIs({Kelp::EthAddr("00:00:5e:00:53:01"), Vxlan::Vni(7)}, true);
            db.physicalLocatorIs(Kelp::IpAddr("192.0.2." + std::to_string(i % 256)), locator);
        }
        auto const macs = make<Qor::Dir>(Name("ucastMacsLocal"));
        auto const row = make<Vgw::UcastMacsLocal>(Kelp::EthAddr("00:00:5e:00:53:07"));
        row->vniIs(Vxlan::Vni(5000));
        macs->entryIs(Name("uuid"), row);
        root_->entryIs(Name("status"), status);
        root_->entryIs(Name("cliConfig"), make<Vgw::CliConfig>(Name("cliConfig")));
        root_->entryIs(Name("ucastMacsLocal"), macs);
    }

    // Serves the next one who connects, until it has gone.
    void serveOne() {
        int const fd = accept4(listening_, nullptr, nullptr, SOCK_NONBLOCK);
        ASSERT_GE(fd, 0);
        Qor::NboAttrLog::FdTransport transport(fd);
        Session::Config config;
        config.side = Qor::NboAttrLog::Demuxer::Side::accepting;
        Session session(config, transport, root_);
        while (session.closed().length() == 0) {
            session.service();
            short const wanted = session.wantsWrite() ? POLLIN | POLLOUT : POLLIN;
            pollfd waiting{fd, wanted, 0};
            poll(&waiting, 1, 10'000);
        }
        ::close(fd);
    }

    void listenHere() {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        std::string const path = socketPath();
        path.copy(address.sun_path, sizeof address.sun_path - 1);
        listening_ = socket(AF_UNIX, SOCK_STREAM, 0);
        ASSERT_EQ(bind(listening_, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
        ASSERT_EQ(listen(listening_, 1), 0);
    }

    std::string socketPath() const { return folder_ + "/socket"; }

    std::string folder_;
    int listening_ = -1;
    Qor::Ptr<Qor::Dir> const root_ = make<Qor::Dir>(Name("vgw"));
};

TEST_F(DescribedTree, IsPrintedAsByAProcessThatHasTheClasses) {
    std::ostringstream expected;
    print(expected, "/vgw", root_->fwkType()->genericIf_(root_.ptr(), true));
    listenHere();
    int exit = -1;
    std::string printed;
    std::thread other([&] {
        printed =
            outputOf(std::string(std::getenv("ANY_AGENT")) + " " + socketPath() + " /vgw", exit);
    });
    serveOne();
    other.join();
    ::close(listening_);
    EXPECT_EQ(exit, 0);
    EXPECT_EQ(printed, expected.str());
    EXPECT_GT(printed.size(), 100'000U);
}

TEST_F(DescribedTree, ReaderIsLinkedWithoutTheClasses) {
    int exit = -1;
    std::string const needed =
        outputOf(std::string(std::getenv("READELF")) + " -d " + std::getenv("ANY_AGENT"), exit);
    EXPECT_EQ(exit, 0);
    EXPECT_NE(needed.find("libqor.so.0"), std::string::npos);
    EXPECT_NE(needed.find("libKelp.so.0"), std::string::npos);
    EXPECT_EQ(needed.find("libVgwStatemart"), std::string::npos);
}

}  // namespace
