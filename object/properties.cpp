#include "baseprivate.h"

#include <zintar/detail/lent.h>

using zt::detail::LentVariant;

ZTVariant ZTBase::property(std::string_view name) const
{
    if (const ZTMetaProperty* declared = declaredProperty(name))
        return declared->get(LentVariant(this));
    const ZTVariant* own = dynamicProperty(name);
    return own ? *own : ZTVariant();
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

std::vector<std::string_view> ZTBase::dynamicProperties() const
{
    return priv ? priv->dynamicPropertyNames() : std::vector<std::string_view>();
}

void ZTBasePrivate::setDynamicProperty(std::string_view name, const ZTVariant& value)
{
    zt::detail::DynamicProperty* property = findDynamicProperty(name);
    if (!property)
        property = &addDynamicProperty(name, value);
    else if (property->value != value) // may run code of the host, which may add properties
        property->value = value;
    else
        return;
    if (eventSlots) // somebody may listen
        object->dynamicPropertyChanged(property->name, value);
}

zt::detail::DynamicProperty& ZTBasePrivate::addDynamicProperty(std::string_view name,
                                                               const ZTVariant& value)
{
    if (!dynamicProperties)
        dynamicProperties = std::make_unique<zt::detail::DynamicProperties>();
    auto& [list, byName] = *dynamicProperties;
    zt::detail::DynamicProperty& property =
        *list.emplace_back(std::make_unique<zt::detail::DynamicProperty>(name, value));
    byName.add(property.name, &property);
    return property;
}

std::vector<std::string_view> ZTBasePrivate::dynamicPropertyNames() const
{
    std::vector<std::string_view> names;
    if (dynamicProperties)
        for (const auto& property : dynamicProperties->list)
            names.push_back(property->name);
    return names;
}
