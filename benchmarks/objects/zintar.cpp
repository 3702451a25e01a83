#include "measure.h"

#include <zintar/zintar.h>

#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>

namespace
{
class Object : public ZTBase
{
    ZT_OBJECT(Object, ZTBase)
private:
    static constexpr auto members() { return zt::members(); }
};
ZT_CLASS(Object)

void makeAndDestroy(benchmark::State& state)
{
    measure(state, [] {
        auto* object = new Object;
        benchmark::DoNotOptimize(object);
        delete object;
    });
}
BENCHMARK(makeAndDestroy)->Name("object/zintar");

void createByName(benchmark::State& state)
{
    std::string name = "Object";
    measure(state, [&] {
        benchmark::DoNotOptimize(name);
        std::unique_ptr<ZTBase> object = ztCreate(*ztClass(name));
        benchmark::DoNotOptimize(object);
    });
}
BENCHMARK(createByName)->Name("create_by_name/zintar");

std::unique_ptr<ZTBase> makeObject() { return std::make_unique<Object>(); }

/// What a host would write by hand, for the same object.
void createFromTable(benchmark::State& state)
{
    std::string name = "Object";
    const std::unordered_map<std::string_view, std::unique_ptr<ZTBase> (*)()> factories = {
        {"Base", &makeObject}, {"Object", &makeObject}, {"DynamicBase", &makeObject}};
    measure(state, [&] {
        benchmark::DoNotOptimize(name);
        std::unique_ptr<ZTBase> object = factories.find(name)->second();
        benchmark::DoNotOptimize(object);
    });
}
BENCHMARK(createFromTable)->Name("create_by_name/raw");
} // namespace
