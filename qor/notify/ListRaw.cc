#include <qor/notify/ListRaw.h>

namespace Qor {

void ListRawGeneric::link(Node& node) {
    if (node.isStreamAdapter()) {
        node.next_ = head_;
        head_ = &node;
    } else {
        node.next_ = nullptr;
        (tail_ ? tail_->next_ : head_) = &node;
    }
    if (!node.next_) {
        tail_ = &node;
    }
    ++version_;
    ++count_;
    node.qorListedIs(true);
}

bool ListRawGeneric::has(Node const& node) const noexcept {
    Node const* at = head_;
    while (at && at != &node) {
        at = at->next_;
    }
    return at != nullptr;
}

bool ListRawGeneric::cut(Node& node) noexcept {
    Node* before = nullptr;
    Node* at = head_;
    while (at && at != &node) {
        before = at;
        at = at->next_;
    }
    if (!at) {
        return false;
    }
    (before ? before->next_ : head_) = at->next_;
    if (tail_ == at) {
        tail_ = before;
    }
    at->next_ = nullptr;
    return true;
}

void ListRawGeneric::unlink(Node& node) {
    if (has(node)) {
        node.qorListedIs(false);
        leave(node);
    }
}

void ListRawGeneric::leave(Node& node) noexcept {
    if (cut(node)) {
        ++version_;
        --count_;
    }
}

void ListRawGeneric::abandon(Node& node) noexcept { cut(node); }

void ListRawGeneric::deleteAll() noexcept {
    while (Node* const node = head_) {
        node->qorNotifierEnds();
        unlink(*node);
    }
}

}  // namespace Qor
