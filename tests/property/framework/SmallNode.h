// The smallest member of a map, for runs of millions of operations, and its living count.
#ifndef TESTS_PROPERTY_FRAMEWORK_SMALL_NODE_H
#define TESTS_PROPERTY_FRAMEWORK_SMALL_NODE_H

#include <qor/collections/HashMap.h>

namespace Sample {

using Qor::U32;

/// `place` is the reversed hash; `id` decides among equal places, or, of a tied key, does not.
template <bool tied>
struct SmallKey {
    U32 place = 0;
    U32 id = 0;

    static constexpr bool orderedByHash = tied;
    U32 hash() const noexcept { return Qor::bitReverse(place); }
    bool operator==(SmallKey const&) const noexcept = default;
    bool operator<(SmallKey const& other) const noexcept { return !tied && id < other.id; }
};

template <bool tied>
class SmallNode : public Qor::VFPtrInterface {
  public:
    using Key = SmallKey<tied>;
    using Map = Qor::HashMap<SmallNode, Key>;

    SmallNode(Key key, U32 own) : number(own), key_(key) { ++living; }
    ~SmallNode() override { --living; }

    Key const& fwkKey() const noexcept { return key_; }
    U32 fwkHash() const noexcept { return key_.place; }
    SmallNode* fwkHmNext() const noexcept { return next_; }
    void fwkHmNextIs(SmallNode* next) noexcept { next_ = next; }

    U32 const number;  // what the test knows it by
    static inline long living = 0;

  private:
    Key key_;
    SmallNode* next_ = nullptr;
};

}  // namespace Sample

#endif
