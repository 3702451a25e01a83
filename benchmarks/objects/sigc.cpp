#include "measure.h"

#include <sigc++/sigc++.h>

namespace
{
struct Object : sigc::trackable {
    virtual ~Object() = default;
    sigc::signal<void(int)> changed;
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
BENCHMARK(makeAndDestroy)->Name("object/sigc");
} // namespace
