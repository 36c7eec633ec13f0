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

bool ListRawGeneric::cut(Node& node) {
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
    if (cut(node)) {
        ++version_;
        --count_;
        node.qorListedIs(false);
    }
}

void ListRawGeneric::abandon(Node& node) {
    if (cut(node)) {
        node.qorListedIs(false);
    }
}

void ListRawGeneric::deleteAll() noexcept {
    while (Node* const node = head_) {
        node->qorNotifierEnds();
        unlink(*node);
    }
}

}  // namespace Qor
