#include "Sent.h"

#include <qor/attrlog/ConnectionOut.h>
#include <qor/core/Exception.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <set>
#include <string>
#include <thread>
#include <vector>

namespace {

using Ring = Qor::Connection::Out;

constexpr std::size_t blockSize = Ring::blockSize;

TEST(ConnectionOut, NewOneHasNothingToSend) {
    Ring const out(2);
    EXPECT_EQ(out.written(), 0U);
    EXPECT_TRUE(out.unsent().empty());
    EXPECT_EQ(out.freeBytes(), 2 * blockSize);
    EXPECT_TRUE(out.hasSufficientBuffer());
    EXPECT_EQ(out.bufferBlockSize(), 49152U);
}

TEST(ConnectionOut, NumberAcrossTwoBlocksComesOutWhole) {
    for (std::size_t before = blockSize - 8; before <= blockSize; ++before) {
        Ring out;
        std::string const head(before, 'x');
        out.putBytes(head);
        out.put(Qor::U64{0x3132333435363738});
        EXPECT_EQ(out.written(), before + 8);
        EXPECT_EQ(takeAll(out), head + "12345678");
    }
}

TEST(ConnectionOut, PiecesEndAtBlocks) {
    Ring out;
    out.putBytes(std::string(blockSize + 10, 'x'));
    EXPECT_EQ(out.unsent().size(), blockSize);
    out.sentInc(100);
    EXPECT_EQ(out.unsent().size(), blockSize - 100);
    out.sentInc(blockSize - 100);
    EXPECT_EQ(out.unsent().size(), 10U);
}

TEST(ConnectionOut, CapIsToldBeforeItIsPassed) {
    Ring out(2);
    out.putBytes(std::string(blockSize, 'x'));
    EXPECT_TRUE(out.hasSufficientBuffer());
    out.put(Qor::U8{1});
    EXPECT_FALSE(out.hasSufficientBuffer());
    EXPECT_EQ(out.freeBytes(), blockSize - 1);
}

TEST(ConnectionOut, OverTheCapIsRefusedAndCanBeTakenBack) {
    Ring out(1);
    out.put(Qor::U32{0x61626364});
    auto const recordStart = out.written();
    EXPECT_THROW(out.putBytes(std::string(blockSize, 'x')), Qor::AttrLogRecordException);
    out.writtenIs(recordStart);
    EXPECT_EQ(out.written(), 4U);
    EXPECT_EQ(out.freeBytes(), blockSize - 4);
    EXPECT_EQ(takeAll(out), "abcd");
}

TEST(ConnectionOut, SendingMakesRoom) {
    Ring out(2);
    out.putBytes(std::string(2 * blockSize, 'x'));
    EXPECT_EQ(out.freeBytes(), 0U);
    out.sentInc(blockSize - 1);
    EXPECT_EQ(out.freeBytes(), 0U);
    out.sentInc(1);
    EXPECT_EQ(out.freeBytes(), blockSize);
    out.sentInc(blockSize);
    EXPECT_EQ(out.freeBytes(), 2 * blockSize);
}

TEST(ConnectionOut, SeveralBlocksSentAtOnceLeaveTheRestWhole) {
    std::string bytes;
    for (std::size_t i = 0; bytes.size() < 4 * blockSize; ++i) bytes += std::to_string(i) + ' ';
    for (std::size_t const count : {blockSize * 2, blockSize * 2 + 7, blockSize * 3 - 1}) {
        Ring out(8);
        out.putBytes(bytes);
        out.sentInc(count);
        EXPECT_EQ(out.written(), bytes.size());
        EXPECT_EQ(out.freeBytes(), 8 * blockSize - bytes.size() + count / blockSize * blockSize);
        EXPECT_EQ(takeAll(out), bytes.substr(count));
    }
}

#ifndef QOR_PLAIN_NEW  // under the sanitizers every block is an allocation of its own
// Where the pieces lie that come out of a ring of so many full blocks.
std::set<void const*> fillAndEmpty(std::size_t blocks) {
    Ring out(static_cast<Qor::U32>(blocks));
    out.putBytes(std::string(blocks * blockSize, 'x'));
    std::set<void const*> places;
    while (!out.unsent().empty()) {
        places.insert(out.unsent().data());
        out.sentInc(out.unsent().size());
    }
    return places;
}

// How many blocks of a second ring are a first one's, when somebody else takes all the memory that
// was given back.
std::size_t takenAgain(std::size_t first, std::size_t second) {
    auto const before = fillAndEmpty(first);
    std::vector<std::unique_ptr<unsigned char[]>> others;
    while (others.size() < 64) others.push_back(std::make_unique<unsigned char[]>(blockSize));
    auto const after = fillAndEmpty(second);
    return static_cast<std::size_t>(std::count_if(
        after.begin(), after.end(), [&](void const* place) { return before.count(place) != 0; }));
}

TEST(ConnectionOut, BlocksThatWereSentServeTheNextConnection) { EXPECT_EQ(takenAgain(8, 8), 8U); }

TEST(ConnectionOut, NoMoreThanEightBlocksAreKept) { EXPECT_EQ(takenAgain(20, 20), 8U); }
#endif

TEST(ConnectionOut, BlocksMayBeGivenBackOnAnotherThread) {
    for (int round = 0; round < 3; ++round) {
        auto out = std::make_unique<Ring>();
        std::string const bytes(3 * blockSize + 1, 'x');
        out->putBytes(bytes);
        std::string taken;
        std::thread([&] {
            taken = takeAll(*out);
            out = nullptr;
        }).join();
        EXPECT_EQ(taken, bytes);
    }
}

TEST(ConnectionOut, TakingBackAcrossBlocksLeavesWhatWasBefore) {
    for (std::size_t const kept :
         {std::size_t{0}, std::size_t{1}, blockSize - 1, blockSize, blockSize + 1, 2 * blockSize}) {
        Ring out;
        std::string const head(kept, 'k');
        out.putBytes(head);
        out.putBytes(std::string(2 * blockSize + 5, 'x'));
        out.writtenIs(kept);
        EXPECT_EQ(out.written(), kept);
        out.put(Qor::U16{0x6162});
        EXPECT_EQ(takeAll(out), head + "ab");
    }
}

TEST(ConnectionOut, TakingBackAfterSendingGoesByOffset) {
    Ring out;
    out.putBytes(std::string(blockSize + 100, 'x'));
    out.sentInc(blockSize + 50);
    out.writtenIs(blockSize + 60);
    out.put(Qor::U16{0x6162});
    EXPECT_EQ(takeAll(out), std::string(10, 'x') + "ab");
}

TEST(ConnectionOut, SizeInFrontIsFilledInAfterwards) {
    for (std::size_t before = blockSize - 4; before <= blockSize; ++before) {
        Ring out;
        std::string const head(before, 'x');
        out.putBytes(head);
        auto const place = out.written();
        out.put(Qor::U32{0});
        out.putBytes("body");
        out.u32AtIs(place, 0x41424344);
        EXPECT_EQ(takeAll(out), head + "ABCDbody");
    }
}

TEST(ConnectionOutDeathTest, WhatWasSentStays) {
    Ring out;
    out.put(Qor::U64{1});
    out.sentInc(4);
    EXPECT_DEATH(out.writtenIs(3),
                 "Assertion 'sent\\(\\) <= offset && offset <= written\\(\\)' failed");
    EXPECT_DEATH(out.u32AtIs(0, 1), "Assertion");
    EXPECT_DEATH(out.sentInc(5), "Assertion 'count <= written\\(\\) - sent\\(\\)' failed");
}

}  // namespace
