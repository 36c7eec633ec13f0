// A row of the table is a group of benchmarks called "row|column"; the columns are `floor`, `ours`
// and the peers. bench/run runs every cell in a process of its own, round by round, so each sees
// fresh memory and the state of threads that it asks for. A cell tells its figure in the counter
// `op`: the time of one operation; or in `bytes` or `worst`, where the row is about those.
#ifndef BENCH_ROW_H
#define BENCH_ROW_H

#include <benchmark/benchmark.h>

#include <cstddef>
#include <string>

namespace Bench {

/// Registers the cell `column` of `row`.
template <class Function>
benchmark::internal::Benchmark* cell(std::string const& row, std::string const& column,
                                     Function function) {
    return benchmark::RegisterBenchmark((row + "|" + column).c_str(), function);
}

/// States that each iteration made `operations` operations.
void tellOperations(benchmark::State& state, std::size_t operations = 1);
/// States the figure of a row about memory.
void tellBytes(benchmark::State& state, double bytes);

/// Bytes of the process that stand in memory now.
std::size_t bytesHeld();

/// From now on the process has a second thread, which sleeps.
void severalThreads();

/// Seconds of processor that this thread has had: what others of the machine do is not in it.
double processorTime();

/// Runs `body` and makes its processor time that of the iteration.
template <class Body>
void timed(benchmark::State& state, Body body) {
    double const begin = processorTime();
    body();
    state.SetIterationTime(processorTime() - begin);
}

void addTextMaps();
void addNumberMaps();
void addScalars();
void addDispatch();
void addRows();
void addRecords();
void addMounts();
void addProcesses();

}  // namespace Bench

#endif
