#include <qor/attrlog/NboAttrLogIn.h>

#include <qor/core/Format.h>

namespace Qor {

namespace NboAttrLog {

namespace {

void needSize(U32 size, U32 greatest) {
    if (size < leastFrameSize) {
        throw AttrLogRecordException(
            format("a frame of %u bytes, the least is %u", size, leastFrameSize));
    }
    if (size > greatest) {
        throw AttrLogRecordException(
            format("a frame of %u bytes, the greatest is %u", size, greatest));
    }
}

void readKind(In& in, Frame& frame) {
    U8 const kind = in.nextU8();
    frame.moreChunks = (kind & moreChunksBit) != 0;
    frame.kind = static_cast<FrameKind>(kind & ~moreChunksBit);
    bool const isKnown = frame.kind <= FrameKind::receipt;
    if (!isKnown || (frame.moreChunks && frame.kind != FrameKind::record)) {
        throw AttrLogRecordException(format("a frame of the unknown kind %u", U32{kind}));
    }
}

void readHeader(In& in, MsgHeader& header) {
    header.entityId = in.nextEntityId();
    header.attributeId = in.nextint();
    header.headerTag = in.nextU8();
    header.headerWordA = in.nextU32();
    header.headerWordB = in.nextU32();
    header.headerTail = in.nextU8();
}

}  // namespace

In::~In() = default;

bool In::nextFrameInPieces(Frame& frame) {
    if (available() < sizeof(U32)) return false;
    U64 const start = readPosition();
    U32 const size = nextU32();
    needSize(size, greatestFrame_);
    if (available() < size) {
        readPositionIs(start);
        return false;
    }
    frame.end = start + sizeof(U32) + size;
    frame.payloadSize = size - leastFrameSize;
    readKind(*this, frame);
    readHeader(*this, frame.header);
    needTokens(readPosition(), frame.end);
    nextU8();
    limitIs(frame.end - 1);
    moreChunksIs(frame.moreChunks);
    return true;
}

void In::needTokens(U64 payload, U64 end) const {
    using Token = Connection::Out::TransactToken;
    U8 const begin = byteAt(payload);
    U8 const close = byteAt(end - 1);
    if (begin != static_cast<U8>(Token::begin)) {
        throw AttrLogRecordException(format("token %u where a payload begins", U32{begin}));
    }
    if (close != static_cast<U8>(Token::end)) {
        throw AttrLogRecordException(format("token %u where a frame ends", U32{close}));
    }
}

void throwWrongEntityType() { throw AttrLogEntityException("Entity is the wrong type"); }

}  // namespace NboAttrLog

}  // namespace Qor
