#include <vgwctl/command/Command.h>
#include <vgwctl/help/HelpText.h>
#include <vgwctl/options/Options.h>

#include <csignal>
#include <cstdio>
#include <iostream>
#include <vector>

namespace {

using Vgwctl::ExitCode;

// All are understood before the first is run.
ExitCode runAll(Vgwctl::Options const& options) {
    std::vector<Vgwctl::Call> calls;
    for (auto const& words : options.commands)
        calls.push_back(Vgwctl::callOf(words, options.style.format));
    Vgwctl::Context context(options, std::cout);
    ExitCode code = ExitCode::success;
    for (Vgwctl::Call const& call : calls) {
        code = call.run(context);
        if (code != ExitCode::success) break;
        context.finish();
    }
    std::cout.flush();
    return code;
}

int codeOf(ExitCode code) { return static_cast<int>(code); }

// Words that ask for a text about the program; null for others.
std::string (*textNamed(std::string_view word))() {
    if (word == "--man") return Vgwctl::manPage;
    if (word == "--completion=bash") return Vgwctl::bashCompletion;
    if (word == "--completion=zsh") return Vgwctl::zshCompletion;
    return nullptr;
}

}  // namespace

int main(int count, char** words) {
    // A reader that has gone is noticed where it is written to.
    std::signal(SIGPIPE, SIG_IGN);
    std::ios::sync_with_stdio(false);
    try {
        if (count == 2) {
            if (auto* const text = textNamed(words[1])) {
                std::cout << text() << std::flush;
                return codeOf(ExitCode::success);
            }
        }
        int exitCode = 0;
        auto const options = Vgwctl::parseOptions(count, words, Vgwctl::commandHelp(), exitCode);
        return options ? codeOf(runAll(*options)) : exitCode;
    } catch (Vgwctl::Failure const& e) {
        std::cout.flush();
        std::fprintf(stderr, "vgwctl: %s\n", e.what());
        return codeOf(e.code());
    } catch (std::exception const& e) {
        std::cout.flush();
        std::fprintf(stderr, "vgwctl: %s\n", e.what());
        return codeOf(ExitCode::fatal);
    }
}
