// Runs scripts of the simulation and prints volumes and rates. See --help.
#include "Script.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

struct Options {
    Sim::Request request;
    std::uint64_t scripts = ~std::uint64_t{0};
    double seconds = 60;
};

constexpr std::uint64_t mostLate = 4000;

constexpr char const* help =
    "simulate [--seed N] [--steps N] [--scripts N] [--seconds N] [--rivals] [--remounts] "
    "[--ties] [--late] [--sockets] [--compiled] [--makers-stay] [--trace]\n"
    "\n"
    "Runs script after script from the seed on (1 unless told), each of so many steps (as the\n"
    "seed decides unless told), until so many scripts or seconds (60) are over.\n"
    "  --rivals       several authors write the same values\n"
    "  --remounts     mounts are given back and made again while their connection stays\n"
    "  --ties         collections have keys that tie\n"
    "  --late         processes learn of some classes when they first meet them; then 4000 "
    "scripts\n"
    "                 at most, since a process takes no more types in its life\n"
    "  --sockets      connections are pairs of sockets\n"
    "  --compiled     no process knows the classes by their descriptions alone\n"
    "  --makers-stay  no process ends that makes a tree\n"
    "  --trace        tells everything\n"
    "Ends with 1 at the first violation.\n";

Options parsed(int count, char** words) {
    Options options;
    for (int i = 1; i < count; ++i) {
        auto const is = [&](char const* word) { return std::strcmp(words[i], word) == 0; };
        auto const number = [&] {
            return std::strtoull(i + 1 < count ? words[++i] : "", nullptr, 10);
        };
        if (is("--seed")) {
            options.request.seed = number();
        } else if (is("--steps")) {
            options.request.steps = static_cast<unsigned>(number());
        } else if (is("--scripts")) {
            options.scripts = number();
        } else if (is("--seconds")) {
            options.seconds = static_cast<double>(number());
        } else if (is("--rivals")) {
            options.request.rivals = true;
        } else if (is("--remounts")) {
            options.request.remounts = true;
        } else if (is("--ties")) {
            options.request.ties = true;
        } else if (is("--late")) {
            options.request.late = true;
        } else if (is("--sockets")) {
            options.request.sockets = true;
        } else if (is("--compiled")) {
            options.request.compiled = true;
        } else if (is("--makers-stay")) {
            options.request.makersStay = true;
        } else if (is("--trace")) {
            options.request.isTraced = true;
        } else {
            std::fputs(help, stderr);
            std::exit(2);
        }
    }
    return options;
}

void print(Sim::Volumes const& sum, std::uint64_t scripts, double seconds) {
    auto const each = [&](std::uint64_t count) {
        return static_cast<double>(count) / (seconds > 0 ? seconds : 1);
    };
    std::printf("%llu scripts (%.0f a second), %llu steps, %llu changes (%.0f a second), ",
                static_cast<unsigned long long>(scripts), each(scripts),
                static_cast<unsigned long long>(sum.steps),
                static_cast<unsigned long long>(sum.changes), each(sum.changes));
    std::printf(
        "%llu cuts, %llu crashes, %llu more of makers, %llu mounts given back or made again, %llu "
        "processes without the classes, %llu classes met late, %.1f MB over the links, %.1f s\n",
        static_cast<unsigned long long>(sum.cuts), static_cast<unsigned long long>(sum.crashes),
        static_cast<unsigned long long>(sum.returns), static_cast<unsigned long long>(sum.remounts),
        static_cast<unsigned long long>(sum.described),
        static_cast<unsigned long long>(sum.learnings), static_cast<double>(sum.bytes) / 1e6,
        seconds);
}

}  // namespace

int main(int count, char** words) {
    Options const options = parsed(count, words);
    auto const start = std::chrono::steady_clock::now();
    auto const past = [&] {
        return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    };
    Sim::Volumes sum;
    std::uint64_t const most =
        options.request.late ? std::min(options.scripts, mostLate) : options.scripts;
    std::uint64_t scripts = 0;
    int status = 0;
    while (status == 0 && scripts < most && past() < options.seconds) {
        auto request = options.request;
        request.seed += scripts++;
        auto const outcome = Sim::runScript(request);
        sum.steps += outcome.volumes.steps;
        sum.changes += outcome.volumes.changes;
        sum.cuts += outcome.volumes.cuts;
        sum.crashes += outcome.volumes.crashes;
        sum.returns += outcome.volumes.returns;
        sum.remounts += outcome.volumes.remounts;
        sum.bytes += outcome.volumes.bytes;
        sum.described += outcome.volumes.described;
        sum.learnings += outcome.volumes.learnings;
        if (outcome.violation.empty()) continue;
        std::printf("--seed %llu --steps %u (%s): %s\n",
                    static_cast<unsigned long long>(request.seed), request.steps,
                    outcome.topology.c_str(), outcome.violation.c_str());
        status = 1;
    }
    print(sum, scripts, past());
    return status;
}
