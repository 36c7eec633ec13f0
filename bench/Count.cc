// Runs one operation many times in a function of its own, for bench/count, which has valgrind count
// what it executes. vgw_bench_count OPERATION [threads]
#include <vgw/tables/LogicalSwitch.h>
#include <vgw/tables/UcastMacsRemote.h>

#include <cstdio>
#include <cstring>
#include <vector>

#include "Row.h"
#include "attrlog/mixed/OurRows.h"

namespace {

constexpr unsigned operations = 1000;

class Listener final : public Vgw::LogicalSwitch::NotifieeConst {
  public:
    void onTunnelKey() override { ++heard; }
    static inline unsigned heard = 0;
};

// The name that bench/count looks for.
template <class Body>
[[gnu::noinline]] void countedOperations(Body const& body) {
    for (unsigned i = 0; i < operations; ++i) {
        body(i);
        asm volatile("" ::: "memory");
    }
}

void changeNumber(unsigned listeners, unsigned step) {
    auto const row = Qor::make<Vgw::LogicalSwitch>("red");
    std::vector<Qor::Ptr<Listener>> all;
    for (unsigned i = 0; i < listeners; ++i) {
        all.push_back(Qor::make<Listener>());
        all.back()->notifierIs(row);
    }
    row->tunnelKeyIs(1);
    row->tunnelKeyIs(2);
    countedOperations([&](unsigned i) { row->tunnelKeyIs(3 + step * i); });
}

void changeText() {
    auto const row = Qor::make<Vgw::UcastMacsRemote>("row");
    Qor::String8 const values[] = {"8b1d4a9e-0000-4000-8000-000000000001",
                                   "2c90f7aa-0000-4000-8000-000000000002"};
    countedOperations([&](unsigned i) { row->logicalSwitchIs(values[i & 1]); });
}

// Behind all of them once, so that the ring stands.
void sendMixed() {
    Bench::Mixture const mixture;
    Bench::OurRows rows(mixture);
    auto& out = *rows.out();
    auto const drain = [&] {
        while (!out.unsent().empty()) out.sentInc(out.unsent().size());
    };
    for (Bench::MixedRecord const& record : mixture.records()) {
        rows.send(record);
        drain();
    }
    countedOperations([&](unsigned i) { rows.send(mixture.records()[i]); });
}

bool run(char const* operation) {
    static constexpr char const* telling = "u32 setter that tells ";
    if (std::strcmp(operation, "u32 setter, value changes") == 0) {
        changeNumber(0, 1);
    } else if (std::strcmp(operation, "u32 setter, equal value") == 0) {
        changeNumber(0, 0);
    } else if (std::strcmp(operation, "string setter, 36 characters") == 0) {
        changeText();
    } else if (std::strcmp(operation, "record of mixed kinds, written") == 0) {
        sendMixed();
    } else if (std::strncmp(operation, telling, std::strlen(telling)) == 0) {
        changeNumber(static_cast<unsigned>(std::atoi(operation + std::strlen(telling))), 1);
    } else {
        return false;
    }
    return true;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc > 2) {
        Bench::severalThreads();
    }
    if (argc < 2 || !run(argv[1])) {
        std::fputs("usage: vgw_bench_count OPERATION [threads]\n", stderr);
        return 1;
    }
    return 0;
}
