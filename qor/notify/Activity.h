// Work that is put off: an activity is a notifiee's own turn in a run queue. Nothing runs by
// itself: the program's loop calls ActivityManager::runReady when it likes. A notifiee with an
// activity may queue what it hears (NotifieeConst::qorOnAttribute) and is called back with
// handleNotification when its turn comes. One thread drives a manager and everything on it.
#ifndef QOR_NOTIFY_ACTIVITY_H
#define QOR_NOTIFY_ACTIVITY_H

#include <cstddef>

#include <qor/core/Ptr.h>
#include <qor/core/String8.h>
#include <qor/core/VFPtrInterface.h>

namespace Qor {

class Activity;

/// The run queue. Activities that outlive it stay, and get no turn any more.
class QOR_EXPORT ActivityManager {
  public:
    ActivityManager() = default;
    ActivityManager(ActivityManager const&) = delete;
    ActivityManager& operator=(ActivityManager const&) = delete;
    ~ActivityManager();

    /// Gives up to `budget` ready activities one turn each, first come first served; those that
    /// become ready meanwhile go to the end. Returns how many had a turn.
    std::size_t runReady(std::size_t budget);
    bool hasReady() const noexcept { return head_ != nullptr; }
    /// Number of activities that wait for their turn.
    std::size_t ready() const noexcept { return ready_; }

  private:
    friend class Activity;
    friend class ActivitySm;
    void enqueue(Activity& activity);
    void remove(Activity& activity);

    Activity* head_ = nullptr;
    Activity* tail_ = nullptr;
    Activity* all_ = nullptr;  // every activity that was made on this, in no order
    std::size_t ready_ = 0;
};

/// What an activity was made with; handed to the notifiee with each turn.
class QOR_EXPORT ActivityConfig : public VFPtrInterface {
  public:
    explicit ActivityConfig(String8 name) : name_(std::move(name)) {}
    String8 const& name() const noexcept { return name_; }

  private:
    String8 name_;
};

/// The state of an activity: idle, ready (in the queue) or running.
class QOR_EXPORT ActivitySm {
  public:
    enum class State : U8 { idle, ready, running };

    State state() const noexcept { return state_; }
    /// Puts the activity into the queue unless it is there. During a turn: it gets another one.
    void schedule();

  private:
    friend class Activity;
    friend class ActivityManager;
    explicit ActivitySm(Activity& activity) : activity_(activity) {}

    Activity& activity_;
    State state_ = State::idle;
    bool again_ = false;
};

class QOR_EXPORT Activity : public VFPtrInterface {
  public:
    using Ptr = Qor::Ptr<Activity>;

    Activity(ActivityManager& manager, String8 name);
    ~Activity() override;

    /// Whose turn it is. Not counted: the notifiee that owns the activity sets and clears it.
    void clientIs(PtrInterface::NotifieeConst* client) noexcept { client_ = client; }
    ActivitySm& sm() noexcept { return sm_; }
    ActivityConfig* config() const noexcept { return config_.ptr(); }

  private:
    friend class ActivityManager;
    friend class ActivitySm;
    void run();
    void deliver() noexcept;

    ActivitySm sm_;
    ActivityManager* manager_;
    Qor::Ptr<ActivityConfig> config_;
    PtrInterface::NotifieeConst* client_ = nullptr;
    Activity* next_ = nullptr;       // in the queue
    Activity* nextOfAll_ = nullptr;  // of the manager's
    Activity* beforeOfAll_ = nullptr;
};

}  // namespace Qor

#endif
