#ifndef VGWD_SERVE_FILE_LOCK_H
#define VGWD_SERVE_FILE_LOCK_H

// A lock that one process at a time holds, by a file (flock(2)). It ends with the process, however
// that ends; the file stays, with the process id of the last holder in it.

#include <string>

namespace Vgwd {

class FileLock {
  public:
    FileLock() = default;
    /// Takes it. Raises std::runtime_error, `refusal` followed by who holds it, when another
    /// process does, and when the file can't be made.
    FileLock(std::string const& file, std::string const& refusal);
    ~FileLock();
    FileLock(FileLock&& other) noexcept;
    FileLock& operator=(FileLock&& other) noexcept;

    bool isHeld() const { return fd_ >= 0; }

  private:
    int fd_ = -1;
};

}  // namespace Vgwd

#endif
