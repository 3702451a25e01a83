#include "memory/held.h"

#include <boost/any.hpp>
#include <boost/signals2.hpp>

#include <memory>

namespace
{
struct Object {
    virtual ~Object() = default;
    boost::signals2::signal<void(int)> changed;
    boost::signals2::scoped_connection connection;
};

void ignore(int) {}

void object(benchmark::State& state)
{
    measureHeld(state, [] { return std::make_unique<Object>(); });
}
BENCHMARK(object)->Name("object/boost");

void sender(benchmark::State& state)
{
    measureHeld(state, [] {
        auto made = std::make_unique<Object>();
        made->changed.connect(&ignore);
        return made;
    });
}
BENCHMARK(sender)->Name("sender/boost");

void receiver(benchmark::State& state)
{
    Object sender;
    measureHeld(state, [&sender] {
        auto made = std::make_unique<Object>();
        made->connection = sender.changed.connect(
            [object = made.get()](int) { benchmark::DoNotOptimize(object); });
        return made;
    });
}
BENCHMARK(receiver)->Name("receiver/boost");

void subscription(benchmark::State& state)
{
    Object sender;
    Object receiver;
    measureHeld(state, [&] {
        return boost::signals2::scoped_connection(sender.changed.connect(
            [object = &receiver](int) { benchmark::DoNotOptimize(object); }));
    });
}
BENCHMARK(subscription)->Name("subscription/boost");

void valueOfInt(benchmark::State& state)
{
    measureHeld(
        state, [] { return boost::any(42); }, sizeof(boost::any));
}
BENCHMARK(valueOfInt)->Name("value_int/boost");
} // namespace
