#pragma once

#include <zintar/metaclass.h>
#include <zintar/metatypeof.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// @file
/// The library converts nothing on its own: which values may take another type's place is the
/// host's decision, registered here. A scene file gives text, numbers and truth values, and every
/// value has a text to be shown as.

namespace scene
{
/// Registers the converters between text, numbers and truth values. Call it once.
void registerConverters();

/// The value as one of that type, by a registered converter; nothing when it does not fit.
std::optional<ZTVariant> convert(const ZTVariant& value, const ZTMetaType& type);

/// The enumeration behind a type, once it has been registered; null for any other type.
const ZTMetaEnum* enumerationOf(const ZTMetaType& type);

/// The types of the registered enumerations, in the order of their names.
std::vector<const ZTMetaType*> enumerationTypes();

/// Notes which enumeration of a class describes a type.
/// @return null when the class declares no enumeration of that name
const ZTMetaEnum* describeEnumeration(const ZTMetaType& type, const ZTMetaClass& owner);

std::optional<int> valueOfEnumerator(const ZTMetaEnum& enumeration, std::string_view enumerator);
/// Empty when no enumerator has the value.
std::string_view enumeratorOfValue(const ZTMetaEnum& enumeration, int value);

template <class Enum>
inline const ZTMetaEnum* descriptorOf = nullptr;

template <class Enum>
bool enumFromText(const void* source, void* target)
{
    auto value = valueOfEnumerator(*descriptorOf<Enum>, *static_cast<const std::string*>(source));
    if (value)
        *static_cast<Enum*>(target) = static_cast<Enum>(*value);
    return value.has_value();
}

template <class Enum>
bool enumToText(const void* source, void* target)
{
    int value = static_cast<int>(*static_cast<const Enum*>(source));
    std::string_view name = enumeratorOfValue(*descriptorOf<Enum>, value);
    *static_cast<std::string*>(target) = name.empty() ? std::to_string(value) : name;
    return true;
}

/// Registers the converters between text and an enumeration that the class declares. The
/// enumerators are those of its descriptor.
template <class Owner, class Enum>
void registerEnumeration()
{
    const ZTMetaType& type = ztMetaType<Enum>();
    descriptorOf<Enum> = describeEnumeration(type, Owner::typeMetaClass());
    if (!descriptorOf<Enum>)
        return;
    const ZTMetaType& text = ztMetaType<std::string>();
    zt::detail::ztRegisterConverter(text, type, &enumFromText<Enum>);
    zt::detail::ztRegisterConverter(type, text, &enumToText<Enum>);
}
} // namespace scene
