// A setter that changes a value and tells it to 1, 4 or 16 notifiees.
#include <vgw/tables/LogicalSwitch.h>

#include <memory>
#include <vector>

#include "../Row.h"
#include "Floor.h"
#include "Peers.h"

namespace Bench {

namespace {

class Listener final : public Vgw::LogicalSwitch::NotifieeConst {
  public:
    explicit Listener(std::uint64_t& heard) : heard_(heard) {}
    void onTunnelKey() override { ++heard_; }

  private:
    std::uint64_t& heard_;
};

template <class Count>
class FloorListener final : public FloorNotifiee<Count> {
  public:
    explicit FloorListener(std::uint64_t& heard) : heard_(heard) {}
    void onNumber() override { ++heard_; }
    void onException() override {}

  private:
    std::uint64_t& heard_;
};

template <class Set>
void tellAll(benchmark::State& state, unsigned count, std::uint64_t const& heard, Set set) {
    std::uint32_t number = 1;
    for (auto _ : state) {
        set(++number);
        benchmark::ClobberMemory();
    }
    if (heard != count * static_cast<std::uint64_t>(state.iterations())) {
        state.SkipWithError("not every listener heard of every change");
    }
    tellOperations(state);
}

template <class Count>
void floorCell(benchmark::State& state, unsigned count) {
    std::uint64_t heard = 0;
    FloorNotifier<Count> notifier;
    std::vector<std::unique_ptr<FloorListener<Count>>> listeners;
    for (unsigned i = 0; i < count; ++i) {
        notifier.attach(*listeners.emplace_back(std::make_unique<FloorListener<Count>>(heard)));
    }
    tellAll(state, count, heard, [&](std::uint32_t number) { notifier.numberIs(number); });
}

void ownCell(benchmark::State& state, unsigned count) {
    std::uint64_t heard = 0;
    auto const row = Qor::make<Vgw::LogicalSwitch>("red");
    std::vector<Qor::Ptr<Listener>> listeners;
    for (unsigned i = 0; i < count; ++i) {
        listeners.push_back(Qor::make<Listener>(heard));
        listeners.back()->notifierIs(row);
    }
    tellAll(state, count, heard, [&](std::uint32_t number) { row->tunnelKeyIs(number); });
}

template <class Peer>
void peerCell(benchmark::State& state, unsigned count) {
    std::uint64_t heard = 0;
    Peer peer(count, heard);
    tellAll(state, count, heard, [&](std::uint32_t number) { peer.emit(number); });
}

void addRow(unsigned count) {
    std::string const row = "setter that tells " + std::to_string(count);
    cell(row, "floor", [=](auto& state) { floorCell<PlainCount>(state, count); });
    cell(row, "ours", [=](auto& state) { ownCell(state, count); });
#ifdef VGW_BENCH_SIGC___2_0
    cell(row, "sigc++", [=](auto& state) { peerCell<SigcPeer>(state, count); });
#endif
#ifdef VGW_BENCH_SIGNALS2
    cell(row, "signals2", [=](auto& state) { peerCell<Signals2Peer>(state, count); });
#endif
#ifdef VGW_BENCH_GOBJECT_2_0
    cell(row, "GObject", [=](auto& state) { peerCell<GObjectPeer>(state, count); });
#endif
    std::string const threaded = row + ", several threads";
    cell(threaded, "floor", [=](auto& state) { floorCell<AtomicCount>(state, count); });
    cell(threaded, "ours", [=](auto& state) {
        severalThreads();
        ownCell(state, count);
    });
#ifdef VGW_BENCH_SIGC___2_0
    cell(threaded, "sigc++", [=](auto& state) {
        severalThreads();
        peerCell<SigcPeer>(state, count);
    });
#endif
}

}  // namespace

void addDispatch() {
    for (unsigned const count : {1U, 4U, 16U}) {
        addRow(count);
    }
}

}  // namespace Bench
