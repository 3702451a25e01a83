#include "measure.h"
#include "properties/work.h"

#include <array>
#include <functional>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace
{
struct Property {
    std::function<int()> get;
    std::function<void(int)> set;
};

/// What finding twenty pairs of functions by name costs at least.
void byName(benchmark::State& state)
{
    std::array<int, propertyNames.size()> values{};
    std::unordered_map<std::string_view, Property> properties;
    for (std::size_t i = 0; i < values.size(); ++i)
        properties[propertyNames[i]] = {[&field = values[i]] { return field; },
                                        [&field = values[i]](int value) { field = value; }};
    int value = 0;
    measure(state, [&] {
        for (const std::string& name : propertyNames) {
            properties.find(name)->second.set(++value);
            int got = properties.find(name)->second.get();
            benchmark::DoNotOptimize(got);
        }
    });
}
BENCHMARK(byName)->Name("property_by_name/raw");

void found(benchmark::State& state)
{
    std::array<int, propertyNames.size()> values{};
    std::vector<Property> properties;
    for (int& field : values)
        properties.push_back({[&field] { return field; }, [&field](int value) { field = value; }});
    int value = 0;
    measure(state, [&] {
        for (const Property& property : properties) {
            property.set(++value);
            int got = property.get();
            benchmark::DoNotOptimize(got);
        }
    });
}
BENCHMARK(found)->Name("property_found/raw");

void dynamic(benchmark::State& state)
{
    std::unordered_map<std::string_view, int> properties = {{"note", 0}};
    int value = 0;
    measure(state, [&] {
        properties.find("note")->second = ++value;
        int got = properties.find("note")->second;
        benchmark::DoNotOptimize(got);
    });
}
BENCHMARK(dynamic)->Name("dynamic_property/raw");
} // namespace
