#include <qor/attrlog/family/AdapterLevel.h>

namespace Qor {

namespace family {

void needMayApply(Entity::QorNboAttrLogSa& adapter, AttributeId id) {
    if (adapter.isActive()) throwInternalException("entity reactor is already active");
    bool const isRefused = adapter.has(AdapterState::readOnlyRemote) &&
                           !adapter.readOnlyRemoteOk(id) && !adapter.convertedToWritable(false);
    if (isRefused) {
        throwInternalException(String8("write-update from readonly proxy: ") +
                               adapter.qorNotifierEntity()->fullName());
    }
}

void needShallow(Entity const& owner) {
    constexpr int greatestDepth = 64;
    int depth = 0;
    for (Entity const* at = &owner; at; at = at->qorParent()) {
        if (++depth > greatestDepth) throw AttrLogRecordException("entities more than 64 deep");
    }
}

void throwKeyTooLong(char const* attributeName) {
    throw AttrLogRecordException(String8(attributeName) + ": a key that no record can hold");
}

AttributeId selectAlias(InboundRecord& record, bool (*isKnown)(AttributeId id)) {
    auto& in = record.in;
    U64 const listEnd = record.origin + in.nextU16();
    record.bodyOffset = in.nextU16();
    while (in.readPosition() < listEnd) {
        AttributeId const candidate = in.nextint();
        if (!isKnown(candidate)) continue;
        in.readPositionIs(std::min(listEnd, in.limit()));
        if (candidate > 0) in.nextU32();
        return candidate;
    }
    return 0;
}

}  // namespace family

}  // namespace Qor
