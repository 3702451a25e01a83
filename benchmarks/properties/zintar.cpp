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
