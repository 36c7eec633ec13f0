// The number by which the records of one connection name an entity: 64 bits, told as a low and a
// high word. Bit 0 set: both ends of the connection know the entity by this number, and it stands
// in the demuxer's table under the number shifted right by one. The side of a connection that made
// the connection draws its numbers with bit 63 clear, the other with bit 63 set, so both may
// announce. Numbers are not used twice on one connection.
#ifndef QOR_ATTRLOG_ENTITYID_H
#define QOR_ATTRLOG_ENTITYID_H

#include <qor/core/Types.h>

#include <compare>

namespace Qor {

class EntityId {
  public:
    constexpr EntityId() noexcept = default;
    constexpr explicit EntityId(U64 value) noexcept : value_(value) {}
    constexpr EntityId(U32 low, U32 high) noexcept : value_(U64{high} << 32 | low) {}

    constexpr U64 value() const noexcept { return value_; }
    constexpr U32 low() const noexcept { return static_cast<U32>(value_); }
    constexpr U32 high() const noexcept { return static_cast<U32>(value_ >> 32); }
    constexpr bool isNull() const noexcept { return value_ == 0; }
    // Whether the number means the same entity at both ends of its connection.
    constexpr bool isUnified() const noexcept { return (value_ & 1) != 0; }
    // What a table of ids is keyed by: consecutive numbers spread evenly.
    constexpr U32 hash() const noexcept { return static_cast<U32>(value_ >> 1); }

    friend constexpr bool operator==(EntityId, EntityId) noexcept = default;
    friend constexpr auto operator<=>(EntityId, EntityId) noexcept = default;

  private:
    U64 value_ = 0;
};

// The id of an orphan record's header, and what an orphan is announced under.
inline constexpr EntityId orphanEntityId{1};

}  // namespace Qor

#endif
