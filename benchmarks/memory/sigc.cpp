#include "memory/held.h"

#include <sigc++/sigc++.h>

#include <memory>

namespace
{
struct Object : sigc::trackable {
    virtual ~Object() = default;
    void take(int) {}
    sigc::signal<void(int)> changed;
};

void ignore(int) {}

void object(benchmark::State& state)
{
    measureHeld(state, [] { return std::make_unique<Object>(); });
}
BENCHMARK(object)->Name("object/sigc");

void sender(benchmark::State& state)
{
    measureHeld(state, [] {
        auto made = std::make_unique<Object>();
        made->changed.connect(sigc::ptr_fun(&ignore));
        return made;
    });
}
BENCHMARK(sender)->Name("sender/sigc");

void receiver(benchmark::State& state)
{
    Object sender;
    measureHeld(state, [&sender] {
        auto made = std::make_unique<Object>();
        sender.changed.connect(sigc::mem_fun(*made, &Object::take));
        return made;
    });
}
BENCHMARK(receiver)->Name("receiver/sigc");

void subscription(benchmark::State& state)
{
    Object sender;
    Object receiver;
    measureHeld(state, [&] {
        sender.changed.connect(sigc::mem_fun(receiver, &Object::take));
        return 0;
    });
}
BENCHMARK(subscription)->Name("subscription/sigc");
} // namespace
