// A counted object whose memory comes from the pool: entities, member nodes, notifiees, iterators'
// state. The size that was allocated comes back with the block.
#ifndef QOR_CORE_VF_PTR_INTERFACE_H
#define QOR_CORE_VF_PTR_INTERFACE_H

#include <qor/core/PtrInterface.h>

namespace Qor {

class QOR_EXPORT VFPtrInterface : public PtrInterface {
  public:
    // NOLINTNEXTLINE(misc-new-delete-overloads): the delete below is told the size.
    static void* operator new(std::size_t size) { return memNew(size); }
    static void* operator new(std::size_t, void* place) noexcept { return place; }
    static void operator delete(void* block, std::size_t size) noexcept { memDel(block, size); }
    ~VFPtrInterface() override;
};

}  // namespace Qor

#endif
