#pragma once

#include "allocations.h"

#include <benchmark/benchmark.h>

#include <vector>

/// How many of a thing are made: what they share and what grows in steps weighs little then.
inline constexpr int heldCount = 1000;

/// Tells what `after - before` is for each of `count` things.
inline void tellHeld(benchmark::State& state, const HeapUse& before, const HeapUse& after,
                     int count, double bytesInPlace = 0)
{
    if (!heapUse)
        state.SkipWithError("Preload bench_allocations, which counts.");
    state.counters["blocks"] = static_cast<double>(after.blocks - before.blocks) / count;
    state.counters["bytes"] = static_cast<double>(after.bytes - before.bytes) / count;
    state.counters["in_place"] = bytesInPlace;
    for (auto _ : state)
        ; // there is nothing to time
}

/// What the process has taken once `use` has run.
template <class Use>
HeapUse heapUseAfter(const Use& use)
{
    use();
    return heapUse ? heapUse() : HeapUse();
}

/// Tells what one of the things that `make` gives, or leaves behind, holds of the heap.
template <class Make>
void measureHeld(benchmark::State& state, Make make, double bytesInPlace = 0)
{
    std::vector<decltype(make())> held;
    held.reserve(heldCount + 1);
    held.push_back(make()); // with whatever is paid only once
    HeapUse before = heapUseAfter([] {});
    for (int i = 0; i < heldCount; ++i)
        held.push_back(make());
    tellHeld(state, before, heapUseAfter([] {}), heldCount, bytesInPlace);
}
