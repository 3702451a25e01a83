#include "measure.h"

#include <functional>
#include <memory>
#include <vector>

namespace
{
struct Receiver {
    void take(int value) { sum += value; }
    long sum = 0;
};

void deliver(benchmark::State& state, int count)
{
    std::vector<std::unique_ptr<Receiver>> receivers;
    std::vector<std::function<void(int)>> handlers;
    for (int i = 0; i < count; ++i) {
        receivers.push_back(std::make_unique<Receiver>());
        handlers.push_back([receiver = receivers.back().get()](int v) { receiver->take(v); });
    }
    int value = 0;
    measure(state, [&] {
        ++value;
        for (const auto& handler : handlers)
            handler(value);
    });
}
BENCHMARK_CAPTURE(deliver, one, 1)->Name("deliver_1/raw");
BENCHMARK_CAPTURE(deliver, many, 1000)->Name("deliver_1000/raw");

void callFunction(benchmark::State& state)
{
    Receiver receiver;
    std::function<void(int)> handler = [&receiver](int value) { receiver.take(value); };
    int value = 0;
    measure(state, [&] {
        benchmark::DoNotOptimize(handler);
        handler(++value);
    });
}
BENCHMARK(callFunction)->Name("raise_unheard/raw");
BENCHMARK(callFunction)->Name("deliver_invokable/raw");
} // namespace
