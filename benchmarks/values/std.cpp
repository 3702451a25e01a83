#include "values/work.h"

#include <any>

namespace
{
void copyInt(benchmark::State& state) { makeAndCopy<std::any>(state, 42); }
BENCHMARK(copyInt)->Name("value_int/std");

void copyString(benchmark::State& state) { makeAndCopy<std::any>(state, longText); }
BENCHMARK(copyString)->Name("value_string/std");

void takeInt(benchmark::State& state)
{
    take(state, std::any(42), [](const std::any& value) { return std::any_cast<int>(value); });
}
BENCHMARK(takeInt)->Name("value_get/std");
} // namespace
