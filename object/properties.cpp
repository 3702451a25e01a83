#include "baseprivate.h"

#include <zintar/detail/borrowedpointer.h>

ZTVariant ZTBase::property(std::string_view name) const
{
    if (!priv)
        return {};
    if (const ZTMetaProperty* declared = metaClass()->property(name))
        return declared->get(zt::detail::BorrowedPointer(this));
    return priv->dynamicProperty(name);
}

bool ZTBase::setProperty(std::string_view name, const ZTVariant& value, bool createDynamic)
{
    if (!priv)
        return false;
    if (const ZTMetaProperty* declared = metaClass()->property(name)) {
        declared->set(zt::detail::BorrowedPointer(this), value);
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
    if (!dynamicProperties)
        return {};
    auto found = dynamicProperties->find(name);
    return found == dynamicProperties->end() ? ZTVariant() : found->second;
}

void ZTBasePrivate::setDynamicProperty(std::string_view name, const ZTVariant& value)
{
    if (!dynamicProperties)
        dynamicProperties = std::make_unique<zt::detail::DynamicProperties>();
    auto found = dynamicProperties->find(name);
    if (found == dynamicProperties->end())
        found = dynamicProperties->emplace(std::string(name), ZTVariant()).first;
    else if (!(found->second != value))
        return;
    auto& [key, stored] = *found;
    stored = value;
    object->dynamicPropertyChanged(key, value);
}

std::vector<std::string_view> ZTBasePrivate::dynamicPropertyNames() const
{
    std::vector<std::string_view> names;
    if (dynamicProperties)
        for (const auto& property : *dynamicProperties)
            names.push_back(property.first);
    return names;
}
