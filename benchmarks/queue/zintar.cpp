#include "producers.h"
#include "sender.h"

namespace
{
void queueOnOneThread(benchmark::State& state)
{
    ZTEventQueue queue;
    Sender sender;
    Receiver receiver;
    ZTBase::subscribe(&sender, &Sender::changed, queue, &receiver, &Receiver::take);
    int value = 0;
    measure(state, [&] {
        sender.changed(++value);
        queue.deliver();
    });
}
BENCHMARK(queueOnOneThread)->Name("queue_same_thread/zintar");

void queueFrom(benchmark::State& state, int producers)
{
    ZTEventQueue queue;
    std::vector<Sender> senders(static_cast<std::size_t>(producers));
    Receiver receiver;
    for (Sender& sender : senders)
        ZTBase::subscribe(&sender, &Sender::changed, queue, &receiver, &Receiver::take);
    measureProducers(
        state, producers,
        [&](int i, int count) {
            for (int value = 0; value < count; ++value)
                senders[static_cast<std::size_t>(i)].changed(value);
        },
        [&] { return queue.deliver(); });
}
BENCHMARK_CAPTURE(queueFrom, one, 1)->Name("queue_1_producer/zintar")->UseRealTime();
BENCHMARK_CAPTURE(queueFrom, four, 4)->Name("queue_4_producers/zintar")->UseRealTime();
} // namespace
