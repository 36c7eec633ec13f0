#include <qor/core/Now.h>

#include <atomic>
#include <chrono>
#include <memory>
#include <mutex>
#include <utility>

namespace Qor {

namespace {

using Clock = std::function<Seconds()>;

// The flag spares the usual reader, who has the system's clock, the lock.
std::atomic<bool> isReplaced{false};

struct Replacement {
    std::mutex mutex;
    std::shared_ptr<Clock const> clock;
};

// Never destroyed: what ends with the process may read the clock.
Replacement& replacement() {
    static Replacement& instance = *new Replacement;
    return instance;
}

Seconds systemNow() {
    auto const sinceEpoch = std::chrono::system_clock::now().time_since_epoch();
    return std::chrono::duration<Seconds>(sinceEpoch).count();
}

std::shared_ptr<Clock const> clockInPlace() {
    auto& place = replacement();
    std::lock_guard const lock(place.mutex);
    return place.clock;
}

}  // namespace

Seconds now() {
    if (!isReplaced.load(std::memory_order_acquire)) return systemNow();
    auto const clock = clockInPlace();
    return clock ? (*clock)() : systemNow();
}

void nowIs(Clock clock) {
    // What the clock before held goes behind the lock: its end may read the clock.
    auto swapped = clock ? std::make_shared<Clock const>(std::move(clock)) : nullptr;
    auto& place = replacement();
    std::lock_guard const lock(place.mutex);
    place.clock.swap(swapped);
    isReplaced.store(place.clock != nullptr, std::memory_order_release);
}

}  // namespace Qor
