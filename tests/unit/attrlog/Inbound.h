// A reader that is fed bytes which the library's own writer did not make.
#ifndef TESTS_UNIT_ATTRLOG_INBOUND_H
#define TESTS_UNIT_ATTRLOG_INBOUND_H

#include "Peers.h"
#include "Records.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <string_view>

// A reader whose entities stand under ids of the peer's: 8000000000000003 and on.
class Inbound : public testing::Test {
  protected:
    static constexpr std::uint64_t first = 0x8000000000000003;

    template <class X>
    typename X::QorNboAttrLogSa::Ptr enter(Qor::Ptr<X> const& entity, std::uint64_t id = first,
                                           Qor::U32 flags = Qor::AdapterState::weakNotifier) {
        auto const adapter = X::QorNboAttrLogSa::QorNboAttrLogSaIs(
            Qor::AdapterState::Bits(flags), entity, 1, peer.outPtr(), nullptr);
        adapter->doEntityIdIs(Qor::EntityId(id), peer.demuxer, true);
        return adapter;
    }
    void feed(std::string const& hexadecimal) {
        std::string const bytes = bytesOf(hexadecimal);
        for (std::size_t at = 0; at < bytes.size() && !peer.demuxer->hasFailed();) {
            at += peer.demuxer->in()->receive(std::string_view(bytes).substr(at));
            peer.demuxer->serveFrames(~std::size_t{0});
        }
    }
    std::string sent() { return hex(takeBytes(peer.out())); }

    Peer peer{Peer::Demuxer::Side::connecting};
};

template <class Base>
struct Counting : Base {
    int heard = 0;
};

#endif
