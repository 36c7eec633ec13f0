#include <qor/attrlog/NboAttrLogOut.h>

#include <qor/attrlog/FrameTooLong.h>
#include <qor/core/Exception.h>
#include <qor/core/Format.h>

#include <utility>

namespace Qor {

namespace NboAttrLog {

OutWaker::~OutWaker() = default;

Out::~Out() = default;

// Of a frame whose head goes over into the next block.
void Out::putHead(FrameKind kind, MsgHeader const& header) {
    unsigned char head[frameHeadSize] = {};
    storeHead(head, kind, header);
    putBytes({reinterpret_cast<char const*>(head), frameHeadSize});
}

// Of a frame that takes another's place, is the first that waits, or whose head goes over.
void Out::beginOddFrame(FrameKind kind, MsgHeader header) {
    dropOpenFrame();
    if (waker_ != nullptr && written() == sent()) waker_->onFirstFrame();
    frameStart_ = written();
    sectionStart_ = noFrame;
    moreChunksIs(false);
    mayPassCapIs(true);
    frameHead_ = claim(frameHeadSize);
    frameHead_ != nullptr ? storeHead(frameHead_, kind, header) : putHead(kind, header);
}

void Out::takeBackFrame() {
    writtenIs(frameStart_);
    frameStart_ = noFrame;
    mayPassCapIs(false);
}

void Out::currentPayloadSectionIs(PayloadSection section) {
    endSection(written());
    put(static_cast<U8>(section));
    sectionStart_ = written();
    put(U32{0});
}

void Out::endSection(U64 end) {
    if (sectionStart_ == noFrame) return;
    u32AtIs(sectionStart_, static_cast<U32>(end - sectionStart_ - sizeof(U32)));
    sectionStart_ = noFrame;
}

void Out::endFrame() {
    put(static_cast<U8>(TransactToken::end));
    U64 const start = frameStart_;
    U64 const size = written() - start - sizeof(U32);
    bool const isPlain = start != noFrame && size <= greatestFrame_ && sectionStart_ == noFrame &&
                         frameHead_ != nullptr && start >= sent() && !moreChunks();
    if (!isPlain) [[unlikely]] {
        return endOddFrame();
    }
    frameStart_ = noFrame;
    mayPassCapIs(false);
    storeNetworkOrder(frameHead_, static_cast<U32>(size));
    ++frames_;
}

// Of any other frame than one that lies in one piece and is the whole of its record.
void Out::endOddFrame() {
    if (!hasOpenFrame()) {
        writtenIs(written() - 1);
        throw AttrLogRecordException(
            "the record was taken back by another that began before its end");
    }
    U64 const start = std::exchange(frameStart_, noFrame);
    auto const size = static_cast<U32>(written() - start - sizeof(U32));
    mayPassCapIs(false);
    if (size > greatestFrame_) {
        writtenIs(start);
        throw FrameTooLongException(size, greatestFrame_);
    }
    endSection(written() - 1);
    u32AtIs(start, size);
    if (moreChunks()) u8AtOr(start + sizeof(U32), moreChunksBit);
    ++frames_;
}

}  // namespace NboAttrLog

}  // namespace Qor
