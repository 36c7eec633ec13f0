#include <vgwctl/link/MountProgress.h>

#include <vgwctl/output/ValueText.h>

#include <unistd.h>

#include <cstdio>
#include <utility>

namespace Vgwctl {
namespace {

// Of a mount that is soon done, nothing is said.
constexpr std::chrono::milliseconds patience{500};
constexpr double bytesPerMegabyte = 1e6;

}  // namespace

MountProgress::MountProgress(std::string_view path)
    : path_(printable(path)),
      next_(Clock::now() + patience),
      isTerminal_(::isatty(STDERR_FILENO) == 1) {}

MountProgress::~MountProgress() { hide(); }

void MountProgress::hide() {
    if (std::exchange(isShown_, false)) std::fputs("\r\033[K", stderr);
}

void MountProgress::tell(Qor::NboAttrLog::Session::Counters const& counters) {
    if (!isTerminal_ || Clock::now() < next_) return;
    next_ = Clock::now() + std::chrono::duration_cast<Clock::duration>(interval);
    isShown_ = true;
    std::fprintf(stderr, "\r%s: %.1f MB, %llu records\033[K", path_.c_str(),
                 static_cast<double>(counters.bytesIn) / bytesPerMegabyte,
                 static_cast<unsigned long long>(counters.framesIn));
}

}  // namespace Vgwctl
