#include "converters.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <unordered_map>

namespace scene
{
namespace
{
/// The whole text must be the number.
template <class Number>
std::optional<Number> numberFromText(const std::string& text)
{
    Number number{};
    const char* end = text.data() + text.size();
    auto [rest, error] = std::from_chars(text.data(), end, number);
    bool fits = error == std::errc() && rest == end && std::isfinite(static_cast<double>(number));
    return fits ? std::optional(number) : std::nullopt;
}

template <class Number>
std::string numberToText(Number number)
{
    char digits[32];
    return {digits, std::to_chars(digits, digits + sizeof digits, number).ptr};
}

std::optional<bool> boolFromText(const std::string& text)
{
    bool fits = text == "true" || text == "false";
    return fits ? std::optional(text == "true") : std::nullopt;
}

/// Only where nothing is lost.
std::optional<int> intFromDouble(double number)
{
    using Limits = std::numeric_limits<int>;
    bool fits = number >= Limits::min() && number <= Limits::max() && std::trunc(number) == number;
    return fits ? std::optional(static_cast<int>(number)) : std::nullopt;
}

template <class Number>
void registerNumber()
{
    ztRegisterConverter([](const std::string& text) { return numberFromText<Number>(text); });
    ztRegisterConverter([](Number number) { return numberToText(number); });
}

std::unordered_map<const ZTMetaType*, const ZTMetaEnum*>& enumerations()
{
    static std::unordered_map<const ZTMetaType*, const ZTMetaEnum*> known;
    return known;
}
} // namespace

void registerConverters()
{
    registerNumber<int>();
    registerNumber<double>();
    ztRegisterConverter([](long long number) { return numberToText(number); });
    ztRegisterConverter([](const std::string& text) { return boolFromText(text); });
    ztRegisterConverter([](bool value) { return std::string(value ? "true" : "false"); });
    ztRegisterConverter([](int whole) { return static_cast<double>(whole); });
    ztRegisterConverter([](long long whole) { return static_cast<double>(whole); });
    ztRegisterConverter([](double number) { return intFromDouble(number); });
}

std::optional<ZTVariant> convert(const ZTVariant& value, const ZTMetaType& type)
{
    // A parameter or a property that is a variant takes any value as it is.
    if (value.type() == type || type == ztMetaType<ZTVariant>())
        return value;
    ZTVariant converted(type, nullptr);
    if (!value.data() || !converted.data())
        return std::nullopt;
    if (!value.type().convert(value.data(), type, converted.data()))
        return std::nullopt;
    return converted;
}

const ZTMetaEnum* enumerationOf(const ZTMetaType& type)
{
    auto found = enumerations().find(&type);
    return found == enumerations().end() ? nullptr : found->second;
}

std::vector<const ZTMetaType*> enumerationTypes()
{
    std::vector<const ZTMetaType*> types;
    for (const auto& [type, enumeration] : enumerations())
        types.push_back(type);
    std::sort(types.begin(), types.end(),
              [](const auto* a, const auto* b) { return a->name() < b->name(); });
    return types;
}

const ZTMetaEnum* describeEnumeration(const ZTMetaType& type, const ZTMetaClass& owner)
{
    // The type is called "enum Thermostat::Mode" where the class calls its enumeration "Mode".
    std::string typeName = type.name();
    std::string_view name = typeName;
    name.remove_prefix(name.find_last_of(": ") + 1);
    for (unsigned int i = owner.enumCount(); i-- > 0;)
        if (owner.metaEnum(i)->name() == name)
            return enumerations()[&type] = owner.metaEnum(i);
    return nullptr;
}

std::optional<int> valueOfEnumerator(const ZTMetaEnum& enumeration, std::string_view enumerator)
{
    for (unsigned int i = 0; i < enumeration.count(); ++i)
        if (enumeration.enumerator(i) == enumerator)
            return enumeration.value(i);
    return std::nullopt;
}

std::string_view enumeratorOfValue(const ZTMetaEnum& enumeration, int value)
{
    for (unsigned int i = 0; i < enumeration.count(); ++i)
        if (enumeration.value(i) == value)
            return enumeration.enumerator(i);
    return {};
}
} // namespace scene
