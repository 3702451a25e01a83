#pragma once

#include <zintar/converter.h>
#include <zintar/metaclass.h>

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

/// Registers the converters between text and an enumeration that the class declares. The
/// enumerators are those of its descriptor.
template <class Owner, class Enum>
void registerEnumeration()
{
    descriptorOf<Enum> = describeEnumeration(ztMetaType<Enum>(), Owner::typeMetaClass());
    if (!descriptorOf<Enum>)
        return;
    ztRegisterConverter([](const std::string& text) -> std::optional<Enum> {
        auto value = valueOfEnumerator(*descriptorOf<Enum>, text);
        return value ? std::optional(static_cast<Enum>(*value)) : std::nullopt;
    });
    ztRegisterConverter([](Enum enumerator) {
        int value = static_cast<int>(enumerator);
        std::string_view name = enumeratorOfValue(*descriptorOf<Enum>, value);
        return name.empty() ? std::to_string(value) : std::string(name);
    });
}
} // namespace scene
