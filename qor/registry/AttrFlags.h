// What is known of an attribute in two 32-bit words, and in a third for tools that look into
// types. The words are part of the contract between libraries: they are passed on as they stand.
//
//   low word    0 always   1 and 6 writable   3 set by a constructor only   8 stored
//               13 introduced here for derived classes   17 of a class's own   21 holds data
//               23 and 24 a collection   27 the value is an entity
//   high word   4 takes an argument, or a constant of its class   10 defined by a description
//               21 a literal   24 notifies   28 a child that its owner makes   30 never changes
#ifndef QOR_REGISTRY_ATTR_FLAGS_H
#define QOR_REGISTRY_ATTR_FLAGS_H

#include <qor/core/Export.h>
#include <qor/core/Types.h>

namespace Qor {

class AttrFlags {
  public:
    constexpr AttrFlags() noexcept = default;
    constexpr AttrFlags(U32 low, U32 high) noexcept : low_(low), high_(high) {}

    constexpr U32 low() const noexcept { return low_; }
    constexpr U32 high() const noexcept { return high_; }

    constexpr bool isWritable() const noexcept { return (low_ & 0x42) == 0x42; }
    constexpr bool isConstructed() const noexcept { return (low_ & 0x8) != 0; }
    constexpr bool isStored() const noexcept { return (low_ & 0x100) != 0; }
    constexpr bool isCollection() const noexcept { return (low_ & 0x01800000) == 0x01800000; }
    constexpr bool isEntity() const noexcept { return (low_ & 0x08000000) != 0; }
    constexpr bool isLiteral() const noexcept { return (high_ & 0x00200000) != 0; }
    constexpr bool notifies() const noexcept { return (high_ & 0x01000000) != 0; }
    /// The owner makes the entity; to write such an attribute is to make a child.
    constexpr bool isInstantiating() const noexcept { return (high_ & 0x10000000) != 0; }
    constexpr bool isConstant() const noexcept { return (high_ & 0x40000000) != 0; }

    constexpr bool operator==(AttrFlags const&) const noexcept = default;

  private:
    U32 low_ = 0;
    U32 high_ = 0;
};

/// A word of six bits.
class QOR_EXPORT AttrIntrospectionFlags {
  public:
    constexpr AttrIntrospectionFlags() noexcept = default;
    /// Raises RangeException for a value over 0x3f.
    explicit AttrIntrospectionFlags(unsigned int value);

    /// A registered operation.
    static constexpr AttrIntrospectionFlags isFunction_() noexcept { return bit(0x01); }
    /// A value that is the entity's own, and follows from no other attribute.
    static constexpr AttrIntrospectionFlags isIndependentDomainAttr_() noexcept {
        return bit(0x02);
    }
    /// A collection whose key is kept in its member.
    static constexpr AttrIntrospectionFlags hasInternalIndex_() noexcept { return bit(0x04); }

    constexpr U32 value() const noexcept { return value_; }
    constexpr bool isFunction() const noexcept { return (value_ & 0x01) != 0; }
    constexpr bool isIndependentDomainAttr() const noexcept { return (value_ & 0x02) != 0; }
    constexpr bool hasInternalIndex() const noexcept { return (value_ & 0x04) != 0; }

    constexpr AttrIntrospectionFlags operator|(AttrIntrospectionFlags other) const noexcept {
        return bit(value_ | other.value_);
    }
    constexpr bool operator==(AttrIntrospectionFlags const&) const noexcept = default;

  private:
    static constexpr AttrIntrospectionFlags bit(U32 value) noexcept {
        AttrIntrospectionFlags flags;
        flags.value_ = value;
        return flags;
    }

    U32 value_ = 0;
};

/// The combinations that occur: each attribute belongs to one class of flags.
struct FlagClass {
    AttrFlags flags;
    AttrIntrospectionFlags introspection;

    static constexpr AttrIntrospectionFlags function_ = AttrIntrospectionFlags::isFunction_();
    static constexpr AttrIntrospectionFlags data_ =
        AttrIntrospectionFlags::isIndependentDomainAttr_();

    bool operator==(FlagClass const&) const noexcept = default;
};

namespace FlagClasses {

inline constexpr FlagClass literal{{0x00020001, 0x40200400}, {}};
inline constexpr FlagClass nondestructing{{0x00002043, 0x01000000}, {}};
inline constexpr FlagClass functionBase{{0x00022001, 0x00000400}, FlagClass::function_};
inline constexpr FlagClass function{{0x00020001, 0x00000400}, FlagClass::function_};
inline constexpr FlagClass functionWithArg{{0x00020001, 0x00000410}, FlagClass::function_};
inline constexpr FlagClass derived{{0x00020001, 0x00000400}, {}};
inline constexpr FlagClass key{{0x00200001, 0x00000400}, {}};
inline constexpr FlagClass constField{{0x00220109, 0x40000400}, FlagClass::data_};
inline constexpr FlagClass scalar{{0x00220143, 0x01000400}, FlagClass::data_};
inline constexpr FlagClass scalarBase{{0x00222143, 0x01000400}, FlagClass::data_};
inline constexpr FlagClass valueMap{{0x01A20143, 0x01000400}, FlagClass::data_};
inline constexpr FlagClass valueMapBase{{0x01A22143, 0x01000400}, FlagClass::data_};
inline constexpr FlagClass childEntity{{0x08220143, 0x11000400}, FlagClass::data_};
inline constexpr FlagClass childMap{{0x09A20143, 0x11000400},
                                    AttrIntrospectionFlags::hasInternalIndex_() | FlagClass::data_};
inline constexpr FlagClass refMap{{0x09A20143, 0x01000400}, FlagClass::data_};
inline constexpr FlagClass classConstant{{0x00220001, 0x40000410}, {}};

}  // namespace FlagClasses

}  // namespace Qor

#endif
