#include <qor/core/Exception.h>
#include <qor/core/String8.h>

#include <gtest/gtest.h>

#include <iomanip>
#include <sstream>
#include <string>
#include <vector>

namespace {

using Qor::String8;

// Longer than what any shortcut for small strings would cover.
constexpr char uuid[] = "6b2f1c3e-9d47-4f0a-8a51-0c9e7d5b1234";

TEST(String, DefaultIsEmptyAndHasNoBlock) {
    String8 const text;
    EXPECT_EQ(text.length(), 0U);
    EXPECT_TRUE(text.empty());
    EXPECT_STREQ(text.charPtr(), "");
    EXPECT_EQ(text.data(), nullptr);
}

TEST(String, NullPointerGivesTheEmptyString) {
    char const* const nothing = nullptr;
    EXPECT_EQ(String8(nothing), String8());
    EXPECT_EQ(String8(nothing).data(), nullptr);
}

TEST(String, EmptyTextsTakeNoBlockHoweverTheyAreMade) {
    EXPECT_EQ(String8("").data(), nullptr);
    EXPECT_EQ(String8(std::string_view()).data(), nullptr);
    EXPECT_EQ((String8() + String8()).data(), nullptr);
    EXPECT_EQ(String8(uuid).substr(36).data(), nullptr);
    String8 text(uuid);
    text = "";
    EXPECT_EQ(text.data(), nullptr);
    text.init(uuid, 3, 0);
    EXPECT_EQ(text.data(), nullptr);
}

TEST(String, HoldsAnyBytesNulIncluded) {
    String8 const text(std::string_view("a\0\xff\x01", 4));
    EXPECT_EQ(text.length(), 4U);
    EXPECT_EQ(text.view(), std::string_view("a\0\xff\x01", 4));
    EXPECT_EQ(text.charPtr()[4], '\0');
}

TEST(String, CopySharesTheBlock) {
    String8 const text(uuid);
    EXPECT_EQ(text.data()->count(), 1U);
    {
        String8 const copy = text;
        EXPECT_EQ(copy.data(), text.data());
        EXPECT_EQ(text.data()->count(), 2U);
    }
    EXPECT_EQ(text.data()->count(), 1U);
}

TEST(String, MoveTakesTheBlockAndLeavesTheEmptyString) {
    String8 text(uuid);
    auto const* const block = text.data();
    String8 const moved = std::move(text);
    EXPECT_EQ(moved.data(), block);
    EXPECT_EQ(block->count(), 1U);
    EXPECT_TRUE(text.empty());  // NOLINT(bugprone-use-after-move)
}

TEST(String, AssignmentToItselfKeepsTheText) {
    String8 text(uuid);
    auto const& same = text;
    text = same;
    EXPECT_EQ(text, uuid);
    EXPECT_EQ(text.data()->count(), 1U);
}

TEST(String, AssignmentGivesUpTheOldBlock) {
    String8 const first(uuid);
    String8 text = first;
    text = "other";
    EXPECT_EQ(first.data()->count(), 1U);
    EXPECT_EQ(text, "other");
    EXPECT_EQ(first, uuid);
}

TEST(String, InitTakesAPartOfABuffer) {
    String8 text("old");
    text.init("0123456789", 3, 4);
    EXPECT_EQ(text, "3456");
}

TEST(String, InitFromItsOwnBytesIsSafe) {
    String8 text(uuid);
    text.init(text.charPtr(), 9, 4);
    EXPECT_EQ(text, "9d47");
}

TEST(String, InitFromANullPointerGivesTheEmptyString) {
    String8 text("old");
    text.init(nullptr, 0, 0);
    EXPECT_TRUE(text.empty());
}

TEST(String, AppendLeavesOtherHoldersAlone) {
    String8 text(uuid);
    String8 const before = text;
    text += "+";
    EXPECT_EQ(before, uuid);
    EXPECT_EQ(text, std::string(uuid) + "+");
}

TEST(String, AppendOfItselfDoubles) {
    String8 text("ab");
    text += text;
    EXPECT_EQ(text, "abab");
    String8 large{std::string_view(std::string(300, 'x'))};
    large += large;
    EXPECT_EQ(large, std::string_view(std::string(600, 'x')));
}

TEST(String, AppendOfAPartOfItselfIsSafe) {
    String8 text{std::string_view(std::string(290, 'x') + "tail")};
    text += text.view().substr(290);
    EXPECT_EQ(text, std::string_view(std::string(290, 'x') + "tailtail"));
}

TEST(String, AppendToTheEmptyStringShares) {
    String8 const other(uuid);
    String8 text;
    text += other;
    EXPECT_EQ(text.data(), other.data());
}

TEST(String, AppendOfNothingKeepsTheBlock) {
    String8 text(uuid);
    auto const* const block = text.data();
    text += "";
    text += String8();
    char const* const nothing = nullptr;
    text += nothing;
    EXPECT_EQ(text.data(), block);
}

TEST(String, AppendInPlaceForgetsTheHash) {
    String8 text{std::string_view(std::string(300, 'x'))};
    auto const before = text.hash();
    auto const* const block = text.data();
    text += "y";
    ASSERT_EQ(text.data(), block) << "the block has room for one more byte";
    EXPECT_NE(text.hash(), before);
    EXPECT_EQ(text.hash(), String8(std::string_view(std::string(300, 'x') + "y")).hash());
}

TEST(String, ManySmallAppendsMoveTheBytesSeldom) {
    std::string expected;
    String8 text;
    std::size_t moves = 0;
    for (int i = 0; i < 200000; ++i) {
        auto const* const before = text.data();
        char const letter[] = {static_cast<char>('a' + i % 26), '\0'};
        text += letter;
        expected += letter;
        moves += text.data() != before ? 1U : 0U;
    }
    EXPECT_EQ(text, std::string_view(expected));
    EXPECT_LT(moves, 256U + 100U);
}

TEST(String, ConcatenationSharesWhereOneSideIsEmpty) {
    String8 const text(uuid);
    EXPECT_EQ((text + String8()).data(), text.data());
    EXPECT_EQ((String8() + text).data(), text.data());
    EXPECT_EQ(text + "/x", std::string(uuid) + "/x");
    EXPECT_EQ("x/" + text, std::string("x/") + uuid);
}

TEST(String, SubstrGivesThePart) {
    String8 const text("0123456789");
    EXPECT_EQ(text.substr(3, 4), "3456");
    EXPECT_EQ(text.substr(3), "3456789");
    EXPECT_EQ(text.substr(8, 100), "89");
    EXPECT_EQ(text.substr(10, 1), "");
    EXPECT_EQ(text.substr(11, 1), "");
    EXPECT_EQ(text.substr(0, 0), "");
    EXPECT_EQ(text.substr(0x100000003LL, 1), "");
}

TEST(String, SubstrWithANegativeStartCountsFromTheEnd) {
    String8 const text("0123456789");
    EXPECT_EQ(text.substr(-3, 2), "78");
    EXPECT_EQ(text.substr(-1), "9");
    EXPECT_EQ(text.substr(-10, 2), "01");
    EXPECT_EQ(text.substr(-11, 2), "01");
    EXPECT_EQ(text.substr(std::numeric_limits<long long>::min(), 2), "01");
    EXPECT_EQ(String8().substr(-1, 1), "");
}

TEST(String, SubstrOfTheWholeSharesTheBlock) {
    String8 const text(uuid);
    EXPECT_EQ(text.substr(0).data(), text.data());
    EXPECT_EQ(text.substr(0, 36).data(), text.data());
}

TEST(String, EqualityIsByBytes) {
    EXPECT_EQ(String8(uuid), String8(uuid));
    EXPECT_NE(String8("Debug"), String8("debug"));
    EXPECT_NE(String8(std::string_view("a\0b", 3)), String8(std::string_view("a\0c", 3)));
    EXPECT_NE(String8("a"), String8());
    EXPECT_NE(String8(), String8("a"));
}

TEST(String, EqualityLooksAtEveryByte) {
    for (std::size_t length = 1; length <= 72; ++length) {
        std::string const base(length, 'x');
        for (std::size_t at = 0; at < length; ++at) {
            auto other = base;
            other[at] = 'y';
            EXPECT_NE(String8(std::string_view(base)), String8(std::string_view(other)));
        }
        EXPECT_EQ(String8(std::string_view(base)), String8(std::string_view(base)));
    }
}

TEST(String, OrderIsByUnsignedBytesThenLength) {
    EXPECT_LT(String8("abc"), String8("abd"));
    EXPECT_LT(String8("ab"), String8("abc"));
    EXPECT_LT(String8(), String8("a"));
    EXPECT_LT(String8("a"), String8("\x80"));
    EXPECT_LT(String8(std::string_view("a\0", 2)), String8(std::string_view("a\0b", 3)));
    EXPECT_LE(String8("a"), String8("a"));
    EXPECT_GE(String8("b"), String8("a"));
    EXPECT_GT(String8("b"), String8("a"));
}

TEST(String, BlocksCompareAsStringsDo) {
    String8 const a("abc");
    String8 const b("abd");
    EXPECT_TRUE(*a.data() < *b.data());
    EXPECT_FALSE(*b.data() < *a.data());
    EXPECT_TRUE(*a.data() == *String8("abc").data());
    EXPECT_FALSE(*a.data() == *b.data());
}

TEST(String, ComparesWithCTextsAndViewsOnEitherSide) {
    String8 const text("abc");
    EXPECT_TRUE(text == "abc");
    EXPECT_TRUE("abc" == text);
    EXPECT_TRUE(text == std::string_view("abc"));
    EXPECT_TRUE(text == std::string("abc"));
    EXPECT_TRUE(text < "abd");
    EXPECT_TRUE("abb" < text);
    char const* const nothing = nullptr;
    EXPECT_TRUE(String8() == nothing);
}

TEST(String, BlockSizeGrowsInStepsOfAnEighthFrom256BytesOn) {
    using Data = Qor::StringN<unsigned char>::Data;
    EXPECT_EQ(Data::entries(1), 14U);
    EXPECT_EQ(Data::entries(36), 49U);
    for (std::uint64_t length = 1; length < 0xFFFFFFFF; length = length * 9 / 8 + 1) {
        auto const size = Data::entries(static_cast<std::uint32_t>(length));
        EXPECT_GE(size, length + 13) << length;
        EXPECT_LE(size, (length + 13) * 9 / 8 + 1) << length;
        EXPECT_LE(size, Data::entries(static_cast<std::uint32_t>(length + 1))) << length;
    }
    EXPECT_GE(Data::entries(0xFFFFFFFF), 0xFFFFFFFFULL + 13);
}

TEST(String, LengthOverTheLimitIsRefusedBeforeAByteIsRead) {
    std::string_view const tooLong("x", std::size_t{0x100000000});
    EXPECT_THROW(String8{tooLong}, Qor::RangeException);
    String8 text("x");
    EXPECT_THROW(text += tooLong.substr(1), Qor::RangeException);
    EXPECT_EQ(text, "x");
}

TEST(StringIterator, WalksTheBytes) {
    std::string seen;
    for (auto const byte : String8("abc")) seen += static_cast<char>(byte);
    EXPECT_EQ(seen, "abc");
    for (auto const byte : String8()) ADD_FAILURE() << byte;
}

TEST(StringIterator, HoldsItsString) {
    String8::IteratorConst position;
    {
        String8 text(uuid);
        position = text.iteratorConst();
        text = "other";
    }
    EXPECT_EQ(*position, '6');
    EXPECT_EQ(position.text(), uuid);
}

TEST(StringIterator, ComparesByIndexAlone) {
    String8 const a("abc");
    String8 const b("xyz");
    EXPECT_EQ(a.begin(), b.begin());
    EXPECT_EQ(a.end(), b.end());
    EXPECT_NE(a.begin(), a.end());
    EXPECT_EQ(a.end().index(), 3U);
}

TEST(StringIterator, StaysAtTheEndAndReadsZeroThere) {
    auto position = String8("a").iteratorConst();
    ++position;
    EXPECT_EQ(*position, 0);
    EXPECT_FALSE(position);
    ++position;
    EXPECT_EQ(position.index(), 1U);
    EXPECT_EQ(*String8().begin(), 0);
}

TEST(StringIterator, RestEndsAtTheEndGivenOrAtTheText) {
    String8 const text("0123456789");
    String8::IteratorConst const from(text, 3);
    EXPECT_EQ(from.rest(), "3456789");
    EXPECT_EQ(from.rest(String8::IteratorConst(text, 5)), "34");
    EXPECT_EQ(from.rest(String8::IteratorConst(text, 2)), "");
    EXPECT_EQ(from.rest(String8::IteratorConst(text, 99)), "3456789");
}

TEST(StringIterator, IndexBeyondTheTextIsItsEnd) {
    auto position = String8("abc").iteratorConst();
    position.indexIs(99);
    EXPECT_EQ(position.index(), 3U);
}

TEST(StringIterator, GrowingPositionGathersPieces) {
    String8::Iterator position;
    position.append("ab");
    position.append("");
    position.append("c");
    EXPECT_EQ(position.text(), "abc");
    EXPECT_EQ(position.index(), 3U);
}

TEST(String, StreamsItsBytesAndHonoursTheWidth) {
    std::ostringstream stream;
    stream << String8(std::string_view("a\0b", 3)) << std::setw(4) << String8("x") << String8();
    EXPECT_EQ(stream.str(), std::string("a\0b   x", 7));
}

}  // namespace
