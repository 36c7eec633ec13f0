// A directory of complete remote MAC rows is mounted from one session by another, over a transport
// in memory, both in this thread; and what a row takes once it is mounted.
#include <qor/attrlog/dir/DirAdapter.h>
#include <qor/attrlog/session/Session.h>
#include <vgw/attrlog/UcastMacsRemote.h>

#include <string>

#include "../Row.h"
#include "../maps/Keys.h"

namespace Bench {

namespace {

using Qor::Name;
using Qor::NboAttrLog::MemoryTransport;
using Qor::NboAttrLog::Session;

Qor::Ptr<Qor::Dir> directory(std::size_t rows) {
    auto const dir = Qor::make<Qor::Dir>(Name("ucastMacsRemote"));
    auto const names = uuids(rows, 1);
    for (std::size_t i = 0; i < rows; ++i) {
        auto const row = Qor::make<Vgw::UcastMacsRemote>(Name(std::string_view(names[i])));
        row->macIs(Kelp::EthAddr("00:00:5e:00:53:01"));
        row->ipAddrIs(Kelp::IpAddr("192.0.2.1"));
        row->logicalSwitchIs(Qor::String8(std::string_view(names[i / 64])));
        row->physicalLocatorIs(Qor::String8(std::string_view(names[i / 8])));
        dir->entryIs(row->name(), row);
    }
    return dir;
}

class Mounted {
  public:
    explicit Mounted(Qor::Ptr<Qor::Dir> const& dir) {
        MemoryTransport::connect(near_, far_);
        near_.roomIs(1U << 20);
        far_.roomIs(1U << 20);
        Session::Config gives;
        gives.side = Qor::NboAttrLog::Demuxer::Side::accepting;
        given_ = std::make_unique<Session>(gives, far_, dir);
        taken_ = std::make_unique<Session>(Session::Config(), near_, nullptr);
        mount_ = taken_->mount("/ucastMacsRemote", false);
    }
    // Until all has arrived. The number of rows.
    std::size_t run() {
        for (Qor::U64 before = ~Qor::U64{0}; before != moved();) {
            before = moved();
            given_->service();
            taken_->service();
        }
        return Qor::dynamicCast<Qor::Dir>(taken_->mounted(mount_))->entrys();
    }

  private:
    Qor::U64 moved() const { return given_->counters().bytesOut + taken_->counters().bytesIn; }

    MemoryTransport near_;
    MemoryTransport far_;
    std::unique_ptr<Session> given_;
    std::unique_ptr<Session> taken_;
    Qor::NboAttrLog::MountId mount_ = 0;
};

void mount(benchmark::State& state, std::size_t rows) {
    auto const dir = directory(rows);
    for (auto _ : state) {
        Mounted mounted(dir);
        std::size_t arrived = 0;
        timed(state, [&] { arrived = mounted.run(); });
        if (arrived != rows) state.SkipWithError("rows are missing");
    }
    tellOperations(state, rows);
}

// Both ends: the rows of the source with their adapters, and the copies with theirs.
void bytesMounted(benchmark::State& state, std::size_t rows) {
    for (auto _ : state) {
        std::size_t const before = bytesHeld();
        auto const dir = directory(rows);
        Mounted mounted(dir);
        mounted.run();
        tellBytes(state, static_cast<double>(bytesHeld() - before) / 2 / static_cast<double>(rows));
    }
}

}  // namespace

void addMounts() {
    for (std::size_t const rows : {1000U, 10000U, 100000U, 1000000U}) {
        std::string const row = "a row of a mount of " + std::to_string(rows);
        cell(row, "ours", [=](auto& state) { mount(state, rows); })->UseManualTime();
    }
    cell("bytes of one of 100000 mounted remote MAC rows", "ours", [](auto& state) {
        bytesMounted(state, 100000);
    })->Iterations(1);
}

}  // namespace Bench
