#include "measure.h"

#include <string>
#include <string_view>
#include <unordered_map>

namespace
{
void byName(benchmark::State& state)
{
    std::string name = "int";
    std::unordered_map<std::string_view, int> types = {{"int", 1}, {"double", 2}, {"bool", 3}};
    measure(state, [&] {
        benchmark::DoNotOptimize(name);
        auto type = types.find(name);
        benchmark::DoNotOptimize(type);
    });
}
BENCHMARK(byName)->Name("type_by_name/raw");

void byType(benchmark::State& state)
{
    int held = 1;
    const int* type = &held;
    measure(state, [&] {
        benchmark::DoNotOptimize(type);
        const int* found = type;
        benchmark::DoNotOptimize(found);
    });
}
BENCHMARK(byType)->Name("type_by_cpp_type/raw");
} // namespace
