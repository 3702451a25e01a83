#include "receivers/lives.h"

#include <boost/signals2.hpp>

namespace
{
struct Receiver {
    void take(int value) { sum += value; }
    long sum = 0;
    boost::signals2::scoped_connection connection;
};

void receivers(benchmark::State& state, std::size_t count, bool random)
{
    boost::signals2::signal<void(int)> changed;
    liveAndDie<Receiver>(state, count, random, [&](Receiver& receiver) {
        receiver.connection = changed.connect([&receiver](int value) { receiver.take(value); });
    });
}
BENCHMARK_CAPTURE(receivers, ordered30000, 30'000, false)->Name("receivers_ordered_30000/boost");
BENCHMARK_CAPTURE(receivers, random30000, 30'000, true)->Name("receivers_random_30000/boost");
} // namespace
