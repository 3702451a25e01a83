#pragma once

#include <zintar/export.h>
#include <zintar/metaclass.h>

#include <string>

/// @file
/// The enumeration that belongs to a type: of a property, a parameter or a result.
///
///     if (const ZTMetaEnum* modes = ztEnumeration(property.metaType()))
///         for (unsigned int i = 0; i < modes->count(); ++i)
///             box.addEntry(modes->enumerator(i));
///
/// Values of an enumeration that a class declares convert to and from its names, as `std::string`,
/// and its integers, as `int`, wherever a value is taken out of a variant:
///
///     thermostat.setProperty("mode", "Heat");
///     auto mode = thermostat.property<std::string>("mode");
///
/// A text that is no name and a number that is no value are refused. A converter that the host
/// registered for the pair stays, before or after.

/// The enumeration of the first class that was loaded with it, which a class lists by
/// `zt::enumeration` or `zt::flags`; where no class does, the one that `ZT_ENUM` or `ZT_FLAGS`
/// declares; null for any other type. It stays good until the process ends.
/// Threads: any call on any thread.
[[nodiscard]] ZT_EXPORT const ZTMetaEnum* ztEnumeration(const ZTMetaType& type);

namespace zt::detail
{
// What the converters of an enumeration ask; each answers whether there is such a one, and leaves
// the result alone otherwise.
[[nodiscard]] ZT_EXPORT bool isEnumerator(const ZTMetaType& type, int value);
[[nodiscard]] ZT_EXPORT bool enumeratorToText(const ZTMetaType& type, int value, std::string& text);
[[nodiscard]] ZT_EXPORT bool textToEnumerator(const ZTMetaType& type, const std::string& text,
                                              int& value);
} // namespace zt::detail
