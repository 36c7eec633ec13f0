#include <vgwctl/recording/RemovedAtEnd.h>

#include <unistd.h>

#include <climits>
#include <utility>

namespace Vgwctl {
namespace {

constexpr int endingSignals[] = {SIGINT, SIGTERM, SIGHUP};

// What a signal's handler removes; empty: nothing.
char removedAtEnd[PATH_MAX];

void endByASignal(int signal) {
    if (removedAtEnd[0] != 0) ::unlink(removedAtEnd);
    ::signal(signal, SIG_DFL);
    ::raise(signal);
}

}  // namespace

EndingHeldOff::EndingHeldOff() {
    sigset_t ending;
    ::sigemptyset(&ending);
    for (int const signal : endingSignals) ::sigaddset(&ending, signal);
    ::sigprocmask(SIG_BLOCK, &ending, &before_);
}

EndingHeldOff::~EndingHeldOff() { ::sigprocmask(SIG_SETMASK, &before_, nullptr); }

RemovedAtEnd::RemovedAtEnd(std::string path) : path_(std::move(path)) {
    EndingHeldOff const heldOff;
    std::size_t const length = path_.copy(removedAtEnd, sizeof removedAtEnd - 1);
    removedAtEnd[length] = 0;
    for (int const signal : endingSignals)
        if (::signal(signal, endByASignal) == SIG_IGN) ::signal(signal, SIG_IGN);
}

RemovedAtEnd::~RemovedAtEnd() {
    if (stays_) return;
    ::unlink(path_.c_str());
    removedAtEnd[0] = 0;
}

void RemovedAtEnd::stay() noexcept {
    stays_ = true;
    removedAtEnd[0] = 0;
}

}  // namespace Vgwctl
