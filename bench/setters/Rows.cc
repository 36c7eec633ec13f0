// What a row of the mirrored database costs: remote MAC rows, complete, each with texts of its own.
#include <vgw/tables/UcastMacsRemote.h>

#include <vector>

#include "../Row.h"
#include "../maps/Keys.h"

namespace Bench {

namespace {

struct RowTexts {
    std::vector<std::string> names;
    std::vector<std::string> switches;
    std::vector<std::string> locators;

    explicit RowTexts(std::size_t count)
        : names(uuids(count, 1)), switches(uuids(count, 2)), locators(uuids(count, 3)) {}
};

Vgw::UcastMacsRemote::Ptr makeRow(RowTexts const& texts, std::size_t at) {
    using std::string_view;
    auto row = Qor::make<Vgw::UcastMacsRemote>(string_view(texts.names[at]));
    row->macIs(Kelp::EthAddr("00:00:5e:00:53:01"));
    row->ipAddrIs(Kelp::IpAddr("192.0.2.1"));
    row->logicalSwitchIs(string_view(texts.switches[at]));
    row->physicalLocatorIs(string_view(texts.locators[at]));
    return row;
}

void makeCell(benchmark::State& state, std::size_t count) {
    RowTexts const texts(count);
    std::vector<Vgw::UcastMacsRemote::Ptr> rows(count);
    for (auto _ : state) {
        timed(state, [&] {
            for (std::size_t i = 0; i < count; ++i) {
                rows[i] = makeRow(texts, i);
            }
        });
    }
    tellOperations(state, count);
}

void endCell(benchmark::State& state, std::size_t count) {
    RowTexts const texts(count);
    std::vector<Vgw::UcastMacsRemote::Ptr> rows(count);
    for (std::size_t i = 0; i < count; ++i) {
        rows[i] = makeRow(texts, i);
    }
    for (auto _ : state) {
        timed(state, [&] {
            for (std::size_t i = 0; i < count; ++i) {
                rows[i] = nullptr;
            }
        });
    }
    tellOperations(state, count);
}

void bytesCell(benchmark::State& state, std::size_t count) {
    RowTexts const texts(count);
    std::vector<Vgw::UcastMacsRemote::Ptr> rows(count);
    for (auto _ : state) {
        std::size_t const before = bytesHeld();
        for (std::size_t i = 0; i < count; ++i) {
            rows[i] = makeRow(texts, i);
        }
        tellBytes(state, static_cast<double>(bytesHeld() - before) / static_cast<double>(count));
    }
}

}  // namespace

void addRows() {
    for (std::size_t const count :
         {std::size_t{1'000}, std::size_t{100'000}, std::size_t{1'000'000}}) {
        std::string const rows = " of " + std::to_string(count) + " remote MAC rows";
        cell("making one" + rows, "ours", [=](auto& state) { makeCell(state, count); })
            ->UseManualTime()
            ->Iterations(1);
        cell("ending one" + rows, "ours", [=](auto& state) { endCell(state, count); })
            ->UseManualTime()
            ->Iterations(1);
        if (count > 1'000) {
            cell("bytes of one" + rows, "ours", [=](auto& state) {
                bytesCell(state, count);
            })->Iterations(1);
        }
    }
}

}  // namespace Bench
