#include "baseprivate.h"

#include <zintar/detail/lent.h>

ZTVariant ZTBase::property(std::string_view name) const
{
    if (!priv)
        return {};
    const ZTBase* self = this;
    if (const ZTMetaProperty* declared = metaClass()->property(name))
        return declared->get(zt::detail::LentVariant(self));
    return priv->dynamicProperty(name);
}

bool ZTBase::setProperty(std::string_view name, const ZTVariant& value, bool createDynamic)
{
    if (!priv)
        return false;
    ZTBase* self = this;
    if (const ZTMetaProperty* declared = metaClass()->property(name)) {
        declared->set(zt::detail::LentVariant(self), value);
        return true;
    }
    if (createDynamic)
        priv->setDynamicProperty(name, value);
    return createDynamic;
}

std::vector<std::string_view> ZTBase::dynamicProperties() const
{
    return priv ? priv->dynamicPropertyNames() : std::vector<std::string_view>();
}

ZTVariant ZTBasePrivate::dynamicProperty(std::string_view name) const
{
    const auto* found = dynamicProperties ? dynamicProperties->byName.find(name) : nullptr;
    return found ? (*found)->value : ZTVariant();
}

void ZTBasePrivate::setDynamicProperty(std::string_view name, const ZTVariant& value)
{
    if (!dynamicProperties)
        dynamicProperties = std::make_unique<zt::detail::DynamicProperties>();
    auto& [list, byName] = *dynamicProperties;
    zt::detail::DynamicProperty* property = nullptr;
    if (const auto* found = byName.find(name)) {
        property = *found;
        if (!(property->value != value)) // may run code of the host, which may add properties
            return;
        property->value = value;
    } else {
        list.push_back(std::make_unique<zt::detail::DynamicProperty>(name, value));
        property = list.back().get();
        byName.add(property->name, property);
    }
    object->dynamicPropertyChanged(property->name, value);
}

std::vector<std::string_view> ZTBasePrivate::dynamicPropertyNames() const
{
    std::vector<std::string_view> names;
    if (dynamicProperties)
        for (const auto& property : dynamicProperties->list)
            names.push_back(property->name);
    return names;
}
