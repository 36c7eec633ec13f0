// The frame reader: what it takes, what it waits for, and what it refuses by name.
#include <qor/attrlog/NboAttrLogIn.h>

#include <tests/unit/attrlog/Records.h>

#include <gtest/gtest.h>

#include <string>

namespace {

using Qor::NboAttrLog::Frame;
using Qor::NboAttrLog::FrameKind;
using FrameReader = Qor::NboAttrLog::In;

constexpr std::uint64_t entityNumber = 0x8000000000000002;
// Where the parts of a frame begin: its size is at 0.
constexpr std::size_t kindAt = 4;
constexpr std::size_t tokenAt = 27;

std::string const plainFrame = bytesOf(record(entityNumber, 388, "00000007"));

std::string with(std::size_t at, unsigned byte) {
    std::string bytes = plainFrame;
    bytes[at] = static_cast<char>(byte);
    return bytes;
}

// What reading it raises; the bytes come at once, or so that the frame lies across the ring's end.
std::string refusal(std::string const& bytes, std::size_t before = 0) {
    FrameReader in(64);
    std::string const past(before, 'x');
    in.receive(past);
    in.nextText(static_cast<Qor::U32>(before));
    in.releaseRead();
    in.receive(bytes);
    Frame frame;
    try {
        return in.nextFrame(frame) ? "taken" : "waits";
    } catch (Qor::AttrLogRecordException const& e) {
        return e.what();
    }
}

void expectRefused(std::string const& bytes, std::string const& reason) {
    EXPECT_NE(refusal(bytes).find(reason), std::string::npos) << refusal(bytes);
    EXPECT_NE(refusal(bytes, 50).find(reason), std::string::npos) << refusal(bytes, 50);
}

TEST(Frames, ThatAreWholeAreTakenWhereverTheyLieInTheRing) {
    for (std::size_t before = 0; before < 64; ++before)
        EXPECT_EQ(refusal(plainFrame, before), "taken");
}

TEST(Frames, AreWaitedForToTheirLastByte) {
    for (std::size_t size = 0; size < plainFrame.size(); ++size) {
        EXPECT_EQ(refusal(plainFrame.substr(0, size)), "waits") << size;
        EXPECT_EQ(refusal(plainFrame.substr(0, size), 40), "waits") << size;
    }
}

TEST(Frames, AreReadToTheirEndTokenAndNoFurther) {
    FrameReader in(128);
    in.receive(plainFrame + bytesOf(marker(entityNumber, 388, "02")));
    Frame frame;
    ASSERT_TRUE(in.nextFrame(frame));
    EXPECT_EQ(frame.kind, FrameKind::record);
    EXPECT_EQ(frame.header.entityId.value(), entityNumber);
    EXPECT_EQ(frame.header.attributeId, 388);
    EXPECT_EQ(frame.payloadSize, 4U);
    EXPECT_EQ(in.nextU32(), 7U);
    EXPECT_THROW(in.nextU8(), Qor::AttrLogRecordException);
    in.frameDone(frame);
    ASSERT_TRUE(in.nextFrame(frame));
    EXPECT_EQ(frame.kind, FrameKind::transaction);
    EXPECT_FALSE(frame.moreChunks);
}

TEST(Frames, OfWhichMoreFollowsSaySo) {
    FrameReader in(128);
    in.receive(bytesOf(chunk(entityNumber, 386, "61")));
    Frame frame;
    ASSERT_TRUE(in.nextFrame(frame));
    EXPECT_TRUE(frame.moreChunks);
    EXPECT_TRUE(in.moreChunks());
    EXPECT_EQ(frame.kind, FrameKind::record);
}

// Of the size alone: nothing is waited for that will never be taken.
TEST(Frames, ThatAreTooLongAreRefusedByTheirSize) {
    FrameReader in(64);
    in.greatestFrameIs(29);
    in.receive(plainFrame);
    Frame frame;
    EXPECT_TRUE(in.nextFrame(frame));
    in.frameDone(frame);
    in.greatestFrameIs(28);
    in.receive(plainFrame.substr(0, 4));
    try {
        in.nextFrame(frame);
        FAIL() << "not refused";
    } catch (Qor::AttrLogRecordException const& e) {
        EXPECT_NE(std::string(e.what()).find("a frame of 29 bytes, the greatest is 28"),
                  std::string::npos)
            << e.what();
    }
    expectRefused(bytesOf("00100001"), "a frame of 1048577 bytes, the greatest is 1048576");
    EXPECT_EQ(refusal(bytesOf("00100000")), "waits");
    expectRefused(bytesOf("ffffffff"), "a frame of 4294967295 bytes, the greatest is 1048576");
}

TEST(Frames, ThatAreTooShortAreRefusedByTheirSize) {
    expectRefused(with(3, 24), "a frame of 24 bytes, the least is 25");
    expectRefused(with(3, 0), "a frame of 0 bytes, the least is 25");
}

TEST(Frames, OfAnUnknownKindAreRefused) {
    expectRefused(with(kindAt, 4), "a frame of the unknown kind 4");
    expectRefused(with(kindAt, 0x7f), "a frame of the unknown kind 127");
}

TEST(Frames, ThatAreNoRecordsHaveNothingBehindThem) {
    for (unsigned const kind : {0x81, 0x82, 0x83})
        expectRefused(with(kindAt, kind), "a frame of the unknown kind " + std::to_string(kind));
}

TEST(Frames, WithoutTheirTokensAreRefused) {
    for (unsigned const token : {0, 2, 3, 255})
        expectRefused(with(tokenAt, token),
                      "token " + std::to_string(token) + " where a payload begins");
    for (unsigned const token : {0, 1, 2, 255})
        expectRefused(with(plainFrame.size() - 1, token),
                      "token " + std::to_string(token) + " where a frame ends");
}

}  // namespace
