#ifndef VGWCTL_RECORDING_REMOVED_AT_END_H
#define VGWCTL_RECORDING_REMOVED_AT_END_H

// A file that goes with the program, also where one of the signals that end it does so.

#include <csignal>
#include <string>

namespace Vgwctl {

/// While it lives, none of the signals that end a program arrives. So whoever sees a file that is
/// to go with it may end the program at once.
class EndingHeldOff {
  public:
    EndingHeldOff();
    ~EndingHeldOff();
    EndingHeldOff(EndingHeldOff const&) = delete;
    EndingHeldOff& operator=(EndingHeldOff const&) = delete;

  private:
    sigset_t before_;
};

/// One at a time in a program.
class RemovedAtEnd {
  public:
    /// REQUIRES: path.size() < PATH_MAX, as of a file that is there
    explicit RemovedAtEnd(std::string path);
    /// Removes it, unless it stays.
    ~RemovedAtEnd();
    RemovedAtEnd(RemovedAtEnd const&) = delete;
    RemovedAtEnd& operator=(RemovedAtEnd const&) = delete;
    void stay() noexcept;

  private:
    std::string const path_;
    bool stays_ = false;
};

}  // namespace Vgwctl

#endif
