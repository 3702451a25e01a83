#include "../types/metatypeprivate.h"
#include "baseprivate.h"

#include <zintar/detail/lent.h>

#include <optional>
#include <string>
#include <utility>

using zt::detail::LentVariant;

ZTVariant ZTBase::property(std::string_view name) const
{
    if (const ZTMetaProperty* declared = declaredProperty(name))
        return declared->get(LentVariant(this));
    return copyOfDynamicProperty(name);
}

namespace
{
bool isDifferent(ZTDynamicProperty& property, const ZTVariant& value)
{
    ZTValueReading reading(property);
    return reading.value() != value;
}

void tellChange(const ZTLifeWatch& self, const std::string& name, ZTVariant& value)
{
    using Changed =
        zt::detail::TypedEvent<&ZTBase::dynamicPropertyChanged,
                               zt::detail::Parameters<const std::string&, const ZTVariant&>>;
    void* values[] = {const_cast<std::string*>(&name), &value};
    zt::detail::EventRaiser::raise(self, Changed::declared(), values);
}

/// @param property  the one with that name, or null
void changeDynamicProperty(ZTBasePrivate& record, ZTDynamicProperty* property,
                           std::string_view name, const ZTVariant& value)
{
    ZTVariant old;               // the last to go
    const std::string key(name); // code of the host below may end what the name is in
    ZTLifeWatch self(&record);
    if (property && (!isDifferent(*property, value) || !self))
        return;
    property = record.findDynamicProperty(key);               // which it may have removed as well
    const bool isHeard = !record.events.eventSlots.areNone(); // or somebody may listen, at least
    if (!isHeard && property && zt::detail::assignInPlace(property->value, value))
        return;
    std::optional<ZTVariant> told;
    if (isHeard)
        told.emplace(value);
    ZTVariant copy(value);
    if (!self)
        return;
    property = record.findDynamicProperty(key);
    if (!property) {
        record.extras.needParts().dynamicProperties.add(key, std::move(copy));
    } else {
        property->leaveToReaders();
        old = std::exchange(property->value, std::move(copy));
    }
    if (told)
        tellChange(self, key, *told);
}

void setDynamicProperty(ZTBasePrivate& record, std::string_view name, const ZTVariant& value)
{
    ZTDynamicProperty* property = record.findDynamicProperty(name);
    // Where nobody listens, no code of the host comes between one built-in value and another.
    if (property && record.events.eventSlots.areNone() &&
        ZTMetaTypePrivate::of(value.type()).isBuiltIn &&
        (!(property->value != value) || zt::detail::assignInPlace(property->value, value)))
        return;
    changeDynamicProperty(record, property, name, value);
}
} // namespace

bool ZTBase::setProperty(std::string_view name, const ZTVariant& value, bool createDynamic)
{
    if (const ZTMetaProperty* declared = declaredProperty(name)) {
        declared->set(LentVariant(this), value);
        return true;
    }
    if (!createDynamic || !priv)
        return false;
    setDynamicProperty(*priv, name, value);
    return true;
}

const ZTMetaProperty* ZTBase::declaredProperty(std::string_view name) const
{
    return priv ? metaClass()->property(name) : nullptr;
}

const ZTVariant* ZTBase::dynamicProperty(std::string_view name) const
{
    const auto* found = priv ? priv->findDynamicProperty(name) : nullptr;
    return found ? &found->value : nullptr;
}

ZTVariant ZTBase::copyOfDynamicProperty(std::string_view name) const
{
    auto* found = priv ? priv->findDynamicProperty(name) : nullptr;
    if (!found)
        return {};
    ZTValueReading reading(*found);
    return reading.value();
}

std::vector<std::string_view> ZTBase::dynamicProperties() const
{
    const ZTExtras::Parts* parts = priv ? priv->extras.parts() : nullptr;
    return parts ? parts->dynamicProperties.names() : std::vector<std::string_view>();
}

bool ZTBase::removeDynamicProperty(std::string_view name)
{
    ZTDynamicProperty* property = priv ? priv->findDynamicProperty(name) : nullptr;
    if (!property)
        return false;
    // The value is the last to go, with the name that subscribers are told.
    const auto removed = priv->extras.parts()->dynamicProperties.remove(*property);
    ZTVariant none;
    if (!priv->events.eventSlots.areNone())
        tellChange(ZTLifeWatch(priv), removed->name, none);
    return true;
}
