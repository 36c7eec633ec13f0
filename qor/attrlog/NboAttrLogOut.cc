#include <qor/attrlog/NboAttrLogOut.h>

#include <qor/attrlog/FrameTooLong.h>
#include <qor/core/Exception.h>
#include <qor/core/Format.h>

namespace Qor {

namespace NboAttrLog {

namespace {

void storeHead(unsigned char* at, FrameKind kind, MsgHeader const& header) {
    storeNetworkOrder(at, U32{0});
    at[4] = static_cast<unsigned char>(kind);
    storeNetworkOrder(at + 5, header.entityId.value());
    storeNetworkOrder(at + 13, static_cast<U32>(header.attributeId));
    at[17] = header.headerTag;
    storeNetworkOrder(at + 18, header.headerWordA);
    storeNetworkOrder(at + 22, header.headerWordB);
    at[26] = header.headerTail;
}

}  // namespace

OutWaker::~OutWaker() = default;

Out::~Out() = default;

void Out::beginFrame(FrameKind kind, MsgHeader const& header) {
    dropOpenFrame();
    if (waker_ != nullptr && written() == sent()) waker_->onFirstFrame();
    frameStart_ = written();
    sectionStart_ = noFrame;
    moreChunksIs(false);
    mayPassCapIs(true);
    frameHead_ = claim(frameHeadSize);
    if (frameHead_ != nullptr) [[likely]] {
        storeHead(frameHead_, kind, header);
    } else {
        unsigned char head[frameHeadSize];
        storeHead(head, kind, header);
        putBytes({reinterpret_cast<char const*>(head), frameHeadSize});
    }
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
    if (!hasOpenFrame()) [[unlikely]] {
        writtenIs(written() - 1);
        throw AttrLogRecordException(
            "the record was taken back by another that began before its end");
    }
    auto const size = static_cast<U32>(written() - frameStart_ - sizeof(U32));
    mayPassCapIs(false);
    U64 const start = frameStart_;
    frameStart_ = noFrame;
    if (size > greatestFrame_) [[unlikely]] {
        writtenIs(start);
        throw FrameTooLongException(size, greatestFrame_);
    }
    if (sectionStart_ != noFrame) [[unlikely]] {
        endSection(written() - 1);
    }
    if (frameHead_ != nullptr && start >= sent()) [[likely]] {
        storeNetworkOrder(frameHead_, size);
    } else {
        u32AtIs(start, size);
    }
    if (moreChunks()) u8AtOr(start + sizeof(U32), moreChunksBit);
    ++frames_;
}

}  // namespace NboAttrLog

}  // namespace Qor
