// How isEqualTo compares one attribute of two rows. The walk over a collection is one-sided: for
// each member on the left the right side is read by key, and an absent key reads as the default of
// the value type. So a member that holds the default equals an absent one, provided the counts
// match.
#ifndef VGW_SNAPSHOT_ROW_COMPARISON_H
#define VGW_SNAPSHOT_ROW_COMPARISON_H

#include <optional>
#include <utility>

#include <qor/model/Keyed.h>

namespace Vgw {

/// The first member on the left whose value the right side does not hold under the same key, as the
/// two values (left, right); nothing when there is none. The counts are not looked at.
template <class A>
std::optional<std::pair<typename A::Value, typename A::Value>> firstDifference(
    typename A::Entity const& lhs, typename A::Entity const& rhs) {
    for (Qor::AttributeIteratorConst<A> at(lhs); at; ++at) {
        typename A::Value const left = at.value();
        typename A::Value const right = Qor::keyedValue<A>(rhs, at->fwkKey());
        if (right != left) {
            return std::pair(left, right);
        }
    }
    return std::nullopt;
}

/// Compares attributes of two rows of class `Row`.
template <class Row>
class RowComparison {
  public:
    RowComparison(Row const& lhs, Row const& rhs) : lhs_(lhs), rhs_(rhs) {}

    /// Whether attribute `A` is equal; it counts as equal when the left row's mark `guard` holds.
    template <class A>
    bool same(char const* guard = A::name) const {
        return lhs_.invalidAttrib(guard) || equal<A>();
    }
    /// Whether attribute `A` is equal, with no guard.
    template <class A>
    bool equal() const {
        if constexpr (A::isKeyed) {
            return A::map(lhs_).size() == A::map(rhs_).size() && !firstDifference<A>(lhs_, rhs_);
        } else {
            return !(A::field(lhs_) != A::field(rhs_));
        }
    }

  private:
    Row const& lhs_;
    Row const& rhs_;
};

}  // namespace Vgw

#endif
