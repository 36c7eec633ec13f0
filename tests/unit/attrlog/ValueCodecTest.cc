#include "Sent.h"

#include <qor/attrlog/ConnectionSizeAnchor.h>
#include <qor/attrlog/NboAttrLogIn.h>
#include <qor/attrlog/NboAttrLogOut.h>
#include <qor/core/Exception.h>
#include <qor/core/Name.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <string>
#include <vector>

namespace {

using namespace std::string_view_literals;
using In = Qor::NboAttrLog::In;
using Out = Qor::NboAttrLog::Out;
using OutPtr = Qor::Ptr<Out>;
using Qor::String8;

template <class Value>
std::string wireOf(Value const& value) {
    OutPtr const out = Qor::make<Out>();
    out << value;
    return takeAll(*out);
}

Qor::Ptr<In> reading(std::string_view bytes) {
    auto in = Qor::make<In>();
    EXPECT_EQ(in->receive(bytes), bytes.size());
    return in;
}

TEST(ValueCodec, NumbersGoInNetworkByteOrder) {
    EXPECT_EQ(wireOf(Qor::U8{0x12}), "\x12"sv);
    EXPECT_EQ(wireOf(Qor::U16{0x1234}), "\x12\x34"sv);
    EXPECT_EQ(wireOf(Qor::U32{0x12345678}), "\x12\x34\x56\x78"sv);
    EXPECT_EQ(wireOf(Qor::U64{0x123456789ABCDEF0}), "\x12\x34\x56\x78\x9A\xBC\xDE\xF0"sv);
    EXPECT_EQ(wireOf(1ULL), "\0\0\0\0\0\0\0\1"sv);
    EXPECT_EQ(wireOf(-2), "\xFF\xFF\xFF\xFE"sv);
}

TEST(ValueCodec, TruthValuesAreOneByte) {
    EXPECT_EQ(wireOf(true), "\1"sv);
    EXPECT_EQ(wireOf(false), "\0"sv);
    EXPECT_TRUE(reading("\1"sv)->nextbool());
    EXPECT_FALSE(reading("\0"sv)->nextbool());
}

TEST(ValueCodec, TruthValueOverOneIsRefusedAndLeftUnread) {
    auto const in = reading("\2"sv);
    EXPECT_THROW(in->nextbool(), Qor::AttrLogRecordException);
    EXPECT_EQ(in->readPosition(), 0U);
}

TEST(ValueCodec, SecondsAreAnIeeeDouble) {
    EXPECT_EQ(wireOf(1.0), "\x3F\xF0\0\0\0\0\0\0"sv);
    for (auto const seconds : {0.0, -0.0, 1.5, 1792454400.25, std::numeric_limits<double>::max(),
                               std::numeric_limits<double>::denorm_min()}) {
        EXPECT_EQ(reading(wireOf(seconds))->nextSeconds(), seconds);
    }
    EXPECT_TRUE(std::isnan(reading(wireOf(std::nan("")))->nextSeconds()));
}

TEST(ValueCodec, StringsHaveTheirLengthInFront) {
    EXPECT_EQ(wireOf(String8("abc")), "\0\0\0\3abc"sv);
    EXPECT_EQ(wireOf(String8()), "\0\0\0\0"sv);
    EXPECT_EQ(wireOf(Qor::Name("ps")), "\0\0\0\2ps"sv);
    EXPECT_EQ(reading("\0\0\0\3a\0c"sv)->nextString(), "a\0c"sv);
    EXPECT_EQ(reading("\0\0\0\0"sv)->nextString().data(), nullptr);
}

TEST(ValueCodec, CTextGoesAsAStringAndNotAsATruthValue) {
    OutPtr const out = Qor::make<Out>();
    out << "ab";
    EXPECT_EQ(takeAll(*out), "\0\0\0\2ab"sv);
}

TEST(ValueCodec, MinusOneIsReadAsTheGreatestUnsignedNumber) {
    EXPECT_EQ(reading(wireOf(-1))->nextU32(), 0xFFFFFFFFU);
    EXPECT_EQ(reading(wireOf(-1))->nextint(), -1);
}

TEST(ValueCodec, DeclaredLengthPastWhatIsThereIsRefused) {
    auto const in = reading(
        "\xFF\xFF\xFF\xFF"
        "abc"sv);
    try {
        in->nextString();
        FAIL();
    } catch (Qor::AttrLogRecordException const& exception) {
        EXPECT_STREQ(exception.what(), "text of 4294967295 bytes needed at offset 0, 3 available");
    }
    EXPECT_EQ(in->readPosition(), 0U);
}

TEST(ValueCodec, ValueCutAnywhereIsRefusedAndLeftUnread) {
    for (std::size_t cut = 0; cut < 7; ++cut) {
        auto const in = reading("\0\0\0\3abc"sv.substr(0, cut));
        EXPECT_THROW(in->nextString(), Qor::AttrLogRecordException) << cut;
        EXPECT_EQ(in->readPosition(), 0U) << cut;
    }
    for (std::size_t cut = 0; cut < 8; ++cut) {
        auto const in = reading("\0\0\0\0\0\0\0\1"sv.substr(0, cut));
        EXPECT_THROW(in->nextU64(), Qor::AttrLogRecordException) << cut;
        EXPECT_EQ(in->readPosition(), 0U) << cut;
    }
}

TEST(ValueCodec, ReadingPastTheEndTellsOffsetNeededAndAvailable) {
    auto const in = reading("\0\1\2\3\4\5"sv);
    in->nextU32();
    try {
        in->nextU64();
        FAIL();
    } catch (Qor::AttrLogRecordException const& exception) {
        EXPECT_STREQ(exception.what(), "8 bytes needed at offset 4, 2 available");
    }
}

// A random value of one of the kinds, put into a stream and expected back from another.
struct Sample {
    int kind;
    Qor::U64 number;
    String8 text;

