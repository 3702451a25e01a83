#include "measure.h"
#include "methods/work.h"

#include <string_view>
#include <unordered_map>

namespace
{
class Table
{
    METHODS(METHOD)
private:
    long m_sum = 0;
};
using Method = int (Table::*)(int, int);

#define LISTED(name) {#name, &Table::name},

void callByName(benchmark::State& state)
{
    Table table;
    const std::unordered_map<std::string_view, Method> methods = {METHODS(LISTED)};
    int a = 0;
    measure(state, [&] {
        for (const std::string& name : methodNames) {
            int result = (table.*methods.find(name)->second)(++a, 2);
            benchmark::DoNotOptimize(result);
        }
    });
}
BENCHMARK(callByName)->Name("method_by_name/raw");

void callFound(benchmark::State& state)
{
    Table table;
    Method method = &Table::setCell;
    int a = 0;
    measure(state, [&] {
        benchmark::DoNotOptimize(method);
        int result = (table.*method)(++a, 2);
        benchmark::DoNotOptimize(result);
    });
}
BENCHMARK(callFound)->Name("method_found/raw");
} // namespace
