// Linked to a test, gives its process a second thread from the beginning to the end, where the
// environment asks for it.
#include <qor/core/SingleThread.h>

#include <gtest/gtest.h>

#include <condition_variable>
#include <cstdlib>
#include <memory>
#include <mutex>
#include <thread>

namespace {

class SecondThread {
  public:
    ~SecondThread() {
        {
            std::lock_guard const lock(mutex_);
            isOver_ = true;
        }
        over_.notify_one();
        thread_.join();
    }

  private:
    void wait() {
        std::unique_lock lock(mutex_);
        over_.wait(lock, [this] { return isOver_; });
    }

    std::mutex mutex_;
    std::condition_variable over_;
    bool isOver_ = false;
    std::thread thread_{[this] { wait(); }};
};

bool const isAskedFor = std::getenv("VGW_SECOND_THREAD") != nullptr;
std::unique_ptr<SecondThread> const secondThread(isAskedFor ? new SecondThread : nullptr);

TEST(SecondThread, IsThereWhereItIsAskedFor) {
    if (!isAskedFor) GTEST_SKIP() << "VGW_SECOND_THREAD asks for it";
    EXPECT_FALSE(Qor::isSingleThreaded());
}

}  // namespace
