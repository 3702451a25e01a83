#include "measure.h"

#include <sigc++/sigc++.h>

#include <memory>
#include <vector>

namespace
{
struct Receiver : sigc::trackable {
    void take(int value) { sum += value; }
    long sum = 0;
};

void deliver(benchmark::State& state, int count)
{
    sigc::signal<void(int)> changed;
    std::vector<std::unique_ptr<Receiver>> receivers;
    for (int i = 0; i < count; ++i) {
        receivers.push_back(std::make_unique<Receiver>());
        changed.connect(sigc::mem_fun(*receivers.back(), &Receiver::take));
    }
    int value = 0;
    measure(state, [&] { changed.emit(++value); });
}
BENCHMARK_CAPTURE(deliver, nobody, 0)->Name("raise_unheard/sigc");
BENCHMARK_CAPTURE(deliver, one, 1)->Name("deliver_1/sigc");
BENCHMARK_CAPTURE(deliver, many, 1000)->Name("deliver_1000/sigc");
} // namespace
