// A session in this process and one in another, over a socket: how long a change is on its way,
// and how many are applied in a time. The floors send the bytes of one record and do no more.
#include <unistd.h>

#include <qor/attrlog/NetworkOrder.h>
#include <vgw/attrlog/LogicalSwitch.h>

#include <array>
#include <string>
#include <vector>

#include "../Row.h"
#include "Ends.h"

namespace Bench {

namespace {

using Qor::Name;
using Qor::NboAttrLog::Session;
using Row = Vgw::LogicalSwitch;

constexpr std::size_t frameSize = 33;  // of a record of a number
constexpr std::size_t waits = 2000;
constexpr std::size_t rows = 10'000;
constexpr std::size_t changes = 2'000'000;

class Listener final : public Row::NotifieeConst {
  public:
    Listener(Row::Ptr const& row, Shared& shared) : shared_(shared) { notifierIs(row); }
    void onTunnelKey() override {
        auto const heard = shared_.heard.load(std::memory_order_relaxed);
        shared_.waits[heard % Shared::mostWaits] = wallTime() - shared_.sentAt.load();
        shared_.heard.store(heard + 1, std::memory_order_release);
    }

  private:
    Shared& shared_;
};

// The rows that the writing end gives.
struct Rows {
    std::vector<Row::Ptr> all;
    Qor::Ptr<Qor::Dir> dir = Qor::make<Qor::Dir>(Name("rows"));

