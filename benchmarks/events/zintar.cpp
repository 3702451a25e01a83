#include "measure.h"
#include "sender.h"

#include <memory>
#include <vector>

namespace
{
void raiseUnheard(benchmark::State& state)
{
    Sender sender;
    int value = 0;
    measure(state, [&] { sender.changed(++value); });
}
BENCHMARK(raiseUnheard)->Name("raise_unheard/zintar");

void deliver(benchmark::State& state, int count)
{
    Sender sender;
    std::vector<std::unique_ptr<Receiver>> receivers;
    for (int i = 0; i < count; ++i) {
        receivers.push_back(std::make_unique<Receiver>());
        ZTBase::subscribe(&sender, &Sender::changed, receivers.back().get(), &Receiver::take);
    }
    int value = 0;
    measure(state, [&] { sender.changed(++value); });
}
BENCHMARK_CAPTURE(deliver, one, 1)->Name("deliver_1/zintar");
BENCHMARK_CAPTURE(deliver, many, 1000)->Name("deliver_1000/zintar");

void deliverToInvokable(benchmark::State& state)
{
    Sender sender;
    Receiver receiver;
    ZTBase::subscribe(&sender, sender.metaClass()->invokable<void(int)>("changed"), &receiver,
                      receiver.metaClass()->invokable<void(int)>("take"));
    int value = 0;
    measure(state, [&] { sender.changed(++value); });
}
BENCHMARK(deliverToInvokable)->Name("deliver_invokable/zintar");
} // namespace
