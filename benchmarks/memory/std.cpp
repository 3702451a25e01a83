#include "memory/held.h"

#include <any>

namespace
{
void valueOfInt(benchmark::State& state)
{
    measureHeld(
        state, [] { return std::any(42); }, sizeof(std::any));
}
BENCHMARK(valueOfInt)->Name("value_int/std");
} // namespace
