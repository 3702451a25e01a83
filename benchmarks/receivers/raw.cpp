#include "receivers/lives.h"

#include <functional>
#include <list>

namespace
{
using Handlers = std::list<std::function<void(int)>>;

/// Leaves a list of handlers as it dies.
struct Receiver {
    Receiver() = default;
    Receiver(const Receiver&) = delete;
    Receiver& operator=(const Receiver&) = delete;
    ~Receiver() { handlers->erase(place); }

    void take(int value) { sum += value; }

    long sum = 0;
    Handlers* handlers = nullptr;
    Handlers::iterator place;
};

void receivers(benchmark::State& state, std::size_t count, bool random)
{
    Handlers handlers;
    liveAndDie<Receiver>(state, count, random, [&](Receiver& receiver) {
        receiver.handlers = &handlers;
        receiver.place =
            handlers.insert(handlers.end(), [&receiver](int value) { receiver.take(value); });
    });
}
BENCHMARK_CAPTURE(receivers, ordered30000, 30'000, false)->Name("receivers_ordered_30000/raw");
BENCHMARK_CAPTURE(receivers, random30000, 30'000, true)->Name("receivers_random_30000/raw");
BENCHMARK_CAPTURE(receivers, ordered300000, 300'000, false)->Name("receivers_ordered_300000/raw");
BENCHMARK_CAPTURE(receivers, random300000, 300'000, true)->Name("receivers_random_300000/raw");
} // namespace
