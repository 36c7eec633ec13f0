#include <vgwctl/command/Command.h>
#include <vgwctl/help/HelpText.h>
#include <vgwctl/options/Options.h>
#include <vgwctl/output/StandardOutput.h>
#include <vgwctl/output/ValueText.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
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

int run(int count, char** words) {
    if (count == 2) {
        if (auto* const text = textNamed(words[1])) {
            std::cout << text();
            return codeOf(ExitCode::success);
        }
    }
    int exitCode = 0;
    auto const options = Vgwctl::parseOptions(count, words, Vgwctl::commandHelp(), exitCode);
    return options ? codeOf(runAll(*options)) : exitCode;
}

// Some of it is what a peer has said.
void tellFailure(char const* what) {
    std::cout.flush();
    std::fprintf(stderr, "vgwctl: %s\n", Vgwctl::printable(what).c_str());
}

int runOrFail(int count, char** words) {
    try {
        return run(count, words);
    } catch (Vgwctl::Failure const& e) {
        tellFailure(e.what());
        return codeOf(e.code());
    } catch (std::exception const& e) {
        tellFailure(e.what());
        return codeOf(ExitCode::fatal);
    }
}

}  // namespace

int main(int count, char** words) {
    Vgwctl::openStandardStreams();
    // A reader that has gone is noticed where it is written to.
    std::signal(SIGPIPE, SIG_IGN);
    Vgwctl::StandardOutput output;
    int const code = runOrFail(count, words);
    int const error = output.flush();
    if (error == 0) return code;
    // Who has stopped reading, as head(1) does, knows.
    if (error != EPIPE) std::fprintf(stderr, "vgwctl: standard output: %s\n", std::strerror(error));
    return code != 0 ? code : codeOf(ExitCode::fatal);
}
