#include "receivers/lives.h"

#include <sigc++/sigc++.h>

namespace
{
struct Receiver : sigc::trackable {
    void take(int value) { sum += value; }
    long sum = 0;
};

void receivers(benchmark::State& state, std::size_t count, bool random)
{
    sigc::signal<void(int)> changed;
    liveAndDie<Receiver>(state, count, random, [&](Receiver& receiver) {
        changed.connect(sigc::mem_fun(receiver, &Receiver::take));
    });
}
BENCHMARK_CAPTURE(receivers, ordered30000, 30'000, false)->Name("receivers_ordered_30000/sigc");
BENCHMARK_CAPTURE(receivers, random30000, 30'000, true)->Name("receivers_random_30000/sigc");
BENCHMARK_CAPTURE(receivers, ordered300000, 300'000, false)->Name("receivers_ordered_300000/sigc");
BENCHMARK_CAPTURE(receivers, random300000, 300'000, true)->Name("receivers_random_300000/sigc");
} // namespace
