// A counted reference: one pointer, which may be null. Copying takes a reference, destruction gives
// one up, assignment takes the new one before it gives up the old one; a move does neither. Hot
// paths that keep nothing borrow a T& or a T* instead: a count change is the dearest thing in a
// setter once the process has several threads.
#ifndef QOR_CORE_PTR_H
#define QOR_CORE_PTR_H

#include <cstddef>
#include <functional>
#include <type_traits>
#include <utility>

namespace Qor {

template <class T>
class Ptr {
  public:
    using element_type = T;

    constexpr Ptr() noexcept = default;
    constexpr Ptr(std::nullptr_t) noexcept {}
    /// Takes a reference of its own on `target`, which may be null.
    Ptr(T* target) noexcept : target_(target) { take(); }
    Ptr(Ptr const& other) noexcept : target_(other.target_) { take(); }
    Ptr(Ptr&& other) noexcept : target_(std::exchange(other.target_, nullptr)) {}
    template <class U>
    requires std::is_convertible_v<U*, T*> Ptr(Ptr<U> const& other)
    noexcept : target_(other.ptr()) { take(); }
    template <class U>
    requires std::is_convertible_v<U*, T*> Ptr(Ptr<U>&& other)
    noexcept : target_(other.release()) {}
    ~Ptr() { drop(target_); }

    // NOLINTNEXTLINE(bugprone-unhandled-self-assignment): it takes before it gives.
    Ptr& operator=(Ptr const& other) {
        Ptr(other).swap(*this);
        return *this;
    }
    Ptr& operator=(Ptr&& other) noexcept {
        Ptr(std::move(other)).swap(*this);
        return *this;
    }

    T* ptr() const noexcept { return target_; }
    T* operator->() const noexcept { return target_; }
    T& operator*() const noexcept { return *target_; }
    explicit operator bool() const noexcept { return target_ != nullptr; }

    void swap(Ptr& other) noexcept { std::swap(target_, other.target_); }
    /// Hands the reference over: the caller owes the release.
    [[nodiscard]] T* release() noexcept { return std::exchange(target_, nullptr); }

    /// A Ptr that takes over a reference which the caller holds already.
    [[nodiscard]] static Ptr adopt(T* target) noexcept {
        Ptr out;
        out.target_ = target;
        return out;
    }

    template <class U>
    friend bool operator==(Ptr const& a, Ptr<U> const& b) noexcept {
        return a.ptr() == b.ptr();
    }
    friend bool operator==(Ptr const& a, T const* b) noexcept { return a.ptr() == b; }
    friend bool operator==(Ptr const& a, std::nullptr_t) noexcept { return !a.ptr(); }

  private:
    void take() const noexcept {
        if (target_) {
            target_->qorNewRef();
        }
    }
    static void drop(T* target) {
        if (target) {
            target->qorDeleteRef();
        }
    }

    T* target_ = nullptr;
};

/// Takes over the building count of a new object, so that the result is its only owner.
template <class T>
[[nodiscard]] Ptr<T> adopt(T* target) noexcept {
    return Ptr<T>::adopt(target);
}

/// A new object in a Ptr that is its only owner.
template <class T, class... Args>
[[nodiscard]] Ptr<T> make(Args&&... args) {
    return adopt(new T(std::forward<Args>(args)...));
}

/// The same object seen as a `T`, or null when it is none.
template <class T, class U>
[[nodiscard]] Ptr<T> dynamicCast(Ptr<U> const& other) noexcept {
    return Ptr<T>(dynamic_cast<T*>(other.ptr()));
}

}  // namespace Qor

template <class T>
struct std::hash<Qor::Ptr<T>> {
    std::size_t operator()(Qor::Ptr<T> const& p) const noexcept { return std::hash<T*>()(p.ptr()); }
};

#endif
