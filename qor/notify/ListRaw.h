// A notifier's list of notifiees: intrusive, singly linked, owning nobody. Stream adapters stand at
// its head, the last attached first, all others behind them in the order of their coming.
#ifndef QOR_NOTIFY_LIST_RAW_H
#define QOR_NOTIFY_LIST_RAW_H

#include <qor/notify/EntityNotifiee.h>

namespace Qor {

class QOR_EXPORT ListRawGeneric {
  public:
    using Node = Entity::NotifieeConst;
    using Member = Node;

    ListRawGeneric() = default;
    ListRawGeneric(ListRawGeneric const&) = delete;
    ListRawGeneric& operator=(ListRawGeneric const&) = delete;

    /// Number of notifiees.
    U32 count() const noexcept { return count_; }
    /// Counts every link and unlink.
    U32 version() const noexcept { return version_; }
    /// Links a notifiee that is on no list, by the rule above.
    void link(Node& node);
    /// Takes a notifiee off; nothing happens if it is not on this list. Raises std::bad_alloc, and
    /// changes nothing, where a weak one would have to be watched for and can't be.
    void unlink(Node& node);
    /// The same for one that is about to be linked elsewhere, or forgets its notifier: it counts as
    /// listed until it is told otherwise.
    void leave(Node& node) noexcept;
    /// Takes a notifiee off and leaves count and version as they are: what is marked for deletion
    /// is not to change any more, but must not lead to what is gone either.
    void abandon(Node& node) noexcept;
    /// The notifier ends: takes all notifiees off, and they forget it.
    void deleteAll() noexcept;

    Node* head() const noexcept { return head_; }
    static Node* next(Node const& node) noexcept { return node.next_; }

  private:
    bool has(Node const& node) const noexcept;
    bool cut(Node& node) noexcept;

    U32 version_ = 0;
    U32 count_ = 0;
    Node* head_ = nullptr;
    Node* tail_ = nullptr;
};

/// The list of one class tree: `T` is the root class's NotifieeConst.
template <class T>
class ListRaw : public ListRawGeneric {
  public:
    using Member = T;
    ~ListRaw() { deleteAll(); }

    T* head() const noexcept { return static_cast<T*>(ListRawGeneric::head()); }
    static T* next(T const& member) noexcept {
        return static_cast<T*>(ListRawGeneric::next(member));
    }
};

}  // namespace Qor

#endif
