// An agent's session whose peer is bytes, and what it takes to take them in.
#ifndef TESTS_PROPERTY_ATTRLOG_SERVED_BYTES_H
#define TESTS_PROPERTY_ATTRLOG_SERVED_BYTES_H

#include <fuzz/HostilePeer.h>
#include <tests/support/LinearCost.h>
#include <tests/support/Settings.h>

#include <qor/attrlog/session/Session.h>
#include <qor/tree/Dir.h>
#include <vgw/agent/Status.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace ServedBytes {

using Qor::make;
using Qor::Name;
using Qor::NboAttrLog::MemoryTransport;
using Qor::NboAttrLog::Session;

inline constexpr std::uint64_t statusId = 0x8000000000000003;
inline constexpr std::uint64_t dbId = statusId + 2;
inline constexpr std::uint64_t switchId = statusId + 4;
inline constexpr std::uint64_t leafId = statusId + 6;

inline std::string number(std::uint64_t value, int width) {
    std::string result;
    for (int shift = 8 * (width - 1); shift >= 0; shift -= 8) {
        result += static_cast<char>(value >> shift & 0xFF);
    }
    return result;
}
inline std::string text(std::string const& value) { return number(value.size(), 4) + value; }
inline std::string mount(std::string const& path, std::uint32_t as = 1) {
    return hostileFrame(2, 0, 0, 1, 0, "\2" + number(as, 4) + "\1" + text(path));
}
inline std::string marker(std::uint64_t entity, std::uint32_t attribute, char type) {
    return hostileFrame(1, entity, attribute, 1, 0, std::string(1, type) + number(0, 4));
}

// A session of an agent's whose peer is bytes.
class Served {
  public:
    explicit Served(std::string const& path) {
        root_->entryIs(Name("status"), status);
        root_->entryIs(Name("dir"), make<Qor::Dir>(Name("dir")));
        auto const db = status->ovsdbIs(Name("db"));
        db->logicalSwitchIs(Name("ls"));
        db->physicalSwitchRawIs(Name("leaf"));
        MemoryTransport::connect(peer_, own_);
        Session::Config config;
        config.side = Qor::NboAttrLog::Demuxer::Side::accepting;
        config.peerMayWrite = true;
        session_ = std::make_unique<Session>(config, own_, root_);
        take(HostilePeer::hello() + mount(path));
    }
    // Bytes of the peer's; what the session sends is thrown away.
    void take(std::string const& bytes) {
        for (std::size_t at = 0; at < bytes.size(); at += 32768) {
            peer_.write(std::string_view(bytes).substr(at, 32768));
            session_->service();
            unsigned char sink[4096];
            while (peer_.read(sink) != 0) {
            }
        }
    }
    // One more tree to mount.
    Vgw::Status::Ptr newTree(char const* name) {
        auto const tree = Vgw::statusFactory(Name(name));
        root_->entryIs(Name(name), tree);
        return tree;
    }
    // Everything that is owed is sent.
    void drain() {
        unsigned char sink[49152];
        do {
            session_->service();
        } while (peer_.read(sink) != 0);
    }
    // Ends the session; how many entities it had given.
    std::size_t end() {
        std::size_t const given = session_->demuxer().adapters();
        session_.reset();
        return given;
    }
    std::string closed() const { return std::string(session_->closed().view()); }

    Vgw::Status::Ptr status = Vgw::statusFactory(Name("status"));

  private:
    Qor::Ptr<Qor::Dir> root_ = make<Qor::Dir>(Name("vgw"));
    MemoryTransport peer_;
    MemoryTransport own_;
    std::unique_ptr<Session> session_;
};

inline void expectLinear(std::size_t count, std::string (*input)(std::size_t count)) {
    expectLinearCost(count, [input](std::size_t size) {
        std::string const bytes = input(size);
        Served served("/vgw/status");
        double const time = timeOf([&] { served.take(bytes); });
        EXPECT_EQ(served.closed(), "");
        return time;
    });
}

inline constexpr std::size_t unit = Settings::volume(10000, 500, 500);

}  // namespace ServedBytes

#endif
