#pragma once

#include "measure.h"

#include <string>
#include <vector>

/// 64 characters, which no small-string buffer takes.
inline const std::string longText =
    "the quick brown fox jumps over the lazy dog, and over 63 others.";

/// Makes a value out of `source`, copies it, and destroys both.
template <class Value, class Source>
void makeAndCopy(benchmark::State& state, const Source& source)
{
    measure(state, [&source] {
        Value value(source);
        benchmark::DoNotOptimize(value);
        Value copy(value);
        benchmark::DoNotOptimize(copy);
    });
}

/// What is walked.
inline const std::vector<int> thousandInts(1000, 3);

/// Takes an int out of `value` by `get`.
template <class Value, class Get>
void take(benchmark::State& state, Value value, Get get)
{
    measure(state, [&] {
        benchmark::DoNotOptimize(value);
        int number = get(value);
        benchmark::DoNotOptimize(number);
    });
}
