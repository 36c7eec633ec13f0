// A walk over a notifier's list as it stood at the beginning: each notifiee of that moment is held
// by a counted reference until it has been served. One that only the walk keeps alive has left in
// the meantime, and is passed over. Up to sixteen notifiees need no room but the walk's own.
#ifndef QOR_NOTIFY_SNAPSHOT_ITERATOR_H
#define QOR_NOTIFY_SNAPSHOT_ITERATOR_H

#include <memory>

#include <qor/notify/ListRaw.h>

namespace Qor {

/// The part of a snapshot that is still to be served. Each of its notifiees is held by a reference,
/// which goes when the notifiee is passed; what is left is the owner's to release.
template <class T>
class SnapshotRest {
  public:
    SnapshotRest(T** begin, T** end) noexcept : at_(begin), end_(end) {}
    SnapshotRest(SnapshotRest const&) = delete;
    SnapshotRest& operator=(SnapshotRest const&) = delete;

    explicit operator bool() const noexcept { return at_ != end_; }
    /// The notifiee whose turn it is. REQUIRES: not at the end.
    T& operator*() const noexcept { return **at_; }

    // The walk with the position and the notifiee in the caller's hands, and so in registers: from
    // at() by pass(), which gives the next position, to null.
    T** at() const noexcept { return at_; }
    /// REQUIRES: `served` is what `at` points to
    T** pass(T** at, T& served) {
        release(at, served);
        if (++at == end_) {
            return nullptr;
        }
        return (*at)->qorIsHeldOnce() ? passOver(at) : at;
    }
    /// Whether the end of a notifiee that was passed is under way, or has thrown.
    bool isEnding() const noexcept { return isEnding_; }

  protected:
    SnapshotRest() noexcept : at_(nullptr), end_(nullptr) {}
    // Past it before it goes: its end may run any code.
    void release(T** at, T& served) {
        at_ = at + 1;
        if (!served.qorDeleteRefOfMany()) [[unlikely]] {
            releaseLast(served);
        }
    }

    T** at_;
    T** end_;

  private:
    // The rare ways out of a step, out of line.
    [[gnu::noinline, gnu::cold]] T** passOver(T** left) { return pass(left, **left); }
    [[gnu::noinline, gnu::cold]] void releaseLast(T& notifiee) {
        isEnding_ = true;
        notifiee.qorDeleteRef();
        isEnding_ = false;
    }

    bool isEnding_ = false;
};

/// A snapshot in room that its owner has.
template <class List>
class SnapshotInRoom : public SnapshotRest<typename List::Member> {
  public:
    using T = typename List::Member;

    /// `room` takes list.count() notifiees, and outlives this.
    SnapshotInRoom(List const& list, T** room) {
        at_ = room;
        end_ = isSingleThreaded() ? fill<true>(list) : fill<false>(list);
    }
    ~SnapshotInRoom() {
        while (at_ != end_) {
            this->release(at_, **at_);
        }
    }

    SnapshotInRoom& operator++() {
        if (at_ != end_) {
            this->pass(at_, **at_);
        }
        return *this;
    }

  private:
    using Rest = SnapshotRest<T>;
    using Rest::at_;
    using Rest::end_;

    // The count is never less than what is on the list. A notifiee that ends is on it until its
    // destructor takes it off, and hears nothing any more.
    template <bool isAlone>
    T** fill(List const& list) const noexcept {
        T** end = at_;
        for (T* node = list.head(); node; node = List::next(*node)) {
            *end = node;
            if (node->qorNewRefUnlessEnding(isAlone)) [[likely]] {
                ++end;
            }
        }
        return end;
    }
};

/// The room of a snapshot: its own for up to sixteen notifiees, beyond them a block of the heap.
template <class T>
class SnapshotRoom {
  public:
    static constexpr U32 own = 16;

    explicit SnapshotRoom(U32 count) : far_(count > own ? new T*[count] : nullptr) {}
    T** begin() noexcept { return far_ ? far_.get() : near_; }

  private:
    T* near_[own];  // as it comes: the snapshot knows how much of it is meant
    std::unique_ptr<T*[]> far_;
};

template <class List>
class SnapshotIterator : private SnapshotRoom<typename List::Member>, public SnapshotInRoom<List> {
  public:
    /// Throws std::bad_alloc where there is no memory for more than sixteen.
    explicit SnapshotIterator(List const& list)
        : SnapshotRoom<typename List::Member>(list.count()),
          SnapshotInRoom<List>(list, this->SnapshotRoom<typename List::Member>::begin()) {}
};

}  // namespace Qor

#endif
