#include "factories.h"

#include "converters.h"
#include "declaredobject.h"
#include "hostclasses.h"

#include <type_traits>

namespace scene
{
namespace
{
template <class C>
concept Restorable = requires(C& object, std::string_view property, const ZTVariant& value)
{
    object.restore(property, value);
};

template <class C>
Factory makes()
{
    Factory factory{&C::typeMetaClass(),
                    []() -> std::unique_ptr<ZTBase> { return std::make_unique<C>(); }, nullptr,
                    nullptr};
    if constexpr (std::is_base_of_v<ZTDynamicBase, C>)
        factory.makeAs = [](const ZTMetaClass& declared) -> std::unique_ptr<ZTBase> {
            return std::make_unique<DeclaredObject<C>>(declared);
        };
    if constexpr (Restorable<C>)
        factory.restore = [](ZTBase& object, std::string_view property, const ZTVariant& value) {
            static_cast<C&>(object).restore(property, value);
        };
    return factory;
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

const Factory& dynamicRoot()
{
    static const Factory root = makes<ZTDynamicBase>();
    return root;
}

void registerHostEnumerations()
{
    registerEnumeration<Room, Room::Purpose>();
    registerEnumeration<Crop, Crop::Stage>();
    registerEnumeration<Thermostat, Thermostat::Mode>();
}
} // namespace scene
