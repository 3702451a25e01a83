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

bool ZTBase::setProperty(std::string_view name, const ZTVariant& value, bool createDynamic)
{
    if (const ZTMetaProperty* declared = declaredProperty(name)) {
        declared->set(LentVariant(this), value);
        return true;
    }
    if (!createDynamic || !priv)
        return false;
    priv->setDynamicProperty(name, value);
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
    return priv ? priv->dynamicPropertyNames() : std::vector<std::string_view>();
}

namespace zt::detail
{
void DynamicProperty::leaveToReaders() noexcept
{
    if (!readings)
        return;
    // The outermost goes last.
    ZTValueReading* outermost = readings;
    while (outermost->m_below)
        outermost = outermost->m_below;
    outermost->m_kept = std::move(value);
    for (ZTValueReading* one = readings; one; one = one->m_below) {
        one->m_property = nullptr;
        one->m_value = &outermost->m_kept;
    }
    readings = nullptr;
}
} // namespace zt::detail

namespace
{
bool isDifferent(zt::detail::DynamicProperty& property, const ZTVariant& value)
{
    ZTValueReading reading(property);
    return reading.value() != value;
}
} // namespace

void ZTBasePrivate::setDynamicProperty(std::string_view name, const ZTVariant& value)
{
    zt::detail::DynamicProperty* property = findDynamicProperty(name);
    // Where nobody listens, no code of the host comes between one built-in value and another.
    if (property && !eventSlots && ZTMetaTypePrivate::of(value.type()).isBuiltIn &&
        (!(property->value != value) || zt::detail::assignInPlace(property->value, value)))
        return;
    changeDynamicProperty(property, name, value);
}

void ZTBasePrivate::changeDynamicProperty(zt::detail::DynamicProperty* property,
                                          std::string_view name, const ZTVariant& value)
{
    using Changed =
        zt::detail::TypedEvent<&ZTBase::dynamicPropertyChanged,
                               zt::detail::Parameters<const std::string&, const ZTVariant&>>;
    ZTVariant old; // the last to go
    ZTLifeWatch self(this);
    if (property && (!isDifferent(*property, value) || !self))
        return;
    if (!eventSlots && property && zt::detail::assignInPlace(property->value, value))
        return;
    const std::string key(name); // the copies below may end what the name is in
    std::optional<ZTVariant> told;
    if (eventSlots) // somebody may listen
        told.emplace(value);
    ZTVariant copy(value);
    if (!self)
        return;
    property = findDynamicProperty(key);
    if (!property) {
        addDynamicProperty(key, std::move(copy));
    } else {
        property->leaveToReaders();
        old = std::exchange(property->value, std::move(copy));
    }
    if (told) {
        void* values[] = {const_cast<std::string*>(&key), &*told};
        zt::detail::EventRaiser::raise(self, Changed::declared(), values);
    }
}

zt::detail::DynamicProperty& ZTBasePrivate::addDynamicProperty(std::string_view name,
                                                               ZTVariant&& value)
{
    auto added = std::make_unique<zt::detail::DynamicProperty>(name, std::move(value));
    if (!dynamicProperties)
        dynamicProperties = std::make_unique<zt::detail::DynamicProperties>();
    auto& [list, byName] = *dynamicProperties;
    if (list.size() == list.capacity())
        list.reserve(2 * list.capacity() + 1);
    byName.add(added->name, added.get());
    return *list.emplace_back(std::move(added));
}

std::vector<std::string_view> ZTBasePrivate::dynamicPropertyNames() const
{
    std::vector<std::string_view> names;
    if (dynamicProperties)
        for (const auto& property : dynamicProperties->list)
            names.push_back(property->name);
    return names;
}
