// Pooled memory by size class. Small blocks come from a cache of the calling thread, the caches are
// filled in batches from one arena that takes memory from the system in large pieces, of large
// pages from the second one on. A block may be given back on any thread. Pooled memory is kept
// for reuse and never returned to the system. Cost: a few loads and stores, no lock, on the way in
// and out; a lock once a batch. Under the sanitizers every block is a plain allocation, so that
// they see each one.
#ifndef QOR_CORE_POOL_H
#define QOR_CORE_POOL_H

#include <cstddef>

#include <qor/core/Export.h>

namespace Qor {

/// A block of `size` bytes, aligned for any type of that size. Raises std::bad_alloc.
[[nodiscard]] QOR_EXPORT void* memNew(std::size_t size);

/// The same, but null when there is no memory.
[[nodiscard]] QOR_EXPORT void* memNewOrNull(std::size_t size) noexcept;

/// Gives back a block of memNew. `size` is the size that was asked for. A null block is ignored.
QOR_EXPORT void memDel(void* block, std::size_t size) noexcept;

/// What the pool holds, for tests and diagnosis: bytes taken from the system so far.
QOR_EXPORT std::size_t memFromSystem() noexcept;

/// Base of small framework records: allocation by size from the pool.
class QorMemPool {
  public:
    // NOLINTNEXTLINE(misc-new-delete-overloads): the delete below is told the size.
    static void* operator new(std::size_t size) { return memNew(size); }
    static void* operator new(std::size_t, void* place) noexcept { return place; }
    static void operator delete(void* block, std::size_t size) noexcept { memDel(block, size); }
};

}  // namespace Qor

#endif
