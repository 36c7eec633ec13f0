#include <qor/core/Format.h>
#include <qor/core/Hash.h>
#include <qor/core/Name.h>
#include <qor/core/TextHash.h>

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

namespace {

using Qor::String8;

TEST(BitReverse, MirrorsTheWord) {
    EXPECT_EQ(Qor::bitReverse(0), 0U);
    EXPECT_EQ(Qor::bitReverse(1), 0x80000000U);
    EXPECT_EQ(Qor::bitReverse(0x80000000U), 1U);
    EXPECT_EQ(Qor::bitReverse(0x12345678U), 0x1E6A2C48U);
    EXPECT_EQ(Qor::bitReverse(0xFFFFFFFFU), 0xFFFFFFFFU);
}

TEST(BitReverse, TwiceIsTheWordAgain) {
    for (std::uint32_t word = 1; word != 0; word = word * 3 + (word >> 28)) {
        ASSERT_EQ(Qor::bitReverse(Qor::bitReverse(word)), word);
        if (word > 0xF0000000U) break;
    }
}

// The steps one by one, as they are told: for each byte add, shift and add, shift and exclusive-or.
std::uint32_t stepByStep(std::vector<std::uint32_t> const& words) {
    std::uint32_t h = 0;
    for (auto const word : words) {
        for (auto const b : {word & 255U, word >> 8 & 255U, word >> 16 & 255U, word >> 24}) {
            h += b;
            h += h << 10;
            h ^= h >> 6;
        }
    }
    h += h << 3;
    h ^= h >> 11;
    h += h << 15;
    return h;
}

TEST(OneAtATimeHash, KnownValuesStay) {
    EXPECT_EQ(Qor::oneAtATimeHash(0U, 0U), 0U);
    // One word of which only the lowest byte is not zero, against the steps done by hand.
    EXPECT_EQ(Qor::oneAtATimeHash(1U), stepByStep({1}));
    EXPECT_EQ(Qor::oneAtATimeHash(0xC0000201U, 1U), stepByStep({0xC0000201U, 1}));
    EXPECT_EQ(Qor::oneAtATimeHash(0x64636261U), 0xCD8B6206U);  // the bytes a b c d
}

TEST(OneAtATimeHash, OrderOfWordsMatters) {
    EXPECT_NE(Qor::oneAtATimeHash(1U, 2U), Qor::oneAtATimeHash(2U, 1U));
}

TEST(OneAtATimeHash, IsKnownAtCompileTime) {
    constexpr auto hash = Qor::oneAtATimeHash(0x64636261U);
    static_assert(hash == 0xCD8B6206U);
    SUCCEED();
}

TEST(TextHash, KnownValuesStay) {
    EXPECT_EQ(String8().hash(), Qor::hashOfText(""));
    EXPECT_EQ(Qor::hashOfText(""), 0xBAF2A800U);
    EXPECT_EQ(Qor::hashOfText("a"), 0x9C7E5A4EU);
    EXPECT_EQ(Qor::hashOfText("abcd"), 0x62E93C68U);
    EXPECT_EQ(Qor::hashOfText("0123456789"), 0xA0C7A47AU);
    EXPECT_EQ(Qor::hashOfText("6b2f1c3e-9d47-4f0a-8a51-0c9e7d5b1234"), 0x3DF50640U);
}

TEST(TextHash, IsTheSameAtCompileTime) {
    constexpr auto hash = Qor::hashOfText("0123456789abcdefXYZ");
    EXPECT_EQ(hash, String8("0123456789abcdefXYZ").hash());
}

TEST(TextHash, DependsOnTheBytesAndNotOnTheirPlace) {
    alignas(8) char buffer[64] = {};
    std::string const text = "6b2f1c3e-9d47-4f0a-8a51-0c9e7d5b1234";
    for (std::size_t at = 0; at < 8; ++at) {
        text.copy(buffer + at, text.size());
        EXPECT_EQ(Qor::hashOfText({buffer + at, text.size()}), Qor::hashOfText(text));
    }
}

TEST(TextHash, EveryByteAndTheLengthCount) {
    for (std::size_t length = 1; length <= 48; ++length) {
        std::string const base(length, '\0');
        std::set<std::uint32_t> hashes{Qor::hashOfText(base), Qor::hashOfText(base + '\0')};
        for (std::size_t at = 0; at < length; ++at) {
            auto other = base;
            other[at] = 1;
            hashes.insert(Qor::hashOfText(other));
        }
        EXPECT_EQ(hashes.size(), length + 2) << "length " << length;
    }
}

TEST(TextHash, BytesBeforeAStepOfZeroStillCount) {
    // The middle 16 bytes make one factor of their step zero.
    std::string step(16, '\0');
    for (std::size_t i = 0; i < 8; ++i) {
        step[i] = static_cast<char>(Qor::TextHash::secret1 >> (8 * i));
    }
    EXPECT_NE(Qor::hashOfText(std::string(16, 'a') + step),
              Qor::hashOfText(std::string(16, 'b') + step));
}

TEST(TextHash, SpreadsOverBothEndsOfTheWord) {
    constexpr int texts = 1 << 16;
    constexpr int buckets = 1 << 10;
    std::vector<int> low(buckets);
    std::vector<int> high(buckets);
    for (int i = 0; i < texts; ++i) {
        auto const hash =
            Qor::format("00000000-0000-4000-8000-%012x", static_cast<unsigned>(i)).hash();
        ++low[hash % buckets];
        ++high[hash >> 22];
    }
    // 64 a bucket on average with a deviation of 8: 120 is seven deviations off.
    for (int i = 0; i < buckets; ++i) {
        auto const at = static_cast<std::size_t>(i);
        EXPECT_LT(low[at], 120) << i;
        EXPECT_LT(high[at], 120) << i;
    }
}

TEST(Rhash, IsTheReversedHashOfStringsAndNames) {
    String8 const text("ps-1");
    EXPECT_EQ(Qor::rhash(text), Qor::bitReverse(text.hash()));
    EXPECT_EQ(Qor::rhash(Qor::Name("ps-1")), Qor::rhash(text));
}

}  // namespace
