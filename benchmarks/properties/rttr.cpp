#include "measure.h"
#include "properties/work.h"

#include <rttr/registration>

#include <vector>

namespace
{
class Item
{
    ITEM_FIELDS(FIELD)
    RTTR_ENABLE()
public:
    virtual ~Item() = default;
};
class Control : public Item
{
    CONTROL_FIELDS(FIELD)
    RTTR_ENABLE(Item)
};
class TextField : public Control
{
    TEXT_FIELDS(FIELD)
    RTTR_ENABLE(Control)
};

#define LISTED(name) .property(#name, &Class::name, &Class::set_##name)

RTTR_REGISTRATION
{
    {
        using Class = Item;
        rttr::registration::class_<Class>("Item") ITEM_FIELDS(LISTED);
    }
    {
        using Class = Control;
        rttr::registration::class_<Class>("Control") CONTROL_FIELDS(LISTED);
    }
    {
        using Class = TextField;
        rttr::registration::class_<Class>("TextField") TEXT_FIELDS(LISTED);
    }
}

void byName(benchmark::State& state)
{
    TextField field;
    int value = 0;
    measure(state, [&] {
        for (const std::string& name : propertyNames) {
            const rttr::type type = field.get_type();
            type.get_property(name).set_value(field, ++value);
            int got = type.get_property(name).get_value(field).get_value<int>();
            benchmark::DoNotOptimize(got);
        }
    });
}
BENCHMARK(byName)->Name("property_by_name/rttr");

void found(benchmark::State& state)
{
    TextField field;
    std::vector<rttr::property> properties;
    for (const std::string& name : propertyNames)
        properties.push_back(field.get_type().get_property(name));
    int value = 0;
    measure(state, [&] {
        for (const rttr::property& property : properties) {
            property.set_value(field, ++value);
            int got = property.get_value(field).get_value<int>();
            benchmark::DoNotOptimize(got);
        }
    });
}
BENCHMARK(found)->Name("property_found/rttr");
} // namespace
