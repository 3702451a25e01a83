#include "measure.h"
#include "methods/work.h"

#include <rttr/registration>

namespace
{
class Table
{
    METHODS(METHOD)
    RTTR_ENABLE()
public:
    Table() = default;
    Table(const Table&) = delete;
    Table& operator=(const Table&) = delete;
    virtual ~Table() = default;

private:
    long m_sum = 0;
};

#define LISTED(name) .method(#name, &Table::name)
RTTR_REGISTRATION { rttr::registration::class_<Table>("Table") METHODS(LISTED); }

void callByName(benchmark::State& state)
{
    Table table;
    int a = 0;
    measure(state, [&] {
        for (const std::string& name : methodNames) {
            rttr::method method = table.get_type().get_method(name);
            int result = method.invoke(table, ++a, 2).get_value<int>();
            benchmark::DoNotOptimize(result);
        }
    });
}
BENCHMARK(callByName)->Name("method_by_name/rttr");

void callFound(benchmark::State& state)
{
    Table table;
    const rttr::method method = rttr::type::get<Table>().get_method("setCell");
    int a = 0;
    measure(state, [&] {
        int result = method.invoke(table, ++a, 2).get_value<int>();
        benchmark::DoNotOptimize(result);
    });
}
BENCHMARK(callFound)->Name("method_found/rttr");
} // namespace
