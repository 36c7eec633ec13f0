// Long keys of texts: what comes in, what goes on, and how the texts under them are cut.
#include "Peers.h"
#include "Records.h"

#include <qor/attrlog/session/Session.h>

#include <vgw/attrlog/PhysicalLocator.h>
#include <vgw/attrlog/PhysicalPort.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <string_view>

namespace {

using Qor::make;
using Qor::Name;
using Qor::String8;
using Qor::U32;

using Locator = Vgw::PhysicalLocator;
constexpr Qor::AttributeId bfd = 387;
// Of a removal one byte shorter than a block.
constexpr std::size_t longest = 49152 - 33 - 1;

String8 keyOf(std::size_t length) { return String8(std::string(length, 'k')); }

class TextKey : public testing::Test {
  protected:
    TextKey() { peers.mount(row, copy); }

    // What a peer that keeps to no limit of ours writes about the mounted row.
    void write(Peer& peer, Qor::Ptr<Locator> const& about, Qor::AttributeId id, String8 const& key,
               std::string_view chunk) {
        using Token = Peer::Out::TransactToken;
        auto const& out = peer.outPtr();
        out->nextHeaderIs({peer.adapter(about)->entityId(), id});
        out << Token::begin << key;
        out->putBytes(chunk);
        out << Token::end;
    }
    void expectRefused(Peer const& peer) {
        EXPECT_EQ(peer.failure, "bfd: a key that no record can hold");
    }

