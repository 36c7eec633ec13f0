// The frame of everything that goes over a connection, in network byte order:
//
//   size:u32  kind:u8  header:22 bytes  1:u8  payload  3:u8
//
// `size` counts what follows it. The low bits of `kind` tell the sort of the frame, bit 7 that more
// chunks of the text in this record follow. Header and tokens take 29 bytes.
#ifndef QOR_ATTRLOG_MSGHEADER_H
#define QOR_ATTRLOG_MSGHEADER_H

#include <qor/attrlog/EntityId.h>
#include <qor/attrlog/NetworkOrder.h>

namespace Qor {

namespace NboAttrLog {

// What a record is about. On the wire: the id as one number, then the others in their order.
struct MsgHeader {
    EntityId entityId;
    AttributeId attributeId = 0;
    U8 headerTag = 1;
    U32 headerWordA = 0;
    U32 headerWordB = 0;
    U8 headerTail = 0;

    static constexpr U32 wireSize = 22;
    friend bool operator==(MsgHeader const&, MsgHeader const&) noexcept = default;
};

enum class FrameKind : U8 {
    record = 0,       // a value or a removal
    transaction = 1,  // begin, abort or end of an attribute's snapshot
    link = 2,         // control of the connection itself
    receipt = 3,  // how many frames of the other end had been taken when what follows was written
};

inline constexpr U8 moreChunksBit = 0x80;
// The size, the kind and the header: what stands before the payload's token.
inline constexpr U32 frameHeadSize = 4 + 1 + MsgHeader::wireSize;
// Beside the payload: the size, the kind, the header and both tokens.
inline constexpr U32 frameOverhead = frameHeadSize + 2;
// What `size` is when there is no payload.
inline constexpr U32 leastFrameSize = frameOverhead - 4;

// The header's bytes, at any address.
inline MsgHeader loadHeader(unsigned char const* at) noexcept {
    return {EntityId(loadNetworkOrder<U64>(at)),
            static_cast<AttributeId>(loadNetworkOrder<U32>(at + 8)),
            at[12],
            loadNetworkOrder<U32>(at + 13),
            loadNetworkOrder<U32>(at + 17),
            at[21]};
}
inline void storeHeader(unsigned char* at, MsgHeader const& header) noexcept {
    storeNetworkOrder(at, header.entityId.value());
    storeNetworkOrder(at + 8, static_cast<U32>(header.attributeId));
    at[12] = header.headerTag;
    storeNetworkOrder(at + 13, header.headerWordA);
    storeNetworkOrder(at + 17, header.headerWordB);
    at[21] = header.headerTail;
}

// What a connection takes unless both ends say otherwise.
inline constexpr U32 defaultGreatestFrame = 1U << 20;
// What each end takes at least.
inline constexpr U32 leastGreatestFrame = 1U << 16;
// No record of a text is longer than this, but where a chunk under a long key would be shorter than
// leastTextChunk.
inline constexpr U32 greatestTextRecord = 32768;
// Beside a key of any length that may be, a record has room for so much of the text.
inline constexpr U32 leastTextChunk = 1024;

// In headerWordB of a record that announces a child.
inline constexpr U32 adapterAnnounceCode = 151;
// Attribute ids that are the framework's.
inline constexpr AttributeId syncModeAttributeId = 135;
inline constexpr AttributeId orphanAttributeId = 136;
inline constexpr AttributeId aliasFrameAttributeId = 144;

// The parts of an orphan record's payload.
enum class PayloadSection : U8 { typeChain = 1, name = 3, entityId = 4 };

// A frame as it was read, the payload excepted. Positions are offsets in the stream.
struct Frame {
    FrameKind kind = FrameKind::record;
    bool moreChunks = false;
    MsgHeader header;
    U32 payloadSize = 0;
    U64 end = 0;  // behind the closing token
};

}  // namespace NboAttrLog

}  // namespace Qor

#endif
