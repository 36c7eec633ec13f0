// A naive model of one notifier and its notifiees: who is told what, in which order, when handlers
// attach, detach, destroy, register, weaken, throw, set again, or let the notifier go.
#ifndef TESTS_PROPERTY_FRAMEWORK_NOTIFIEE_MODEL_H
#define TESTS_PROPERTY_FRAMEWORK_NOTIFIEE_MODEL_H

#include <algorithm>
#include <array>
#include <string>
#include <vector>

namespace Sample {

inline constexpr int listenerCount = 4;  // the last of them is a stream adapter

enum class Act : int {
    attach,
    detach,
    drop,
    registerIt,
    unregister,
    weaken,
    strengthen,
    throwIt,
    setAgain,
    dropNotifier,
    count,
};

/// At the call-th handler that runs, counted over all, this is done to that listener.
struct Planned {
    int call;
    Act act;
    int target;
};

class NotifieeModel {
  public:
    explicit NotifieeModel(std::vector<Planned> plan) : plan_(std::move(plan)) {
        for (int i = 0; i < listenerCount; ++i) {
            attach(i);
        }
    }

    std::vector<std::string> log;

    void set(std::string const& attribute) {
        if (!gone_) {
            tell(attribute);
        }
    }
    void dropNotifier() {
        if (held_) {
            held_ = false;
            giveUp();
        }
    }
    /// The names of those that are on the list at the end.
    std::string list() const {
        std::string out;
        for (int const i : list_) {
            out += std::to_string(i);
        }
        return out;
    }
    bool gone() const { return gone_; }
    int notifierRefs() const { return notifierRefs_; }

  private:
    struct Listener {
        int refs = 1;      // the test's, and one for each loop that is yet to serve it
        bool held = true;  // by the test
        bool attached = false;
        bool registered = true;
        bool weak = false;
    };

    void tell(std::string const& attribute) {
        std::vector<int> const snapshot = list_;
        for (int const i : snapshot) {
            ++listeners_[i].refs;
        }
        for (std::size_t at = 0; at < snapshot.size();) {
            hear(snapshot[at], attribute);
            release(snapshot[at++]);
            while (at < snapshot.size() && listeners_[snapshot[at]].refs == 1) {
                release(snapshot[at++]);
            }
        }
    }
    void hear(int who, std::string const& attribute) {
        log.push_back(std::to_string(who) + ":" + attribute);
        bool throws = false;
        int const call = ++calls_;
        for (Planned const& planned : plan_) {
            if (planned.call == call) {
                throws = perform(planned);
            }
        }
        if (throws) {
            char const* const id = attribute == "speed" ? "386" : attribute == "mode" ? "258" : "5";
            log.push_back(std::to_string(who) + ":exception(" + id + ")");
        }
    }
    bool perform(Planned const& planned) {
        Listener& target = listeners_[planned.target];
        if (planned.act == Act::setAgain) {
            set("mode");
        } else if (planned.act == Act::dropNotifier) {
            dropNotifier();
        } else if (planned.act == Act::throwIt) {
            return true;
        } else if (target.held) {
            change(planned.act, planned.target);
        }
        return false;
    }
    void change(Act act, int i) {
        Listener& target = listeners_[i];
        switch (act) {
            case Act::attach:
                attach(i);
                break;
            case Act::detach:
                detach(i);
                break;
            case Act::drop:
                target.held = false;
                release(i);
                break;
            case Act::registerIt:
            case Act::unregister:
                registerIs(i, act == Act::registerIt);
                break;
            default:
                weakIs(i, act == Act::weaken);
        }
    }
    void attach(int i) {
        if (gone_ || listeners_[i].attached) {
            return;
        }
        listeners_[i].attached = true;
        notifierRefs_ += listeners_[i].weak ? 0 : 1;
        if (listeners_[i].registered) {
            link(i);
        }
    }
    void detach(int i) {
        if (!listeners_[i].attached) {
            return;
        }
        unlink(i);
        listeners_[i].attached = false;
        if (!listeners_[i].weak) {
            giveUp();
        }
    }
    void registerIs(int i, bool registered) {
        if (listeners_[i].registered != registered) {
            listeners_[i].registered = registered;
            if (listeners_[i].attached) {
                registered ? link(i) : unlink(i);
            }
        }
    }
    void weakIs(int i, bool weak) {
        if (listeners_[i].weak == weak) {
            return;
        }
        listeners_[i].weak = weak;
        if (listeners_[i].attached) {
            notifierRefs_ += weak ? 0 : 1;
            if (weak) {
                giveUp();
            }
        }
    }
    void link(int i) { list_.insert(i == listenerCount - 1 ? list_.begin() : list_.end(), i); }
    void unlink(int i) { list_.erase(std::remove(list_.begin(), list_.end(), i), list_.end()); }
    void release(int i) {
        if (--listeners_[i].refs == 0) {
            detach(i);
        }
    }
    // One reference on the notifier goes; the last one ends it, unless somebody takes one
    // meanwhile.
    void giveUp() {
        if (--notifierRefs_ != 0 || ending_) {
            return;
        }
        ending_ = true;
        tell("zero");
        ending_ = false;
        if (notifierRefs_ == 0) {
            gone_ = true;
            list_.clear();
            for (Listener& listener : listeners_) {
                listener.attached = false;
            }
        }
    }

    std::vector<Planned> plan_;
    std::array<Listener, listenerCount> listeners_;
    std::vector<int> list_;
    int notifierRefs_ = 1;
    int calls_ = 0;
    bool held_ = true;
    bool ending_ = false;
    bool gone_ = false;
};

}  // namespace Sample

#endif
