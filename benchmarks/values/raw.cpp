#include "values/work.h"

namespace
{
void copyInt(benchmark::State& state)
{
    measure(state, [] {
        auto* value = new int(42);
        benchmark::DoNotOptimize(value);
        auto* copy = new int(*value);
        benchmark::DoNotOptimize(copy);
        delete copy;
        delete value;
    });
}
BENCHMARK(copyInt)->Name("value_int/raw");

void copyString(benchmark::State& state) { makeAndCopy<std::string>(state, longText); }
BENCHMARK(copyString)->Name("value_string/raw");

void takeInt(benchmark::State& state)
{
    int held = 42;
    take(state, &held, [](const int* value) { return *value; });
}
BENCHMARK(takeInt)->Name("value_get/raw");

void walkVector(benchmark::State& state)
{
    measure(state, [] {
        int sum = 0;
        for (const int& element : thousandInts) {
            int number = element;
            benchmark::DoNotOptimize(number); // one by one, as the others have to
            sum += number;
        }
        benchmark::DoNotOptimize(sum);
    });
}
BENCHMARK(walkVector)->Name("view_walk_1000/raw");
} // namespace
