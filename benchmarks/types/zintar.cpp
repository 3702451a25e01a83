#include "measure.h"

#include <zintar/zintar.h>

#include <string>

namespace
{
void byName(benchmark::State& state)
{
    std::string name = "int";
    measure(state, [&] {
        benchmark::DoNotOptimize(name);
        const ZTMetaType* type = &ztMetaType(name);
        benchmark::DoNotOptimize(type);
    });
}
BENCHMARK(byName)->Name("type_by_name/zintar");

void byType(benchmark::State& state)
{
    measure(state, [] {
        const ZTMetaType* type = &ztMetaType<int>();
        benchmark::DoNotOptimize(type);
    });
}
BENCHMARK(byType)->Name("type_by_cpp_type/zintar");
} // namespace
