#include "memory/held.h"
#include "memory/tenmembers.h"

#include <zintar/zintar.h>

#include <memory>
#include <string>

namespace
{
class Object : public ZTBase
{
    ZT_OBJECT(Object, ZTBase)
public:
    void changed(int value) { sendEvent<&Self::changed>(value); }
    void take(int) {}

private:
    static constexpr auto members() { return zt::members(zt::event<&Self::changed>()); }
};
ZT_CLASS(Object)

void ignore(int) {}

void object(benchmark::State& state)
{
    measureHeld(state, [] { return std::make_unique<Object>(); });
}
BENCHMARK(object)->Name("object/zintar");

void sender(benchmark::State& state)
{
    measureHeld(state, [] {
        auto made = std::make_unique<Object>();
        ZTBase::subscribe(made.get(), &Object::changed, &ignore);
        return made;
    });
}
BENCHMARK(sender)->Name("sender/zintar");

void receiver(benchmark::State& state)
{
    Object sender;
    measureHeld(state, [&sender] {
        auto made = std::make_unique<Object>();
        ZTBase::subscribe(&sender, &Object::changed, made.get(), &Object::take);
        return made;
    });
}
BENCHMARK(receiver)->Name("receiver/zintar");

void subscription(benchmark::State& state)
{
    Object sender;
    Object receiver;
    measureHeld(state, [&] {
        return ZTBase::subscribe(&sender, &Object::changed, &receiver, &Object::take);
    });
}
BENCHMARK(subscription)->Name("subscription/zintar");

void valueOfInt(benchmark::State& state)
{
    measureHeld(
        state, [] { return ZTVariant(42); }, sizeof(ZTVariant));
}
BENCHMARK(valueOfInt)->Name("value_int/zintar");

void firstDynamicProperty(benchmark::State& state)
{
    std::vector<Object> objects(heldCount + 1);
    std::size_t next = 0;
    measureHeld(state, [&] { return objects[next++].setProperty("note", 42, true); });
}
BENCHMARK(firstDynamicProperty)->Name("dynamic_property_first/zintar");

void furtherDynamicProperty(benchmark::State& state)
{
    Object object;
    int next = 0;
    measureHeld(state,
                [&] { return object.setProperty("note" + std::to_string(next++), 42, true); });
}
BENCHMARK(furtherDynamicProperty)->Name("dynamic_property_further/zintar");

#define LISTED(name) , zt::property<&Self::name, &Self::set_##name>()

// Eight, since what the library keeps of all types and classes grows by leaps.
#define EIGHT(X) X(0) X(1) X(2) X(3) X(4) X(5) X(6) X(7)
#define DECLARED(number)                                                                           \
    class TenMembers##number : public ZTBase                                                       \
    {                                                                                              \
        ZT_OBJECT(TenMembers##number, ZTBase)                                                      \
        TEN_FIELDS(FIELD)                                                                          \
        static constexpr auto members()                                                            \
        {                                                                                          \
            return zt::members(zt::property<&Self::first, &Self::set_first>()                      \
                                   NINE_FIELDS(LISTED));                                           \
        }                                                                                          \
    };
EIGHT(DECLARED)

// The classes get ready as the program is loaded, between these two.
// An object first, since the blocks that the thread keeps are not the classes'.
const HeapUse beforeClasses = heapUseAfter([] { ZTBase(); });
#define READY(number) ZT_CLASS(TenMembers##number)
EIGHT(READY)
const HeapUse afterClasses =
    heapUseAfter([] { benchmark::DoNotOptimize(TenMembers7().metaClass()->property("tenth")); });

void declaredClass(benchmark::State& state) { tellHeld(state, beforeClasses, afterClasses, 8); }
BENCHMARK(declaredClass)->Name("class/zintar");
} // namespace