    Peers peers;
    Qor::Ptr<Locator> row = make<Locator>(Name("l"));
    Qor::Ptr<Locator> copy = make<Locator>(Name("l"));
};

TEST_F(TextKey, ThatCouldNotBeSentOnEndsItsConnectionAndNoOther) {
    Peer other(Peer::Demuxer::Side::accepting);
    auto const relayed = other.attach(row);
    write(peers.reader, copy, bfd, keyOf(60'000), "v");
    carry(peers.reader, peers.source);
    expectRefused(peers.source);
    EXPECT_EQ(row->bfds(), 0U);
    row->bfdIs("short", "v");
    EXPECT_EQ(other.failure, "");
    EXPECT_NE(hex(takeBytes(other.out())).find(hexOf("short") + hexOf("v")), std::string::npos);
}

TEST_F(TextKey, ThatCouldNotBeSentOnIsRefusedToACopyToo) {
    write(peers.source, row, bfd, keyOf(60'000), "v");
    carry(peers.source, peers.reader);
    expectRefused(peers.reader);
    EXPECT_EQ(copy->bfds(), 0U);
}

TEST_F(TextKey, ThatCouldNotBeSentOnIsRefusedWhereItHasCrossed) {
    row->keyIs({Vgw::EncapsulationType::vxlan_over_ipv4, Kelp::IpAddr::fromHostOrder(0xC0000201)});
    write(peers.reader, copy, bfd, keyOf(60'000), "v");
    carry(peers.reader, peers.source);
    expectRefused(peers.source);
    EXPECT_EQ(row->bfds(), 0U);
}

TEST_F(TextKey, RemovedThatNeverStoodIsRefusedWhereItHasCrossed) {
    row->keyIs({Vgw::EncapsulationType::vxlan_over_ipv4, Kelp::IpAddr::fromHostOrder(0xC0000201)});
    write(peers.reader, copy, -bfd, keyOf(60'000), "");
    carry(peers.reader, peers.source);
    expectRefused(peers.source);
}

TEST_F(TextKey, TheLongestGoesOverAndOnBothWays) {
    row->bfdIs(keyOf(longest), "there");
    peers.settle();
    EXPECT_EQ(copy->bfd(keyOf(longest)), "there");
    copy->bfdIs(keyOf(longest), "back");
    peers.settle();
    EXPECT_EQ(row->bfd(keyOf(longest)), "back");
    copy->bfdDel(keyOf(longest));
    peers.settle();
    EXPECT_EQ(row->bfds(), 0U);
    EXPECT_EQ(peers.source.failure, "");
    EXPECT_EQ(peers.reader.failure, "");
}

// A chunk of a text under a key so long that little room, none or less is left of the usual record.
class TextUnderALongKey : public TextKey, public testing::WithParamInterface<std::size_t> {};

TEST_P(TextUnderALongKey, GoesOverInChunks) {
    String8 const key = keyOf(GetParam());
    std::string value;
    for (int n = 0; value.size() < 60'000; ++n) value += std::to_string(n) + ' ';
    peers.source.out().greatestFrameIs(Qor::NboAttrLog::leastGreatestFrame);
    row->bfdIs(key, String8(value));
    peers.settle();
    EXPECT_EQ(peers.source.failure, "");
    EXPECT_EQ(copy->bfd(key), String8(value));
    EXPECT_FALSE(peers.source.adapter(row)->flowOut());
}

INSTANTIATE_TEST_SUITE_P(Lengths, TextUnderALongKey,
                         testing::Values(31710, 31711, 31712, 32734, 32735, 32736, 40000, longest));

TEST(Hello, OfAPeerThatCouldNotTakeTheLongestRecordIsRefused) {
    for (bool const isEnough : {false, true}) {
        Qor::NboAttrLog::MemoryTransport near;
        Qor::NboAttrLog::MemoryTransport far;
        Qor::NboAttrLog::MemoryTransport::connect(near, far);
        Qor::NboAttrLog::Session session({}, near, nullptr);
        std::string const size = isEnough ? "00010000" : "0000ffff";
        far.write(bytesOf(frameHex(2, 0, 0, "01514f524c00000002" + size, 1, 0)));
        session.service();
        EXPECT_EQ(session.closed(), isEnough ? "" : "the peer takes frames of 65535 bytes only");
    }
}

// The records of one text, taken apart as the format says.
struct Chunks {
    explicit Chunks(std::string_view bytes) {
        auto const number = [&](std::size_t at, std::size_t count) {
            U32 result = 0;
            while (count-- > 0) result = result << 8 | static_cast<unsigned char>(bytes[at++]);
            return result;
        };
        for (std::size_t at = 0; at < bytes.size(); at += number(at, 4) + 4) {
            U32 const size = number(at, 4) + 4;
            bool const isRecord = (number(at + 4, 1) & 0x7F) == 0;
            if (!isRecord || number(at + 13, 4) != 388) continue;
            ++records;
            othersKey = othersKey || number(at + 28, 2) != 7;
            greatest = std::max(greatest, size);
            goesOn = (number(at + 4, 1) & 0x80) != 0;
            text += bytes.substr(at + 30, size - 31);
        }
    }

    U32 records = 0;
    bool othersKey = false;
    U32 greatest = 0;
    bool goesOn = false;
    std::string text;
};

TEST(TextMember, ResumesAtItsPlaceWithItsKeyInEveryRecord) {
    Peer peer(Peer::Demuxer::Side::connecting, 2);
    auto const port = make<Vgw::PhysicalPort>(Name("p"));
    auto const adapter = peer.attach(port);
    std::string value;
    for (int n = 0; value.size() < 500'000; ++n) value += std::to_string(n) + ' ';
    port->vlanBindingIs(7, String8(value));
    std::string bytes;
    int pauses = -1;
    for (std::string piece; !(piece = takeBytes(peer.out())).empty(); ++pauses) {
        bytes += piece;
        EXPECT_EQ(adapter->flowOut() != nullptr, Chunks(bytes).goesOn);
        peer.demuxer->serveFlows(~Qor::U64{0});
    }
    EXPECT_GT(pauses, 5);
    Chunks const chunks(bytes);
    EXPECT_EQ(chunks.records, (value.size() + 32736) / 32737);
    EXPECT_FALSE(chunks.othersKey);
    EXPECT_EQ(chunks.greatest, 32768U);
    EXPECT_EQ(chunks.text, value);
    EXPECT_FALSE(adapter->flowOut());
}

}  // namespace
