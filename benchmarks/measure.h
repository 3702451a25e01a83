#pragma once

#include "allocations.h"

#include <benchmark/benchmark.h>

#include <utility>

/// Repeats an operation for as long as the benchmark runs. Where allocations are counted, it also
/// tells how many one operation takes.
template <class Operation>
void measure(benchmark::State& state, Operation&& operation)
{
    operation(); // whatever is paid only once
    if (heapUse) {
        HeapUse before = heapUse();
        operation();
        state.counters["allocations"] =
            static_cast<double>(heapUse().allocations - before.allocations);
    }
    for (auto _ : state)
        operation();
}

/// The same for an operation that uses up what `prepare` makes, whose making is not measured.
template <class Prepare, class Operation>
void measure(benchmark::State& state, Prepare&& prepare, Operation&& operation)
{
    if (heapUse) {
        auto prepared = prepare();
        HeapUse before = heapUse();
        operation(prepared);
        state.counters["allocations"] =
            static_cast<double>(heapUse().allocations - before.allocations);
    }
    for (auto _ : state) {
        state.PauseTiming();
        auto prepared = prepare();
        state.ResumeTiming();
        operation(prepared);
    }
}
