#include "measure.h"
#include "methods/work.h"

#include <zintar/zintar.h>

namespace
{
#define LISTED(name) , zt::method<&Self::name>()

class Table : public ZTBase
{
    ZT_OBJECT(Table, ZTBase)
    METHODS(METHOD)
private:
    static constexpr auto members()
    {
        return zt::members(zt::info("methods", "ten") METHODS(LISTED));
    }
    long m_sum = 0;
};
ZT_CLASS(Table)

void callByName(benchmark::State& state)
{
    Table table;
    int a = 0;
    measure(state, [&] {
        for (const std::string& name : methodNames) {
            const ZTMetaInvokable* method = table.metaClass()->invokable<void(int, int)>(name);
            int result = ztVariantValue<int>(method->invoke(&table, ++a, 2));
            benchmark::DoNotOptimize(result);
        }
    });
}
BENCHMARK(callByName)->Name("method_by_name/zintar");

void callFound(benchmark::State& state)
{
    Table table;
    const ZTMetaInvokable* method = table.metaClass()->invokable<void(int, int)>("setCell");
    int a = 0;
    measure(state, [&] {
        int result = ztVariantValue<int>(method->invoke(&table, ++a, 2));
        benchmark::DoNotOptimize(result);
    });
}
BENCHMARK(callFound)->Name("method_found/zintar");
} // namespace
