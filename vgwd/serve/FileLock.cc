#include <vgwd/serve/FileLock.h>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>
#include <cerrno>
#include <cstring>
#include <stdexcept>
#include <utility>

namespace Vgwd {
namespace {

std::string holderOf(int fd) {
    char digits[16];
    long const count = ::pread(fd, digits, sizeof digits, 0);
    std::string text(digits, static_cast<std::size_t>(std::max(count, 0L)));
    while (!text.empty() && text.back() == '\n') text.pop_back();
    return text.empty() ? std::string() : " (process " + text + ")";
}

void writeHolder(int fd) {
    std::string const text = std::to_string(::getpid()) + "\n";
    // Only told to operators: the lock holds without it.
    bool const isWritten = ::ftruncate(fd, 0) == 0 && ::pwrite(fd, text.data(), text.size(), 0) > 0;
    static_cast<void>(isWritten);
}

}  // namespace

FileLock::FileLock(std::string const& file, std::string const& refusal)
    : fd_(::open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, S_IRUSR | S_IWUSR)) {
    if (fd_ < 0)
        throw std::runtime_error("lock file " + file + " can't be opened: " + std::strerror(errno));
    if (::flock(fd_, LOCK_EX | LOCK_NB) == 0) {
        writeHolder(fd_);
        return;
    }
    bool const isHeldElsewhere = errno == EWOULDBLOCK;
    std::string const why =
        isHeldElsewhere ? refusal + holderOf(fd_) : file + ": " + std::strerror(errno);
    ::close(std::exchange(fd_, -1));
    throw std::runtime_error(why);
}

FileLock::~FileLock() {
    if (fd_ >= 0) ::close(fd_);
}

FileLock::FileLock(FileLock&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}

FileLock& FileLock::operator=(FileLock&& other) noexcept {
    std::swap(fd_, other.fd_);
    return *this;
}

}  // namespace Vgwd
