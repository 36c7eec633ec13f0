// Setters of an entity that nobody watches.
#include <vgw/tables/LogicalSwitch.h>
#include <vgw/tables/UcastMacsRemote.h>

#include <array>

#include "../Row.h"
#include "../maps/Keys.h"
#include "Floor.h"

namespace Bench {

namespace {

template <class Set>
void numberSetter(benchmark::State& state, std::uint32_t step, Set set) {
    std::uint32_t number = 1;
    set(number);
    for (auto _ : state) {
        set(number += step);
        benchmark::ClobberMemory();
    }
    tellOperations(state);
}

template <class Text, class Set>
void textSetter(benchmark::State& state, Set set) {
    auto const texts = uuids(2, 1);
    std::array<Text, 2> const values{Text(std::string_view(texts[0])),
                                     Text(std::string_view(texts[1]))};
    std::size_t turn = 0;
    for (auto _ : state) {
        set(values[turn ^= 1]);
        benchmark::ClobberMemory();
    }
    tellOperations(state);
}

template <class Count>
void floorText(benchmark::State& state) {
    FloorRow<Count> row;
    benchmark::DoNotOptimize(&row);
    textSetter<FloorString<Count>>(state, [&](auto const& value) { row.textIs(value); });
}

void ownText(benchmark::State& state) {
    auto const row = Qor::make<Vgw::UcastMacsRemote>("row");
    textSetter<Qor::String8>(state, [&](auto const& value) { row->logicalSwitchIs(value); });
}

}  // namespace

void addScalars() {
    for (std::uint32_t const step : {1U, 0U}) {
        std::string const row =
            std::string("u32 setter, ") + (step != 0 ? "value changes" : "equal value");
        cell(row, "floor", [=](auto& state) {
            FloorRow<PlainCount> floor;
            benchmark::DoNotOptimize(&floor);
            numberSetter(state, step, [&](std::uint32_t value) { floor.numberIs(value); });
        });
        cell(row, "ours", [=](auto& state) {
            auto const ours = Qor::make<Vgw::LogicalSwitch>("red");
            numberSetter(state, step, [&](std::uint32_t value) { ours->tunnelKeyIs(value); });
        });
    }
    std::string const row = "string setter, 36 characters";
    cell(row, "floor", floorText<PlainCount>);
    cell(row, "ours", ownText);
    cell(row + ", several threads", "floor", floorText<AtomicCount>);
    cell(row + ", several threads", "ours", [](auto& state) {
        severalThreads();
        ownText(state);
    });
}

}  // namespace Bench