    explicit Rows(std::size_t count) {
        for (std::size_t i = 0; i < count; ++i) {
            all.push_back(Qor::make<Row>(Name("ls" + std::to_string(i))));
            dir->entryIs(all.back()->name(), all.back());
        }
    }
};

void tellWait(benchmark::State& state, Shared const& shared, double of100) {
    state.counters["op"] = percentile(shared, waits, of100);
}

// Once the other process waits for it, `send` sends one; again and again.
template <class Send>
bool sendOneByOne(OtherProcess& other, std::uint64_t before, Send send) {
    for (std::size_t i = 0; i < waits; ++i) {
        ::usleep(50);
        other.shared().sentAt = wallTime();
        send(i);
        if (!other.awaitHeard(before + i + 1)) return false;
    }
    return true;
}

void readChanges(int fd, Shared& shared) {
    Qor::Ptr<Listener> listener;
    Reader reader(fd, [&](Qor::Dir& dir) {
        listener = Qor::make<Listener>(Qor::dynamicCast<Row>(dir.entry(Name("ls0"))), shared);
        shared.isSynced = true;
    });
    reader.run([](Session const&) {});
}

void oneChange(benchmark::State& state, double of100) {
    for (auto _ : state) {
        OtherProcess other(readChanges);
        Rows const given(1);
        Writer writer(other.fd(), given.dir);
        writer.serveUntilSynced(other);
        bool const all = sendOneByOne(other, 0, [&](std::size_t i) {
            given.all[0]->tunnelKeyIs(static_cast<Qor::U32>(i + 1));
            writer.session().service();
        });
        if (!all) state.SkipWithError("a change was not heard");
        tellWait(state, other.shared(), of100);
    }
}

void readFrames(int fd, Shared& shared) {
    std::array<unsigned char, 65536> bytes;
    while (::read(fd, bytes.data(), frameSize) == static_cast<long>(frameSize)) {
        auto const heard = shared.heard.load(std::memory_order_relaxed);
        shared.waits[heard % Shared::mostWaits] = wallTime() - shared.sentAt.load();
        shared.heard.store(heard + 1, std::memory_order_release);
    }
}

void oneFrame(benchmark::State& state, double of100) {
    for (auto _ : state) {
        OtherProcess other(readFrames);
        std::array<unsigned char, frameSize> const frame{};
        bool const all = sendOneByOne(other, 0, [&](std::size_t) {
            benchmark::DoNotOptimize(::write(other.fd(), frame.data(), frame.size()));
        });
        if (!all) state.SkipWithError("a frame was not read");
        tellWait(state, other.shared(), of100);
    }
}

// The copies' changes are counted where the session counts frames: each is one record.
void countFrames(int fd, Shared& shared) {
    Qor::U64 before = 0;
    Reader reader(fd, [&](Qor::Dir&) { shared.isSynced = true; });
    reader.run([&](Session const& session) {
        if (!shared.isSynced) return;
        if (before == 0) before = session.counters().framesIn;
        shared.heard = session.counters().framesIn - before;
    });
}

void stream(benchmark::State& state) {
    for (auto _ : state) {
        OtherProcess other(countFrames);
        Rows const given(rows);
        Writer writer(other.fd(), given.dir);
        writer.serveUntilSynced(other);
        double const begin = wallTime();
        for (std::size_t i = 0; i < changes; ++i) {
            given.all[i % rows]->tunnelKeyIs(static_cast<Qor::U32>(i + 1) & 0xFFFFFF);
            if (i % 256 == 0) writer.makeRoom();
        }
        writer.flush();
        if (!other.awaitHeard(changes)) state.SkipWithError("not every change was applied");
        state.SetIterationTime(wallTime() - begin);
    }
    tellOperations(state, changes);
}

// Pieces of 32 KiB; each frame's number is stored in its row's place.
void storeFrames(int fd, Shared& shared) {
    std::vector<std::uint32_t> numbers(rows);
    std::vector<unsigned char> bytes(frameSize * 1000);
    std::size_t held = 0;
    for (std::uint64_t heard = 0;;) {
        long const count = ::read(fd, bytes.data() + held, bytes.size() - held);
        if (count <= 0) return;
        held += static_cast<std::size_t>(count);
        std::size_t at = 0;
        for (; held - at >= frameSize; at += frameSize, ++heard) {
            auto const row = Qor::loadNetworkOrder<std::uint64_t>(bytes.data() + at + 5);
            numbers[row % rows] = Qor::loadNetworkOrder<std::uint32_t>(bytes.data() + at + 28);
        }
        std::copy(bytes.begin() + static_cast<long>(at), bytes.begin() + static_cast<long>(held),
                  bytes.begin());
        held -= at;
        benchmark::ClobberMemory();
        shared.heard.store(heard, std::memory_order_release);
    }
}

void streamFloor(benchmark::State& state) {
    for (auto _ : state) {
        OtherProcess other(storeFrames);
        std::vector<unsigned char> piece(frameSize * 1000);
        double const begin = wallTime();
        for (std::size_t i = 0; i < changes;) {
            for (std::size_t at = 0; at < piece.size(); at += frameSize, ++i) {
                Qor::storeNetworkOrder(piece.data() + at + 5, std::uint64_t{i % rows});
                Qor::storeNetworkOrder(piece.data() + at + 28, static_cast<std::uint32_t>(i));
            }
            for (std::size_t at = 0; at < piece.size();) {
                at += static_cast<std::size_t>(
                    ::write(other.fd(), piece.data() + at, piece.size() - at));
            }
        }
        if (!other.awaitHeard(changes)) state.SkipWithError("not every frame was read");
        state.SetIterationTime(wallTime() - begin);
    }
    tellOperations(state, changes);
}

}  // namespace

void addProcesses() {
    for (double const of100 : {50.0, 99.0}) {
        std::string const row =
            "a change, process to process, p" + std::to_string(static_cast<int>(of100));
        cell(row, "floor", [=](auto& state) { oneFrame(state, of100); })->Iterations(1);
        cell(row, "ours", [=](auto& state) { oneChange(state, of100); })->Iterations(1);
    }
    std::string const row = "a change of a stream, applied in the other process";
    cell(row, "floor", streamFloor)->UseManualTime()->Iterations(1);
    cell(row, "ours", stream)->UseManualTime()->Iterations(1);
}

}  // namespace Bench
