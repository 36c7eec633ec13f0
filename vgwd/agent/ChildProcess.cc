#include <vgwd/agent/ChildProcess.h>

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <system_error>

namespace Vgwd {
namespace {

// Blocks every signal for as long as it lives.
class SignalsBlocked {
  public:
    SignalsBlocked() {
        sigset_t all;
        ::sigfillset(&all);
        ::pthread_sigmask(SIG_BLOCK, &all, &before_);
    }
    ~SignalsBlocked() { restore(); }
    SignalsBlocked(SignalsBlocked const&) = delete;
    SignalsBlocked& operator=(SignalsBlocked const&) = delete;

    void restore() const { ::pthread_sigmask(SIG_SETMASK, &before_, nullptr); }

  private:
    sigset_t before_{};
};

// Our handlers write to a pipe that the child shares with us: a signal that it gets before it is
// another program would be taken for ours.
void forgetHandlers() {
    for (int number = 1; number < NSIG; ++number) ::signal(number, SIG_DFL);
}

// Not all that is open was opened by us: libraries open logs and sockets without close-on-exec.
void closeOthers() {
    if (::close_range(STDERR_FILENO + 1, ~0U, 0) == 0) return;
    // A kernel before 5.9.
    auto const end = static_cast<int>(::sysconf(_SC_OPEN_MAX));
    for (int descriptor = STDERR_FILENO + 1; descriptor < end; ++descriptor) ::close(descriptor);
}

// In the child, between fork and exec: nothing here may allocate.
[[noreturn]] void become(char* const* words, pid_t parent, SignalsBlocked const& blocked) {
    forgetHandlers();
    blocked.restore();
    ::prctl(PR_SET_PDEATHSIG, SIGTERM);
    if (::getppid() != parent) ::_exit(1);
    int const null = ::open("/dev/null", O_RDWR | O_CLOEXEC);
    ::dup2(null, STDIN_FILENO);
    ::dup2(null, STDOUT_FILENO);
    closeOthers();
    ::execv(words[0], words);
    ::_exit(127);
}

}  // namespace

std::string findProgram(std::string const& name, std::string const& companion) {
    std::string places;
    if (!companion.empty()) {
        std::string const folder = std::filesystem::absolute(companion).parent_path().string();
        places = folder + ":" + folder + "/../bin:" + folder + "/../sbin:";
    }
    char const* const path = std::getenv("PATH");
    places += std::string(path != nullptr ? path : "") + ":/usr/sbin:/usr/bin:/sbin:/bin";
    for (std::size_t from = 0; from <= places.size();) {
        std::size_t const colon = std::min(places.find(':', from), places.size());
        std::string candidate = places.substr(from, colon - from) + "/" + name;
        if (candidate.front() == '/' && ::access(candidate.c_str(), X_OK) == 0) return candidate;
        from = colon + 1;
    }
    throw std::runtime_error("program " + name +
                             " was not found in PATH or the folders of system programs");
}

pid_t startProgram(std::vector<std::string> const& words) {
    std::vector<char*> arguments;
    arguments.reserve(words.size() + 1);
    for (std::string const& word : words) arguments.push_back(const_cast<char*>(word.c_str()));
    arguments.push_back(nullptr);
    pid_t const parent = ::getpid();
    SignalsBlocked const blocked;
    pid_t const child = ::fork();
    if (child < 0) throw std::system_error(errno, std::generic_category(), "fork");
    if (child == 0) become(arguments.data(), parent, blocked);
    return child;
}

int awaitProgram(pid_t process) {
    int status = 0;
    while (::waitpid(process, &status, 0) < 0)
        if (errno != EINTR) return 127;
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

}  // namespace Vgwd
