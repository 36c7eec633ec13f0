#include <vgwd/agent/Run.h>

#include <csignal>
#include <cstdio>
#include <exception>

int main(int count, char** words) {
    int exitCode = 0;
    // Who reads what is printed may go: then the write says so.
    std::signal(SIGPIPE, SIG_IGN);
    try {
        std::optional<Vgwd::Options> const options = Vgwd::parseOptions(count, words, exitCode);
        return options ? Vgwd::runAgent(*options) : exitCode;
    } catch (std::exception const& e) {
        std::fprintf(stderr, "vgwd: %s\n", e.what());
        return 1;
    }
}
