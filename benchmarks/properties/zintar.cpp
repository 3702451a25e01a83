#include "measure.h"
#include "properties/work.h"

#include <zintar/zintar.h>

#include <vector>

namespace
{
#define LISTED(name) , zt::property<&Self::name, &Self::set_##name>()
#define LEVEL(Class, Super, FIELDS)                                                                \
    class Class : public Super                                                                     \
    {                                                                                              \
        ZT_OBJECT(Class, Super)                                                                    \
        FIELDS(FIELD)                                                                              \
        static constexpr auto members()                                                            \
        {                                                                                          \
            return zt::members(zt::info("level", #Class) FIELDS(LISTED));                          \
        }                                                                                          \
    };                                                                                             \
    ZT_CLASS(Class)

LEVEL(Item, ZTBase, ITEM_FIELDS)
LEVEL(Control, Item, CONTROL_FIELDS)
LEVEL(TextField, Control, TEXT_FIELDS)

void byName(benchmark::State& state)
{
    TextField field;
    int value = 0;
    measure(state, [&] {
        for (const std::string& name : propertyNames) {
            field.setProperty(name, ++value);
            int got = field.property<int>(name);
            benchmark::DoNotOptimize(got);
        }
    });
}
BENCHMARK(byName)->Name("property_by_name/zintar");

/// Calls with each name, and a value that differs from the last.
template <class Set>
void setEach(benchmark::State& state, Set set)
{
    TextField field;
    int value = 0;
    measure(state, [&] {
        for (const std::string& name : propertyNames)
            set(field, name, ++value);
    });
}

void setPlainly(benchmark::State& state)
{
    setEach(state, [](TextField& field, const std::string& name, int value) {
        bool isKnown = field.setProperty(name, value);
        benchmark::DoNotOptimize(isKnown);
    });
}
BENCHMARK(setPlainly)->Name("set_by_name/zintar");

void setChecked(benchmark::State& state)
{
    setEach(state, [](TextField& field, const std::string& name, int value) {
        ZTOutcome<> outcome = ztTrySet(&field, name, value);
        benchmark::DoNotOptimize(outcome);
    });
}
BENCHMARK(setChecked)->Name("set_checked/zintar");

void found(benchmark::State& state)
{
    TextField field;
    std::vector<const ZTMetaProperty*> properties;
    for (const std::string& name : propertyNames)
        properties.push_back(field.metaClass()->property(name));
    int value = 0;
    measure(state, [&] {
        for (const ZTMetaProperty* property : properties) {
            property->set(&field, ++value);
            int got = property->get<int>(&field);
            benchmark::DoNotOptimize(got);
        }
    });
}
BENCHMARK(found)->Name("property_found/zintar");

void dynamic(benchmark::State& state)
{
    TextField field;
    int value = 0;
    measure(state, [&] {
        field.setProperty("note", ++value, true);
        int got = field.property<int>("note");
        benchmark::DoNotOptimize(got);
    });
}
BENCHMARK(dynamic)->Name("dynamic_property/zintar");
} // namespace
