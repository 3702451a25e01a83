#include "measure.h"

namespace
{
struct Object {
    virtual ~Object() = default;
    int value = 0;
};

void makeAndDestroy(benchmark::State& state)
{
    measure(state, [] {
        auto* object = new Object;
        benchmark::DoNotOptimize(object);
        delete object;
    });
}
BENCHMARK(makeAndDestroy)->Name("object/raw");
} // namespace
