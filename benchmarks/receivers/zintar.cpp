#include "receivers/lives.h"
#include "sender.h"

#include <cstddef>
#include <memory>

namespace
{
void receivers(benchmark::State& state, std::size_t count, bool random)
{
    Sender sender;
    liveAndDie<Receiver>(state, count, random, [&](Receiver& receiver) {
        ZTBase::subscribe(&sender, &Sender::changed, &receiver, &Receiver::take);
    });
}
BENCHMARK_CAPTURE(receivers, ordered30000, 30'000, false)->Name("receivers_ordered_30000/zintar");
BENCHMARK_CAPTURE(receivers, random30000, 30'000, true)->Name("receivers_random_30000/zintar");
BENCHMARK_CAPTURE(receivers, ordered300000, 300'000, false)
    ->Name("receivers_ordered_300000/zintar");
BENCHMARK_CAPTURE(receivers, random300000, 300'000, true)->Name("receivers_random_300000/zintar");

/// One subscription, whose sender has many receivers and whose receiver has many senders.
void unsubscribe(benchmark::State& state, std::size_t count)
{
    Sender sender;
    Receiver receiver;
    const auto senders = std::make_unique<Sender[]>(count);
    const auto receivers = std::make_unique<Receiver[]>(count);
    const auto subscribe = [](Sender& from, Receiver& to) {
        ZTBase::subscribe(&from, &Sender::changed, &to, &Receiver::take);
    };
    for (std::size_t i = 0; i < count; ++i) {
        subscribe(sender, receivers[i]);
        subscribe(senders[i], receiver);
    }
    subscribe(sender, receiver);
    measure(state, [&] {
        ZTBase::unsubscribe(&sender, &Sender::changed, &receiver, &Receiver::take);
        subscribe(sender, receiver);
    });
}
BENCHMARK_CAPTURE(unsubscribe, of1000, 1000)->Name("unsubscribe_1000/zintar");
BENCHMARK_CAPTURE(unsubscribe, of100000, 100'000)->Name("unsubscribe_100000/zintar");
} // namespace
