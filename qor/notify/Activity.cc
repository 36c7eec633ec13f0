#include <qor/notify/Activity.h>

#include <qor/notify/NotifieeConst.h>

namespace Qor {

ActivityManager::~ActivityManager() {
    while (head_) {
        remove(*head_);
    }
    for (Activity* activity = all_; activity; activity = activity->nextOfAll_) {
        activity->manager_ = nullptr;
    }
}

void ActivityManager::enqueue(Activity& activity) {
    activity.next_ = nullptr;
    if (tail_) {
        tail_->next_ = &activity;
    } else {
        head_ = &activity;
    }
    tail_ = &activity;
    ++ready_;
}

void ActivityManager::remove(Activity& activity) {
    Activity* before = nullptr;
    Activity* at = head_;
    while (at && at != &activity) {
        before = at;
        at = at->next_;
    }
    if (!at) {
        return;
    }
    (before ? before->next_ : head_) = at->next_;
    if (tail_ == at) {
        tail_ = before;
    }
    --ready_;
    at->next_ = nullptr;
    at->sm_.state_ = ActivitySm::State::idle;
}

std::size_t ActivityManager::runReady(std::size_t budget) {
    std::size_t ran = 0;
    while (ran < budget && head_) {
        Ptr<Activity> const activity(head_);
        remove(*activity);
        activity->run();
        ++ran;
    }
    return ran;
}

void ActivitySm::schedule() {
    if (state_ == State::running) {
        again_ = true;
    } else if (state_ == State::idle && activity_.manager_) {
        state_ = State::ready;
        activity_.manager_->enqueue(activity_);
    }
}

Activity::Activity(ActivityManager& manager, String8 name)
    : sm_(*this),
      manager_(&manager),
      config_(make<ActivityConfig>(std::move(name))),
      nextOfAll_(manager.all_) {
    if (nextOfAll_) {
        nextOfAll_->beforeOfAll_ = this;
    }
    manager.all_ = this;
}

Activity::~Activity() {
    if (!manager_) {
        return;
    }
    if (sm_.state_ == ActivitySm::State::ready) {
        manager_->remove(*this);
    }
    (beforeOfAll_ ? beforeOfAll_->nextOfAll_ : manager_->all_) = nextOfAll_;
    if (nextOfAll_) {
        nextOfAll_->beforeOfAll_ = beforeOfAll_;
    }
}

void Activity::run() {
    sm_.state_ = ActivitySm::State::running;
    deliver();
    sm_.state_ = ActivitySm::State::idle;
    if (sm_.again_) {
        sm_.again_ = false;
        sm_.schedule();
    }
}

// What a notifiee throws in its turn is its own affair, as it is in the dispatch of a change.
void Activity::deliver() noexcept {
    if (!client_) {
        return;
    }
    Qor::Ptr<PtrInterface::NotifieeConst> const client(client_);
    try {
        client->handleNotification(config_.ptr());
    } catch (...) {
        try {
            client->handleNotificationException();
        } catch (...) {
        }
    }
}

}  // namespace Qor
