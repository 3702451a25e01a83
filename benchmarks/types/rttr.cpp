#include "measure.h"

#include <rttr/type.h>

#include <string>

namespace
{
void byName(benchmark::State& state)
{
    std::string name = "int";
    measure(state, [&] {
        benchmark::DoNotOptimize(name);
        rttr::type type = rttr::type::get_by_name(name);
        benchmark::DoNotOptimize(type);
    });
}
BENCHMARK(byName)->Name("type_by_name/rttr");

void byType(benchmark::State& state)
{
    measure(state, [] {
        rttr::type type = rttr::type::get<int>();
        benchmark::DoNotOptimize(type);
    });
}
BENCHMARK(byType)->Name("type_by_cpp_type/rttr");
} // namespace
