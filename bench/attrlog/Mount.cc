// A directory of complete remote MAC rows is mounted from one session by another: over a socket
// from another process, which is what a reader waits for; and over a transport in memory, both in
// this thread, which is what both ends cost. What a row takes once it is mounted; and what is held
// for a peer that has stopped to read.
#include <vgw/attrlog/UcastMacsRemote.h>

#include <string>
#include <vector>

#include "../Row.h"
#include "../maps/Keys.h"
#include "Ends.h"

namespace Bench {

namespace {

using Qor::Name;
using Qor::NboAttrLog::MemoryTransport;
using Qor::NboAttrLog::Session;

Qor::Ptr<Qor::Dir> directory(std::size_t rows) {
    auto const dir = Qor::make<Qor::Dir>(Name("rows"));
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
        mount_ = taken_->mount("/rows", false);
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

    // From now on the mounting end takes nothing.
    void stopReading() { near_.roomIs(0); }
    void give() { given_->service(); }

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

void tellSynced(int fd, Shared& shared) {
    Reader reader(fd, [&](Qor::Dir& dir) {
        shared.waits[0] = wallTime();
        shared.heard = dir.entrys();
        shared.isSynced = true;
    });
    reader.run([](Session const&) {});
}

// From the first turn of the source until the reader has all. Once in a process: a second reader
// would be forked with what the pool has by then, and both would copy each page of it that they
// write to.
void copy(benchmark::State& state, std::size_t rows) {
    for (auto _ : state) {
        OtherProcess other(tellSynced);
        auto const dir = directory(rows);
        double const begin = wallTime();
        Writer writer(other.fd(), dir);
        writer.serveUntilSynced(other);
        state.SetIterationTime(other.shared().waits[0] - begin);
        if (other.shared().heard != rows) state.SkipWithError("rows are missing");
    }
    tellOperations(state, rows);
}

void tellGrowth(int fd, Shared& shared) {
    std::size_t const before = bytesHeld();
    Reader reader(fd, [&](Qor::Dir&) {
        shared.bytes = bytesHeld() - before;
        shared.isSynced = true;
    });
    reader.run([](Session const&) {});
}

// Each end in a process of its own: what the source's rows with their adapters take, and what the
// copies take with theirs.
void bytesMounted(benchmark::State& state, std::size_t rows, bool isSource) {
    for (auto _ : state) {
        OtherProcess other(tellGrowth);
        std::size_t const before = bytesHeld();
        auto const dir = directory(rows);
        Writer writer(other.fd(), dir);
        writer.serveUntilSynced(other);
        std::size_t const held = isSource ? bytesHeld() - before : other.shared().bytes.load();
        tellBytes(state, static_cast<double>(held) / static_cast<double>(rows));
    }
}

// All that a connection comes to hold for a peer that has stopped to read.
void bytesForWhoNeverReads(benchmark::State& state, std::size_t rows, std::size_t changes) {
    auto const dir = directory(rows);
    std::vector<Qor::Ptr<Vgw::UcastMacsRemote>> all;
    for (Qor::Dir::EntryIteratorConst at(*dir); at; ++at) {
        all.push_back(Qor::dynamicCast<Vgw::UcastMacsRemote>(at->value()));
    }
    for (auto _ : state) {
        Mounted mounted(dir);
        mounted.run();
        mounted.stopReading();
        std::size_t const before = bytesHeld();
        for (std::size_t i = 0; i < changes; ++i) {
            all[i % rows]->ipAddrIs(Kelp::IpAddr(static_cast<Qor::U32>(i)));
            if (i % 1024 == 0) mounted.give();
        }
        tellBytes(state, static_cast<double>(bytesHeld() - before));
    }
}

}  // namespace

void addMounts() {
    for (std::size_t const rows : {1000U, 10000U, 100000U, 1000000U}) {
        std::string const row = "a row of a mount of " + std::to_string(rows);
        cell(row, "ours", [=](auto& state) { mount(state, rows); })->UseManualTime();
    }
    for (std::size_t const rows : {1000U, 10000U, 100000U, 1000000U}) {
        std::string const row = "a row of a copy of " + std::to_string(rows) + " from a process";
        cell(row, "ours", [=](auto& state) { copy(state, rows); })->UseManualTime()->Iterations(1);
    }
    for (bool const isSource : {true, false}) {
        std::string const row = "bytes of one of 100000 mounted remote MAC rows, ";
        cell(row + (isSource ? "at the source" : "of the copy"), "ours", [=](auto& state) {
            bytesMounted(state, 100000, isSource);
        })->Iterations(1);
    }
    cell("bytes for a peer that never reads, 10000 rows, 10000000 changes", "ours",
         [](auto& state) { bytesForWhoNeverReads(state, 10000, 10000000); })
        ->Iterations(1);
}

}  // namespace Bench
