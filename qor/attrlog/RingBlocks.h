// The blocks that outgoing rings are made of. Those that nobody uses are kept for the next need, of
// any connection of the thread, eight at most: a ring that fills and empties would otherwise have
// the system take their pages back, and bring them again, each time. A connection at rest holds
// none.
//
// Threads: a block may be given back on another thread than it was taken on. Under the sanitizers
// every block is a plain allocation, so that they see each one. Cost: a few loads and stores.
#ifndef QOR_ATTRLOG_RINGBLOCKS_H
#define QOR_ATTRLOG_RINGBLOCKS_H

#include <qor/core/Types.h>

namespace Qor {

namespace Connection {

inline constexpr U32 ringBlockSize = 49152;

// Raises std::bad_alloc.
[[nodiscard]] unsigned char* takeRingBlock();
// REQUIRES: block is not null
void giveRingBlock(unsigned char* block) noexcept;

}  // namespace Connection

}  // namespace Qor

#endif
