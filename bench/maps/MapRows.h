// The four operations on a map, the same code for every column. A column is a map type with
//
//   Source                      what a key comes from: std::string or a number
//   Key, key(source)            what is looked up, made beforehand
//   add(source)                 makes the key and inserts it
//   bool has(key)
//   std::size_t walk()          steps over all entries and reads something of each
//
// Insertion is timed in fresh memory, in maps that start empty; at ten entries a thousand maps are
// filled in turn. Look-ups go in an order that has nothing to do with that of insertion.
#ifndef BENCH_MAPS_MAP_ROWS_H
#define BENCH_MAPS_MAP_ROWS_H

#include <algorithm>
#include <memory>
#include <vector>

#include "../Row.h"
#include "Keys.h"

namespace Bench {

template <class Source>
struct MapSources {
    std::vector<Source> present;
    std::vector<Source> absent;
};

template <class Column, class Make>
void insertCell(benchmark::State& state, std::size_t size, Make make) {
    std::size_t const maps = size < 1000 ? 1000 : 1;
    auto const sources = make(size * maps);
    for (auto _ : state) {
        std::vector<std::unique_ptr<Column>> filled;
        for (std::size_t i = 0; i < maps; ++i) {
            filled.push_back(std::make_unique<Column>());
        }
        timed(state, [&] {
            for (std::size_t i = 0; i < maps; ++i) {
                for (std::size_t j = i * size; j < (i + 1) * size; ++j) {
                    filled[i]->add(sources.present[j]);
                }
            }
        });
    }
    tellOperations(state, size * maps);
}

template <class Column, class Sources>
std::unique_ptr<Column> filledMap(Sources const& sources) {
    auto map = std::make_unique<Column>();
    for (auto const& source : sources.present) {
        map->add(source);
    }
    return map;
}

template <class Column, class Make>
void findCell(benchmark::State& state, std::size_t size, bool hit, Make make) {
    auto const sources = make(size);
    auto const map = filledMap<Column>(sources);
    std::vector<typename Column::Key> keys;
    for (std::uint32_t const at : shuffledOrder(size)) {
        keys.push_back(Column::key(hit ? sources.present[at] : sources.absent[at]));
    }
    std::size_t wrong = 0;
    for (auto const& key : keys) {
        wrong += map->has(key) == hit ? 0 : 1;
    }
    if (wrong != 0) {
        state.SkipWithError("a look-up went wrong");
    }
    for (auto _ : state) {
        for (auto const& key : keys) {
            benchmark::DoNotOptimize(map->has(key));
        }
    }
    tellOperations(state, size);
}

template <class Column, class Make>
void walkCell(benchmark::State& state, std::size_t size, Make make) {
    auto const map = filledMap<Column>(make(size));
    for (auto _ : state) {
        if (map->walk() != size) {
            state.SkipWithError("the walk missed entries");
        }
    }
    tellOperations(state, size);
}

/// The dearest single insertion of a million, told as an operation's time.
template <class Column, class Make>
void cliffCell(benchmark::State& state, std::size_t size, Make make) {
    auto const sources = make(size);
    for (auto _ : state) {
        Column map;
        double worst = 0;
        for (auto const& source : sources.present) {
            double const begin = processorTime();
            map.add(source);
            worst = std::max(worst, processorTime() - begin);
        }
        state.SetIterationTime(worst);
    }
    tellOperations(state);
}

/// What a full map holds for an entry beside key and value. What a key takes is measured too.
template <class Column, class Make>
void bytesCell(benchmark::State& state, std::size_t size, Make make) {
    auto const sources = make(size);
    for (auto _ : state) {
        std::size_t const atFirst = bytesHeld();
        std::vector<typename Column::Key> keys;
        keys.reserve(size);
        for (auto const& source : sources.present) {
            keys.push_back(Column::key(source));
        }
        std::size_t const withKeys = bytesHeld();
        auto const map = filledMap<Column>(sources);
        std::size_t const keyBytes = withKeys - atFirst;
        auto const beside = static_cast<double>(bytesHeld() - withKeys - keyBytes);
        tellBytes(state, beside / static_cast<double>(size) - sizeof(bool));
    }
}

template <class Column, class Make>
void addMapCells(std::string const& kind, std::string const& column, Make make) {
    for (std::size_t const size : {std::size_t{10}, std::size_t{100'000}, std::size_t{1'000'000}}) {
        std::string const row = kind + " map of " + std::to_string(size) + ": ";
        cell(row + "insert", column, [=](auto& state) { insertCell<Column>(state, size, make); })
            ->UseManualTime()
            ->Iterations(1);
        cell(row + "hit", column, [=](auto& state) { findCell<Column>(state, size, true, make); });
        cell(row + "miss", column,
             [=](auto& state) { findCell<Column>(state, size, false, make); });
        cell(row + "iterate", column, [=](auto& state) { walkCell<Column>(state, size, make); });
    }
    cell(kind + " map: dearest insertion of a million", column,
         [=](auto& state) { cliffCell<Column>(state, 1'000'000, make); })
        ->UseManualTime()
        ->Iterations(1);
    cell(kind + " map: bytes an entry beside key and value", column, [=](auto& state) {
        bytesCell<Column>(state, 1'000'000, make);
    })->Iterations(1);
}

}  // namespace Bench

#endif
