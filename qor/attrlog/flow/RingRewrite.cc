#include <qor/attrlog/flow/RingRewrite.h>

#include <algorithm>
#include <cstring>

namespace Qor {

namespace NboAttrLog {

void rewriteEntityId(In& in, U64 position, EntityId const& id) {
    constexpr std::size_t width = sizeof(U64);
    U64 const words[width] = {id.value()};
    auto const first = in.pieceAt(position);
    auto const copied = std::min(first.size(), width);
    std::memcpy(first.data(), words, copied);
    if (copied == width) return;
    std::memcpy(in.pieceAt(position + copied).data(), words + copied, width - copied);
}

}  // namespace NboAttrLog

}  // namespace Qor
