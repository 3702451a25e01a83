#include "events/gobjecttypes.h"
#include "receivers/lives.h"

namespace
{
struct Owner {
    Owner() : receiver(makeReceiver()) {}
    Owner(const Owner&) = delete;
    Owner& operator=(const Owner&) = delete;
    ~Owner() { g_object_unref(receiver); }
    Receiver* receiver;
};

void receivers(benchmark::State& state, std::size_t count, bool random)
{
    Sender* sender = makeSender();
    liveAndDie<Owner>(state, count, random,
                      [&](Owner& owner) { connectReceiver(sender, owner.receiver); });
    g_object_unref(sender);
}
BENCHMARK_CAPTURE(receivers, ordered30000, 30'000, false)->Name("receivers_ordered_30000/gobject");
BENCHMARK_CAPTURE(receivers, random30000, 30'000, true)->Name("receivers_random_30000/gobject");
} // namespace
