// Records that are claimed in one piece of the ring: the bytes of any other, or nothing.
#include "Sent.h"

#include <kelp/EthAddr.h>
#include <kelp/IpAddr.h>
#include <kelp/Vni.h>
#include <qor/attrlog/NboAttrLogOut.h>
#include <qor/attrlog/PlainForm.h>
#include <vgw/values/MacVniPair.h>
#include <vgw/values/PhysicalLocatorKey.h>

#include <gtest/gtest.h>

#include <string>

namespace {

using Out = Qor::NboAttrLog::Out;
using OutPtr = Qor::Ptr<Out>;
using Edge = Out::TransactToken;
using Qor::String8;
using Qor::NboAttrLog::MsgHeader;

MsgHeader const header{Qor::EntityId(0x8000000000000002), -388};
// Head and both tokens.
constexpr std::size_t overhead = 29;

enum class Extreme { least = -2147483647 - 1, most = 2147483647 };

template <class... Values>
bool claim(Out& out, Values const&... values) {
    unsigned char* at = out.claimRecord(header, (Qor::NboAttrLog::sizeOnWire(values) + ... + 0));
    if (at == nullptr) return false;
    static_cast<void>(((at = Qor::NboAttrLog::storeOnWire(at, values)), ...));
    return true;
}

template <class Value>
void putOne(OutPtr const& out, Value const& value) {
    if constexpr (std::is_enum_v<Value>)
        out << static_cast<Qor::I32>(value);
    else
        out << value;
}

template <class... Values>
void put(OutPtr const& out, Values const&... values) {
    out->nextHeaderIs(header);
    out << Edge::begin;
    (putOne(out, values), ...);
    out << Edge::end;
}

// A ring whose block is begun.
OutPtr begun() {
    auto out = Qor::make<Out>();
    put(out, Qor::U32{7});
    return out;
}

template <class... Values>
void expectSame(Values const&... values) {
    OutPtr const parts = begun();
    put(parts, values...);
    OutPtr const piece = begun();
    ASSERT_TRUE(claim(*piece, values...));
    EXPECT_EQ(piece->frames(), parts->frames());
    EXPECT_EQ(piece->written(), parts->written());
    EXPECT_EQ(takeAll(*piece), takeAll(*parts));
}

TEST(ClaimedRecord, HasTheBytesOfOneThatIsPutInParts) {
    expectSame(true);
    expectSame(false);
    expectSame(Qor::U8{0xFE});
    expectSame(Qor::U16{0xFEDC}, true);
    expectSame(Qor::U32{0xFEDCBA98});
    expectSame(Qor::I32{-2});
    expectSame(Qor::U64{0xFEDCBA9876543210}, Qor::U64{1});
    expectSame(1792454400.25, -0.0);
    expectSame(Extreme::least, Extreme::most);
    expectSame(Kelp::IpAddr("192.0.2.1"));
    expectSame(Kelp::EthAddr("00:00:5e:00:53:01"), true);
    expectSame(Vxlan::Vni(5000));
    expectSame(Vgw::MacVniPair(Kelp::EthAddr("00:00:5e:00:53:01"), Vxlan::Vni(5000)), false);
    expectSame(Vgw::PhysicalLocatorKey(Vgw::EncapsulationType::vxlan_over_ipv4,
                                       Kelp::IpAddr("192.0.2.1")));
    expectSame(String8(), true);
    expectSame(String8("abc"), String8(std::string(300, 'x').c_str()), Qor::U16{1});
}

TEST(ClaimedRecord, IsWholeAtEachPlaceOfABlock) {
    for (std::size_t left = 0; left < 80; ++left) {
        OutPtr const parts = Qor::make<Out>();
        OutPtr const piece = Qor::make<Out>();
        for (OutPtr const& out : {parts, piece})
            out->putBytes(std::string(Out::blockSize - left, 'x'));
        put(parts, Qor::U64{1}, true);
        bool const isPiece = claim(*piece, Qor::U64{1}, true);
        EXPECT_EQ(isPiece, left >= overhead + 9) << left;
        if (!isPiece) put(piece, Qor::U64{1}, true);
        EXPECT_EQ(takeAll(*piece), takeAll(*parts)) << left;
    }
}

TEST(ClaimedRecord, IsRefusedWhereNothingWasBegunYetAndChangesNothing) {
    auto const out = Qor::make<Out>();
    EXPECT_FALSE(claim(*out, true));
    EXPECT_EQ(out->written(), 0U);
    EXPECT_EQ(out->frames(), 0U);
}

TEST(ClaimedRecord, IsRefusedWithinAnotherWhichGoesOn) {
    OutPtr const out = begun();
    out->nextHeaderIs(header);
    auto const before = out->written();
    EXPECT_FALSE(claim(*out, true));
    EXPECT_EQ(out->written(), before);
    out << Edge::begin << true << Edge::end;
    EXPECT_EQ(out->frames(), 2U);
}

TEST(ClaimedRecord, IsRefusedOverTheGreatestFrame) {
    OutPtr const out = begun();
    out->greatestFrameIs(25 + 8);
    EXPECT_TRUE(claim(*out, Qor::U64{1}));
    auto const before = out->written();
    EXPECT_FALSE(claim(*out, Qor::U64{1}, true));
    EXPECT_EQ(out->written(), before);
    EXPECT_EQ(out->frames(), 2U);
}

TEST(ClaimedRecord, IsRefusedWhereSomebodyWaitsForTheFirst) {
    struct Waker final : Qor::NboAttrLog::OutWaker {
        void onFirstFrame() override { ++told; }
        int told = 0;
    } waker;
    OutPtr const out = begun();
    out->wakerIs(&waker);
    EXPECT_TRUE(claim(*out, true)) << "one is waiting already";
    out->sentInc(out->unsent().size() - 1);
    EXPECT_TRUE(claim(*out, true));
    takeAll(*out);
    EXPECT_FALSE(claim(*out, true));
    EXPECT_EQ(waker.told, 0);
    // With room in a block, as what was taken back leaves it.
    out->nextHeaderIs(header);
    out->dropOpenFrame();
    ASSERT_TRUE(out->unsent().empty());
    EXPECT_FALSE(claim(*out, true));
    EXPECT_EQ(waker.told, 1);
    put(out, true);
    EXPECT_EQ(waker.told, 2);
}

TEST(ClaimedRecord, LeavesNothingOfATextThatWentOnBefore) {
    OutPtr const out = begun();
    out->chunkLimitIs(2);
    String8 const text("abc");
    auto position = text.iteratorConst();
    out->nextHeaderIs(header);
    out << Edge::begin;
    out->putChunk(position);
    out << Edge::end;
    ASSERT_TRUE(out->moreChunks());
    takeAll(*out);
    put(out, true);
    ASSERT_TRUE(claim(*out, true));
    EXPECT_FALSE(out->moreChunks());
}

}  // namespace
