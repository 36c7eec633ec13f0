// A peer's columns of the mixed rows. `Peer` has
//
//   batch                                   how many records it writes best into one message
//   write(first, last, room) -> length      a message of those records
//   read(mixture, message, length, taken)   takes its records; false of a message that is not sound
//
// The messages stand in a buffer, each behind its length.
#ifndef BENCH_ATTRLOG_MIXED_MIXED_PEER_H
#define BENCH_ATTRLOG_MIXED_MIXED_PEER_H

#include <algorithm>

#include "../peers/Peers.h"
#include "Mixture.h"

namespace Bench {

template <class Peer>
void writeMixed(Peer& peer, Mixture const& mixture, Messages& messages) {
    auto const* const all = mixture.records().data();
    for (std::size_t at = 0; at < Mixture::size; at += Peer::batch) {
        auto const* const last = all + std::min(at + Peer::batch, Mixture::size);
        messages.written(peer.write(all + at, last, messages.room()));
    }
}

template <class Peer>
bool readMixed(Peer& peer, Mixture const& mixture, Messages& messages, Taken& taken) {
    messages.rewind();
    for (std::size_t at = 0; at < Mixture::size; at += Peer::batch) {
        std::uint64_t length = 0;
        auto const* const message = messages.next(length);
        if (!peer.read(mixture, message, length, taken)) return false;
    }
    return true;
}

template <class Peer>
void addMixedPeer(std::string const& column) {
    static constexpr std::size_t longest = 160 * Peer::batch;
    cell(writeMixedRow, column, [](auto& state) {
        Mixture const mixture;
        Peer peer;
        Messages messages(std::size_t{8} * 49152, longest);
        for (auto _ : state) writeMixed(peer, mixture, messages);
        tellOperations(state, Mixture::size);
    });
    cell(readMixedRow, column, [](auto& state) {
        Mixture const mixture;
        Peer peer;
        Messages messages(longest * (Mixture::size / Peer::batch + 2), longest);
        writeMixed(peer, mixture, messages);
        Taken taken;
        for (auto _ : state) {
            taken = Taken();
            if (!readMixed(peer, mixture, messages, taken)) break;
            benchmark::DoNotOptimize(taken);
        }
        if (taken != mixture.all()) state.SkipWithError("not every record was read");
        tellOperations(state, Mixture::size);
    });
}

}  // namespace Bench

#endif
