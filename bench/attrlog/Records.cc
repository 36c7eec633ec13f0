// Single records: written, read, sent by a setter, and applied.
#include <qor/attrlog/family/MakeAdapter.h>
#include <vgw/attrlog/LogicalSwitch.h>

#include <random>
#include <string>
#include <vector>

#include "../Row.h"
#include "PutRecord.h"
#include "mixed/Mixture.h"
#include "peers/Peers.h"

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
        putRecord(out, {Qor::EntityId(3), 388}, ++number);
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

// The frames lie in a row, and what is read is checked as far as the format asks for it.
void readFloor(benchmark::State& state) {
    constexpr std::size_t size = 33;
    std::vector<unsigned char> bytes(size * recordsRead);
    for (std::size_t i = 0; i < recordsRead; ++i) {
        unsigned char* const frame = bytes.data() + i * size;
        Qor::storeNetworkOrder(frame, std::uint32_t{size - 4});
        Qor::storeNetworkOrder(frame + 5, std::uint64_t{3});
        Qor::storeNetworkOrder(frame + 13, std::uint32_t{388});
        frame[27] = 1;
        Qor::storeNetworkOrder(frame + 28, static_cast<std::uint32_t>(i));
        frame[32] = 3;
    }
    Sums sums;
    for (auto _ : state) {
        for (unsigned char const* frame = bytes.data(); frame != bytes.data() + bytes.size();) {
            auto const length = Qor::loadNetworkOrder<std::uint32_t>(frame);
            bool const isSound =
                length == size - 4 && frame[4] == 0 && frame[27] == 1 && frame[length + 3] == 3;
            if (!isSound) return state.SkipWithError("a frame is not as it was written");
            auto const attribute = Qor::loadNetworkOrder<std::uint32_t>(frame + 13);
            sums.take({Qor::loadNetworkOrder<std::uint64_t>(frame + 5),
                       static_cast<std::int32_t>(attribute),
                       Qor::loadNetworkOrder<std::uint32_t>(frame + 28)});
            frame += length + 4;
        }
        benchmark::ClobberMemory();
    }
    benchmark::DoNotOptimize(sums);
    tellOperations(state, recordsRead);
}

// The bytes are put into the ring, too, as a transport would.
void readOurs(benchmark::State& state) {
    auto const out = Qor::make<Out>();
    for (std::uint32_t i = 0; i < recordsRead; ++i) {
        putRecord(out, {Qor::EntityId(3), 388}, i);
    }
    std::string const bytes(out->unsent());
    auto const in = Qor::make<In>();
    Sums sums;
    Qor::NboAttrLog::Frame frame;
    for (auto _ : state) {
        in->receive(bytes);
        while (in->nextFrame(frame)) {
            sums.take({frame.header.entityId.value(), frame.header.attributeId, in->nextU32()});
            in->frameDone(frame);
        }
    }
    auto const read = static_cast<std::uint64_t>(state.iterations()) * recordsRead;
    if (sums.keys != read * 3 + static_cast<std::uint64_t>(state.iterations()) * 499500) {
        state.SkipWithError("not every record was read");
    }
    tellOperations(state, recordsRead);
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

// So many ends of connections that have all rows, more than the nearest caches hold.
class Readers {
  public:
    Readers() {
        for (std::size_t i = 0; i < rowCount; ++i) {
            rows_.push_back(Qor::make<Vgw::LogicalSwitch>(Qor::Name(std::to_string(i))));
        }
        for (std::size_t i = 0; i < readerCount; ++i) {
            ends_.push_back(Qor::make<Demuxer>(Qor::Name("end"), Qor::make<In>(), Qor::make<Out>(),
                                               Demuxer::Side::connecting));
            for (auto const& row : rows_) {
                adapters_.push_back(
                    row->qorNboAttrLogSaIs(Qor::AdapterState::Bits(Qor::AdapterState::weakNotifier),
                                           1, ends_[i]->out(), nullptr));
                adapters_.back()->qorOnInit();
            }
        }
    }
    void changeAny() { rows_[random_() % rowCount]->tunnelKeyIs(++number_ & 0xFFFFFF); }
    void changeAll() {
        for (auto const& row : rows_) row->tunnelKeyIs(++number_ & 0xFFFFFF);
    }
    bool haveRoom() const { return ends_.back()->out()->hasSufficientBuffer(); }
    void drainAll() {
        for (auto const& end : ends_) drain(*end->out());
    }

  private:
    static constexpr std::size_t readerCount = 32;
    static constexpr std::size_t rowCount = 1000;
    std::vector<Qor::Ptr<Vgw::LogicalSwitch>> rows_;
    std::vector<Demuxer::Ptr> ends_;
    std::vector<Qor::Ptr<Qor::Entity::QorNboAttrLogSa>> adapters_;
    std::minstd_rand random_{1};
    std::uint32_t number_ = 0;
};

void changeToReaders(benchmark::State& state) {
    Readers readers;
    for (auto _ : state) {
        readers.changeAny();
        if (!readers.haveRoom()) readers.drainAll();
    }
    tellOperations(state);
}

// Their rings are full, and each row is marked.
void changePastReaders(benchmark::State& state) {
    Readers readers;
    while (readers.haveRoom()) readers.changeAll();
    readers.changeAll();
    for (auto _ : state) readers.changeAny();
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
    cell(writeRow, "floor", writeFloor);
    cell(writeRow, "ours", writeOurs);
    cell(readRow, "floor", readFloor);
    cell(readRow, "ours", readOurs);
    addMixedFloor();
    addMixedOurs();
#ifdef VGW_BENCH_FLATBUFFERS
    addFlatbuffers();
#endif
#ifdef VGW_BENCH_CAPNPROTO
    addCapnproto();
#endif
#ifdef VGW_BENCH_PROTOBUF
    addProtobuf();
#endif
    cell("setter to record in the ring", "ours", setterToRing);
    cell("record to applied", "ours", recordToApplied);
    cell("any of 1000 rows changes, to 32 readers", "ours", changeToReaders);
    cell("any of 1000 rows changes, past 32 that do not read", "ours", changePastReaders);
}

}  // namespace Bench
