// Which notifiee class an object is of, so that a dispatch loop can ask whether it has a handler by
// comparing addresses instead of a dynamic cast. Every class of notifiees has one NotifieeKind,
// made from its base's; a constructor of each level puts its own in place, as it does with the
// table of virtuals.
#ifndef QOR_NOTIFY_NOTIFIEE_KIND_H
#define QOR_NOTIFY_NOTIFIEE_KIND_H

namespace Qor {

class NotifieeKind {
  public:
    struct Below {};

    /// A class at the root of its tree.
    constexpr NotifieeKind() noexcept = default;
    /// A class directly below that of `base`.
    constexpr NotifieeKind(Below, NotifieeKind const& base) noexcept : base_(&base) {}
    NotifieeKind(NotifieeKind const&) = delete;
    NotifieeKind& operator=(NotifieeKind const&) = delete;

    /// Whether this is `other` or below it. Most often it is `other` itself.
    bool is(NotifieeKind const& other) const noexcept {
        NotifieeKind const* at = this;
        do {
            if (at == &other) [[likely]] {
                return true;
            }
            at = at->base_;
        } while (at);
        return false;
    }

  private:
    NotifieeKind const* base_ = nullptr;
};

}  // namespace Qor

#endif
