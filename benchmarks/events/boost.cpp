#include "measure.h"

#include <boost/signals2.hpp>

#include <memory>
#include <vector>

namespace
{
struct Receiver {
    void take(int value) { sum += value; }
    long sum = 0;
    boost::signals2::scoped_connection connection;
};

void deliver(benchmark::State& state, int count)
{
    boost::signals2::signal<void(int)> changed;
    std::vector<std::unique_ptr<Receiver>> receivers;
    for (int i = 0; i < count; ++i) {
        receivers.push_back(std::make_unique<Receiver>());
        Receiver* receiver = receivers.back().get();
        receiver->connection = changed.connect([receiver](int value) { receiver->take(value); });
    }
    int value = 0;
    measure(state, [&] { changed(++value); });
}
BENCHMARK_CAPTURE(deliver, nobody, 0)->Name("raise_unheard/boost");
BENCHMARK_CAPTURE(deliver, one, 1)->Name("deliver_1/boost");
BENCHMARK_CAPTURE(deliver, many, 1000)->Name("deliver_1000/boost");
} // namespace
