#ifndef VGWCTL_LINK_MOUNT_PROGRESS_H
#define VGWCTL_LINK_MOUNT_PROGRESS_H

// A line on the terminal that tells how far a mount is, if it takes long. Nothing is said where
// standard error is no terminal.

#include <qor/attrlog/session/Session.h>

#include <chrono>
#include <string>
#include <string_view>

namespace Vgwctl {

class MountProgress {
  public:
    static constexpr std::chrono::duration<double> interval{0.2};

    explicit MountProgress(std::string_view path);
    /// Takes the line away.
    ~MountProgress();
    MountProgress(MountProgress const&) = delete;
    MountProgress& operator=(MountProgress const&) = delete;

    /// So that something else can be said.
    void hide();
    void tell(Qor::NboAttrLog::Session::Counters const& counters);

  private:
    using Clock = std::chrono::steady_clock;

    std::string const path_;
    Clock::time_point next_;
    bool const isTerminal_;
    bool isShown_ = false;
};

}  // namespace Vgwctl

#endif
