#ifndef VGWCTL_OUTPUT_STANDARD_OUTPUT_H
#define VGWCTL_OUTPUT_STANDARD_OUTPUT_H

// Standard output that knows why it could not be written: a full disk, a reader that has gone. What
// a script is to store is else lost with the exit code of success.
//
// It stands in the place of std::cout's own while it lives. A descriptor that does not block, as
// one that is shared with another program may, is waited for. There is one at a time.

#include <array>
#include <streambuf>

namespace Vgwctl {

class StandardOutput final : private std::streambuf {
  public:
    StandardOutput();
    ~StandardOutput() override;
    StandardOutput(StandardOutput const&) = delete;
    StandardOutput& operator=(StandardOutput const&) = delete;

    /// Writes what waits. 0, or the error (errno) of the first write that failed since the
    /// beginning.
    int flush();

  private:
    int overflow(int c) override;
    int sync() override;
    bool write();

    std::streambuf* const before_;
    std::array<char, 1U << 16> waiting_{};
    int error_ = 0;
};

/// Has /dev/null stand for each standard stream that is closed, so that no socket or file takes its
/// number, and what is printed goes into it. To what stands for standard output nothing can be
/// written. To be called first.
void openStandardStreams();

}  // namespace Vgwctl

#endif
