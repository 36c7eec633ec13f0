// A queue as a singly linked list: what is put in at the tail comes out at the head. Copies are
// deep. An iterator is a pointer to an element and dies with it; other elements may come and go.
// Not thread-safe.
#ifndef QOR_COLLECTIONS_LINKED_QUEUE_H
#define QOR_COLLECTIONS_LINKED_QUEUE_H

#include <cstddef>
#include <initializer_list>
#include <iterator>
#include <memory>
#include <utility>

#include <qor/core/Assert.h>
#include <qor/core/Types.h>

namespace Qor {

template <class T>
class LinkedQueue {
    struct Node {
        T value;
        Node* next = nullptr;
    };

  public:
    class Iterator {
      public:
        using iterator_category = std::forward_iterator_tag;
        using value_type = T;
        using difference_type = std::ptrdiff_t;
        using pointer = T const*;
        using reference = T const&;

        Iterator() = default;
        explicit Iterator(LinkedQueue const& queue) : at_(queue.head_) {}
        explicit operator bool() const noexcept { return at_ != nullptr; }
        T const& operator*() const noexcept { return at_->value; }
        T const* operator->() const noexcept { return &at_->value; }
        Iterator& operator++() noexcept {
            at_ = at_->next;
            return *this;
        }
        Iterator operator++(int) noexcept {
            Iterator const before = *this;
            ++*this;
            return before;
        }
        bool operator==(Iterator const&) const noexcept = default;

      private:
        Node const* at_ = nullptr;
    };

    LinkedQueue() = default;
    // Both by the empty queue, so that what was put in goes when an element can't be copied.
    LinkedQueue(std::initializer_list<T> values) : LinkedQueue() {
        for (T const& value : values) {
            enq(value);
        }
    }
    LinkedQueue(LinkedQueue const& other) : LinkedQueue() {
        for (T const& value : other) {
            enq(value);
        }
    }
    LinkedQueue(LinkedQueue&& other) noexcept { swap(other); }
    LinkedQueue& operator=(LinkedQueue other) noexcept {
        swap(other);
        return *this;
    }
    ~LinkedQueue() {
        while (head_) {
            delete std::exchange(head_, head_->next);
        }
    }

    void enq(T value) {
        Node* const node = new Node{std::move(value)};
        (tail_ ? tail_->next : head_) = node;
        tail_ = node;
        ++size_;
    }
    /// Takes the head out. REQUIRES: the queue is not empty
    T deq() {
        assertThat(head_ != nullptr, "the queue is not empty", "Qor/LinkedQueue", __LINE__,
                   __func__);
        std::unique_ptr<Node> const node(std::exchange(head_, head_->next));
        if (!head_) {
            tail_ = nullptr;
        }
        --size_;
        return std::move(node->value);
    }
    U32 size() const noexcept { return size_; }
    bool isEmpty() const noexcept { return head_ == nullptr; }
    Iterator begin() const noexcept { return Iterator(*this); }
    Iterator end() const noexcept { return Iterator(); }

    void swap(LinkedQueue& other) noexcept {
        std::swap(head_, other.head_);
        std::swap(tail_, other.tail_);
        std::swap(size_, other.size_);
    }

  private:
    Node* head_ = nullptr;
    Node* tail_ = nullptr;
    U32 size_ = 0;
};

}  // namespace Qor

#endif
