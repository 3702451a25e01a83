#include "measure.h"

#include <zintar/zintar.h>

#include <memory>
#include <vector>

namespace
{
class Sender : public ZTBase
{
    ZT_OBJECT(Sender, ZTBase)
public:
    void changed(int value) { sendEvent<&Self::changed>(value); }

private:
    static constexpr auto members() { return zt::members(zt::event<&Self::changed>()); }
};

class Receiver : public ZTBase
{
    ZT_OBJECT(Receiver, ZTBase)
public:
    void take(int value) { m_sum += value; }

private:
    static constexpr auto members() { return zt::members(zt::method<&Self::take>()); }
    long m_sum = 0;
};
ZT_CLASS(Sender)
ZT_CLASS(Receiver)

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
