#include "factories.h"

#include "converters.h"
#include "hostclasses.h"
#include "members.h"

namespace scene
{
namespace
{
template <class C>
Factory makes()
{
    return {&C::typeMetaClass, []() -> std::unique_ptr<ZTBase> { return std::make_unique<C>(); }};
}
} // namespace

// The only file that names the classes of the host: a new class is one line here.
const std::vector<Factory>& factories()
{
    static const std::vector<Factory> table = {
        makes<Room>(),   makes<Bed>(),        makes<Crop>(),   makes<Device>(),
        makes<Heater>(), makes<Thermostat>(), makes<Sensor>(), makes<MoistureSensor>(),
        makes<Journal>()};
    return table;
}

void registerHostEnumerations()
{
    registerEnumeration<Room, Room::Purpose>();
    registerEnumeration<Crop, Crop::Stage>();
    registerEnumeration<Thermostat, Thermostat::Mode>();
}

const Factory* factoryOf(std::string_view className)
{
    for (const Factory& factory : factories())
        if (nameOf(factory.metaClass()) == className)
            return &factory;
    return nullptr;
}
} // namespace scene
