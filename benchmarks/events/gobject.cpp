#include "events/gobjecttypes.h"
#include "measure.h"

#include <vector>

namespace
{
void deliver(benchmark::State& state, int count)
{
    Sender* sender = makeSender();
    std::vector<Receiver*> receivers;
    for (int i = 0; i < count; ++i) {
        receivers.push_back(makeReceiver());
        connectReceiver(sender, receivers.back());
    }
    int value = 0;
    measure(state, [&] { g_signal_emit(sender, changedSignal, 0, ++value); });
    for (Receiver* receiver : receivers)
        g_object_unref(receiver);
    g_object_unref(sender);
}
BENCHMARK_CAPTURE(deliver, nobody, 0)->Name("raise_unheard/gobject");
BENCHMARK_CAPTURE(deliver, one, 1)->Name("deliver_1/gobject");
BENCHMARK_CAPTURE(deliver, many, 1000)->Name("deliver_1000/gobject");
BENCHMARK_CAPTURE(deliver, handler, 1)->Name("deliver_invokable/gobject");
} // namespace
