#include "../object/fit.h"
#include "sentences.h"

#include <zintar/checked.h>
#include <zintar/detail/lifewatch.h>

#include <algorithm>

namespace
{
using zt::detail::Fit;
using zt::detail::LentVariant;

using zt::detail::noObject;
constexpr const char* objectEnded = "the object ended while the value was converted";

bool hasDynamicProperty(const ZTBase& object, std::string_view name)
{
    const std::vector<std::string_view> names = object.dynamicProperties();
    return std::find(names.begin(), names.end(), name) != names.end();
}

std::vector<std::string_view> propertyNames(const ZTMetaClass& metaClass)
{
    std::vector<std::string_view> names;
    for (unsigned int i = 0; i < metaClass.propertyCount(); ++i)
        names.push_back(metaClass.property(i)->name());
    return names;
}

std::string noSuchProperty(const ZTMetaClass& metaClass, const ZTBase* object,
                           std::string_view name)
{
    std::vector<std::string_view> known = propertyNames(metaClass);
    if (object)
        for (std::string_view dynamic : object->dynamicProperties())
            known.push_back(dynamic);
    return zt::detail::noSuchMember(metaClass, "property", name, std::move(known));
}

bool isOf(const ZTMetaProperty& property, const ZTMetaClass& metaClass)
{
    if (metaClass.property(property.name()) == &property)
        return true;
    for (unsigned int i = 0; i < metaClass.propertyCount(); ++i)
        if (metaClass.property(i) == &property)
            return true;
    return false;
}

/// Why the property does not take the value; empty if it does.
std::string refusal(const ZTMetaClass& metaClass, const ZTMetaProperty& property,
                    const ZTVariant& value, Fit& fit, ZTVariant& converted)
{
    if (!property.canSet())
        return zt::detail::memberName(metaClass, property.name()) + " can only be read";
    fit = zt::detail::fitOf(value, property.metaType(), converted);
    return fit == Fit::None
               ? zt::detail::misfit(value, zt::detail::memberName(metaClass, property.name()),
                                    property.metaType())
               : std::string();
}

ZTOutcome<> setOtherwise(ZTBase& object, const ZTMetaProperty& property, const ZTVariant& value)
{
    const ZTLifeWatch watch(&object);
    Fit fit = Fit::None;
    ZTVariant converted;
    std::string why = refusal(*object.metaClass(), property, value, fit, converted);
    if (!why.empty())
        return ZTOutcome<>::failure(std::move(why));
    if (!watch.isStill(&object))
        return ZTOutcome<>::failure(objectEnded);
    property.set(LentVariant(&object), zt::detail::fitting(fit, value, converted));
    return {};
}

/// @param property  one of the object's class
ZTOutcome<> setFound(ZTBase& object, const ZTMetaProperty& property, const ZTVariant& value)
{
    if (&property.metaType() != &value.type() || !property.canSet())
        return setOtherwise(object, property, value);
    property.set(LentVariant(&object), value);
    return {};
}

ZTOutcome<ZTVariant> getFound(const ZTBase& object, const ZTMetaProperty& property)
{
    if (property.canGet())
        return property.get(LentVariant(&object));
    return ZTOutcome<ZTVariant>::failure(
        zt::detail::memberName(*object.metaClass(), property.name()) + " can only be set");
}
} // namespace

ZTOutcome<> ztTrySet(ZTBase* object, std::string_view name, const ZTVariant& value)
{
    if (!object)
        return ZTOutcome<>::failure(noObject);
    const ZTMetaClass& metaClass = *object->metaClass();
    if (const ZTMetaProperty* property = metaClass.property(name))
        return setFound(*object, *property, value);
    if (!hasDynamicProperty(*object, name))
        return ZTOutcome<>::failure(noSuchProperty(metaClass, object, name));
    object->setProperty(name, value, true);
    return {};
}

ZTOutcome<> ztTrySet(ZTBase* object, const ZTMetaProperty& property, const ZTVariant& value)
{
    if (!object)
        return ZTOutcome<>::failure(noObject);
    if (!isOf(property, *object->metaClass()))
        return ZTOutcome<>::failure(
            zt::detail::foreignMember("property", property.name(), *object->metaClass()));
    return setFound(*object, property, value);
}

ZTOutcome<ZTVariant> ztTryGet(const ZTBase* object, std::string_view name)
{
    using Outcome = ZTOutcome<ZTVariant>;
    if (!object)
        return Outcome::failure(noObject);
    const ZTMetaClass& metaClass = *object->metaClass();
    if (const ZTMetaProperty* property = metaClass.property(name))
        return getFound(*object, *property);
    if (!hasDynamicProperty(*object, name))
        return Outcome::failure(noSuchProperty(metaClass, object, name));
    return object->property(name);
}

ZTOutcome<ZTVariant> ztTryGet(const ZTBase* object, const ZTMetaProperty& property)
{
    if (!object)
        return ZTOutcome<ZTVariant>::failure(noObject);
    if (!isOf(property, *object->metaClass()))
        return ZTOutcome<ZTVariant>::failure(
            zt::detail::foreignMember("property", property.name(), *object->metaClass()));
    return getFound(*object, property);
}

ZTOutcome<ZTVariant> ztTryConvert(const ZTVariant& value, const ZTMetaType& type,
                                  std::string_view what)
{
    ZTVariant converted;
    const Fit fit = zt::detail::fitOf(value, type, converted);
    if (fit == Fit::None)
        return ZTOutcome<ZTVariant>::failure(zt::detail::misfit(value, what, type));
    return zt::detail::fitting(fit, value, converted);
}

ZTOutcome<const ZTMetaProperty*> ztTryFindProperty(const ZTMetaClass& metaClass,
                                                   std::string_view name)
{
    if (const ZTMetaProperty* property = metaClass.property(name))
        return property;
    return ZTOutcome<const ZTMetaProperty*>::failure(noSuchProperty(metaClass, nullptr, name));
}

ZTOutcome<ZTVariant> ztTryFit(const ZTVariant& value, const ZTMetaClass& metaClass,
                              const ZTMetaProperty& property)
{
    Fit fit = Fit::None;
    ZTVariant converted;
    std::string why = refusal(metaClass, property, value, fit, converted);
    if (!why.empty())
        return ZTOutcome<ZTVariant>::failure(std::move(why));
    return zt::detail::fitting(fit, value, converted);
}
