#include "values/work.h"

#include <zintar/zintar.h>

namespace
{
void copyInt(benchmark::State& state) { makeAndCopy<ZTVariant>(state, 42); }
BENCHMARK(copyInt)->Name("value_int/zintar");

void copyString(benchmark::State& state) { makeAndCopy<ZTVariant>(state, longText); }
BENCHMARK(copyString)->Name("value_string/zintar");

void takeInt(benchmark::State& state)
{
    take(state, ZTVariant(42), [](const ZTVariant& value) { return ztVariantValue<int>(value); });
}
BENCHMARK(takeInt)->Name("value_get/zintar");

void walkView(benchmark::State& state)
{
    const ZTVariant held(thousandInts);
    measure(state, [&held] {
        int sum = 0;
        for (const ZTVariant& element : ZTSequenceView(held))
            sum += ztVariantValue<int>(element);
        benchmark::DoNotOptimize(sum);
    });
}
BENCHMARK(walkView)->Name("view_walk_1000/zintar");
} // namespace
