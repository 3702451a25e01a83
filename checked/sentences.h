#pragma once

#include <zintar/metaclass.h>

#include <string>
#include <string_view>
#include <vector>

/// @file
/// The lines that say what went wrong, for somebody who sees a class, a member and a value, and no
/// code.

namespace zt::detail
{
/// "Lamp.brightness"
std::string memberName(const ZTMetaClass& metaClass, std::string_view member);
/// "boost(int minutes, double level = 0.5)"
std::string signatureText(const ZTMetaInvokable& invokable);
/// A value as somebody would write it: "warm" in quotes, 21.5, a Lamp.
std::string shownValue(const ZTVariant& value);

/// Lamp has no property "brigthness" (did you mean "brightness"?); it has brightness, on
/// @param what   "property", "method"
/// @param known  may have a name more than once
std::string noSuchMember(const ZTMetaClass& metaClass, std::string_view what, std::string_view name,
                         std::vector<std::string_view> known);

/// For a property or a method that the class does not have.
/// @param what  "property", "method"
std::string foreignMember(std::string_view what, std::string_view name,
                          const ZTMetaClass& metaClass);

inline constexpr const char* noObject = "there is no object";

/// "warm" does not fit Lamp.brightness of type double
/// @param what  what the value was for; empty where nobody knows
std::string misfit(const ZTVariant& value, std::string_view what, const ZTMetaType& type);
} // namespace zt::detail
