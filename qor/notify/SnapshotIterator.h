// A walk over a notifier's list as it stood at the beginning: each notifiee of that moment is held
// by a counted reference until it has been served. One that only the walk keeps alive has left in
// the meantime, and is passed over. Up to sixteen notifiees need no memory of their own.
#ifndef QOR_NOTIFY_SNAPSHOT_ITERATOR_H
#define QOR_NOTIFY_SNAPSHOT_ITERATOR_H

#include <array>
#include <memory>

#include <qor/notify/ListRaw.h>

namespace Qor {

template <class List>
class SnapshotIterator {
  public:
    using T = typename List::Member;

    explicit SnapshotIterator(List const& list) {
        if (list.count() > near_.size()) [[unlikely]] {
            far_ = std::make_unique_for_overwrite<T*[]>(list.count());
            at_ = far_.get();
        }
        // The count is never less than what is on the list. A notifiee that ends is on it until its
        // destructor takes it off, and hears nothing any more.
        bool const isAlone = isSingleThreaded();
        T** end = at_;
        for (T* node = list.head(); node; node = List::next(*node)) {
            *end = node;
            end += node->qorNewRefUnlessEnding(isAlone) ? 1 : 0;
        }
        end_ = end;
    }
    SnapshotIterator(SnapshotIterator const&) = delete;
    SnapshotIterator& operator=(SnapshotIterator const&) = delete;
    ~SnapshotIterator() {
        while (at_ != end_) {
            release(at_);
        }
    }

    explicit operator bool() const noexcept { return at_ != end_; }
    /// The notifiee whose turn it is. REQUIRES: not at the end.
    T& operator*() noexcept { return **at_; }
    SnapshotIterator& operator++() {
        if (at_ != end_) {
            pass(at_);
        }
        return *this;
    }

    // The walk with the position in the caller's hands, and so in a register: from begin() by
    // pass(), which gives the next position, to null.
    T** begin() const noexcept { return at_ != end_ ? at_ : nullptr; }
    T** pass(T** served) {
        for (;;) {
            release(served);
            if (++served == end_) {
                return nullptr;
            }
            if ((*served)->qorRefs() != 1) {
                return served;
            }
        }
    }

  private:
    // Past it before it goes: its end may run any code.
    void release(T** served) {
        at_ = served + 1;
        (*served)->qorDeleteRef();
    }

    std::array<T*, 16> near_;  // as it comes: only what lies between the two below is meant
    std::unique_ptr<T*[]> far_;
    T** at_ = near_.data();
    T** end_;
};

}  // namespace Qor

#endif
