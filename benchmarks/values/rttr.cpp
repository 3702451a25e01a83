#include "values/work.h"

#include <rttr/variant.h>

namespace
{
void copyInt(benchmark::State& state) { makeAndCopy<rttr::variant>(state, 42); }
BENCHMARK(copyInt)->Name("value_int/rttr");

void copyString(benchmark::State& state) { makeAndCopy<rttr::variant>(state, longText); }
BENCHMARK(copyString)->Name("value_string/rttr");

void takeInt(benchmark::State& state)
{
    take(state, rttr::variant(42),
         [](const rttr::variant& value) { return value.get_value<int>(); });
}
BENCHMARK(takeInt)->Name("value_get/rttr");
} // namespace
