// Single records: written, sent by a setter, and applied.
#include <qor/attrlog/family/MakeAdapter.h>
#include <vgw/attrlog/LogicalSwitch.h>

#include <string>
#include <vector>

#include "../Row.h"

namespace Bench {

namespace {

using Qor::NboAttrLog::Demuxer;
using Qor::NboAttrLog::In;
using Qor::NboAttrLog::Out;

// What goes out is taken away whenever the ring has filled to a block.
void drain(Out& out) {
    while (!out.unsent().empty()) out.sentInc(out.unsent().size());
}

void writeOurs(benchmark::State& state) {
    auto const out = Qor::make<Out>();
    std::uint32_t number = 0;
    for (auto _ : state) {
        out->nextHeaderIs({Qor::EntityId(3), 388});
        out << Out::TransactToken::begin << ++number << Out::TransactToken::end;
        if (!out->hasSufficientBuffer()) drain(*out);
    }
    tellOperations(state);
}

// The same 33 bytes into a vector that is long enough.
void writeFloor(benchmark::State& state) {
    constexpr std::size_t size = 33;
    std::vector<unsigned char> ring(size * 10000);
    std::size_t at = 0;
    std::uint32_t number = 0;
    for (auto _ : state) {
        unsigned char* const frame = ring.data() + at;
        Qor::storeNetworkOrder(frame, std::uint32_t{size - 4});
        frame[4] = 0;
        Qor::storeNetworkOrder(frame + 5, std::uint64_t{3});
        Qor::storeNetworkOrder(frame + 13, std::uint32_t{388});
        frame[17] = 1;
        Qor::storeNetworkOrder(frame + 18, std::uint64_t{0});
        frame[26] = 0;
        frame[27] = 1;
        Qor::storeNetworkOrder(frame + 28, ++number);
        frame[32] = 3;
        at = at + size == ring.size() ? 0 : at + size;
        benchmark::ClobberMemory();
    }
    tellOperations(state);
}

struct End {
    Demuxer::Ptr demuxer = Qor::make<Demuxer>(Qor::Name("end"), Qor::make<In>(), Qor::make<Out>(),
                                              Demuxer::Side::connecting);
    Qor::Ptr<Vgw::LogicalSwitch> row = Qor::make<Vgw::LogicalSwitch>(Qor::Name("red"));
    Qor::Ptr<Qor::Entity::QorNboAttrLogSa> adapter = row->qorNboAttrLogSaIs(
        Qor::AdapterState::Bits(Qor::AdapterState::weakNotifier), 1, demuxer->out(), nullptr);
};

void setterToRing(benchmark::State& state) {
    End end;
    end.adapter->qorOnInit();
    std::uint32_t number = 0;
    for (auto _ : state) {
        end.row->tunnelKeyIs(++number & 0xFFFFFF);
        if (!end.demuxer->out()->hasSufficientBuffer()) drain(*end.demuxer->out());
    }
    tellOperations(state);
}

void recordToApplied(benchmark::State& state) {
    constexpr std::size_t records = 1000;
    auto const out = Qor::make<Out>();
    Qor::EntityId const id(0x8000000000000003);
    for (std::uint32_t i = 0; i < records; ++i) {
        out->nextHeaderIs({id, 388});
        out << Out::TransactToken::begin << i << Out::TransactToken::end;
    }
    std::string const bytes(out->unsent());
    End end;
    end.adapter->doEntityIdIs(id, end.demuxer, true);
    for (auto _ : state) {
        end.demuxer->in()->receive(bytes);
        if (end.demuxer->serveFrames(records) != records) state.SkipWithError("not applied");
    }
    tellOperations(state, records);
}

}  // namespace

void addRecords() {
    cell("write a record of a number", "floor", writeFloor);
    cell("write a record of a number", "ours", writeOurs);
    cell("setter to record in the ring", "ours", setterToRing);
    cell("record to applied", "ours", recordToApplied);
}

}  // namespace Bench
