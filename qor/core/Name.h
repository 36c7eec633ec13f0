#ifndef QOR_CORE_NAME_H
#define QOR_CORE_NAME_H

#include <qor/core/String8.h>
#include <qor/core/Types.h>

namespace Qor {

// The name of an entity and the key of an owning collection. It is a string in all respects, of a
// type of its own, so that a signature tells names from texts; the two convert both ways by sharing
// the block, without allocation.
class QOR_EXPORT Name : public String8 {
  public:
    using String8::String8;
    constexpr Name() noexcept = default;
    Name(String8 const& text) noexcept : String8(text) {}
    Name(String8&& text) noexcept : String8(std::move(text)) {}

    /// The record of this type; never null.
    static QorType* _fwkType();
};

}  // namespace Qor

template <>
struct std::hash<Qor::Name> {
    std::size_t operator()(Qor::Name const& name) const noexcept { return name.hash(); }
};

#endif