    void put(OutPtr const& out) const {
        switch (kind) {
            case 0:
                out << (number % 2 == 0);
                break;
            case 1:
                out << static_cast<Qor::U16>(number);
                break;
            case 2:
                out << static_cast<Qor::U32>(number);
                break;
            case 3:
                out << number;
                break;
            case 4:
                out << static_cast<int>(number);
                break;
            default:
                out << text;
        }
    }

    bool comesFrom(In& in) const {
        switch (kind) {
            case 0:
                return in.nextbool() == (number % 2 == 0);
            case 1:
                return in.nextU16() == static_cast<Qor::U16>(number);
            case 2:
                return in.nextU32() == static_cast<Qor::U32>(number);
            case 3:
                return in.nextU64() == number;
            case 4:
                return in.nextint() == static_cast<int>(number);
            default:
                return in.nextString() == text;
        }
    }
};

Sample randomSample(std::mt19937_64& random) {
    auto const text = std::string(random() % 200, static_cast<char>(random()));
    return {static_cast<int>(random() % 6), random() >> random() % 64, std::string_view(text)};
}

TEST(ValueCodec, MixedValuesComeBackOverWrappingRings) {
    for (Qor::U64 seed = 1; seed <= 20; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        std::mt19937_64 random(seed);
        OutPtr const out = Qor::make<Out>();
        In in(static_cast<Qor::U32>(211 + seed * 37));
        for (int i = 0; i < 5000; ++i) {
            auto const sample = randomSample(random);
            sample.put(out);
            while (!out->unsent().empty()) {
                auto const piece = out->unsent().substr(0, 1 + random() % 64);
                ASSERT_EQ(in.receive(piece), piece.size());
                out->sentInc(piece.size());
            }
            ASSERT_TRUE(sample.comesFrom(in)) << "value " << i;
            ASSERT_EQ(in.available(), 0U);
            in.releaseRead();
        }
        EXPECT_EQ(in.received(), out->written());
    }
}

TEST(TextChunks, ChunkTakesWhatTheLimitAllowsAndMovesThePosition) {
    OutPtr const out = Qor::make<Out>();
    auto position = String8("0123456789").iteratorConst();
    {
        Qor::ConnectionOutSizeAnchor const anchor(out, 4);
        out << position;
        EXPECT_EQ(position.index(), 4U);
        out << position;
    }
    EXPECT_EQ(out->chunkLimit(), Out::defaultChunkLimit);
    EXPECT_EQ(takeAll(*out), "01234567");
    out << position;
    EXPECT_FALSE(position);
    EXPECT_EQ(takeAll(*out), "89");
}

TEST(TextChunks, EmptyTextIsAnEmptyChunk) {
    OutPtr const out = Qor::make<Out>();
    auto position = String8().iteratorConst();
    out << position;
    EXPECT_EQ(out->written(), 0U);
}

TEST(TextChunks, ExtentIsWhatTheRecordHasLeft) {
    auto const in = reading("abcdefgh");
    String8::Iterator gathered;
    {
        Qor::ConnectionInSizeAnchor const record(in, 5);
        in->nextU8();
        in >> gathered;
        EXPECT_EQ(gathered.text(), "bcde");
        in >> gathered;
        EXPECT_EQ(gathered.text(), "bcde") << "nothing is left";
    }
    in >> gathered;
    EXPECT_EQ(gathered.text(), "bcdefgh");
}

}  // namespace
