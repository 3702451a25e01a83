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
/// Registers a function as the converter between the types of its parameters.
template <auto Function, class From, class To>
void registerTyped(bool (*)(const From&, To&))
{
    zt::detail::ztRegisterConverter(
        ztMetaType<From>(), ztMetaType<To>(), [](const void* source, void* target) {
            return Function(*static_cast<const From*>(source), *static_cast<To*>(target));
        });
}

/// The whole text must be the number.
template <class Number>
bool numberFromText(const std::string& text, Number& number)
{
    Number read{};
    const char* end = text.data() + text.size();
    auto [rest, error] = std::from_chars(text.data(), end, read);
    bool fits = error == std::errc() && rest == end && std::isfinite(static_cast<double>(read));
    if (fits)
        number = read;
    return fits;
}

template <class Number>
bool numberToText(const Number& number, std::string& text)
{
    char digits[32];
    text.assign(digits, std::to_chars(digits, digits + sizeof digits, number).ptr);
    return true;
}

bool boolFromText(const std::string& text, bool& value)
{
    value = text == "true";
    return value || text == "false";
}

bool boolToText(const bool& value, std::string& text)
{
    text = value ? "true" : "false";
    return true;
}

template <class Whole>
bool doubleFromWhole(const Whole& whole, double& number)
{
    number = static_cast<double>(whole);
    return true;
}

/// Only where nothing is lost.
bool intFromDouble(const double& number, int& whole)
{
    using Limits = std::numeric_limits<int>;
    bool fits = number >= Limits::min() && number <= Limits::max() && std::trunc(number) == number;
    if (fits)
        whole = static_cast<int>(number);
    return fits;
}

template <auto... Functions>
void registerAll()
{
    (registerTyped<Functions>(Functions), ...);
}

std::unordered_map<const ZTMetaType*, const ZTMetaEnum*>& enumerations()
{
    static std::unordered_map<const ZTMetaType*, const ZTMetaEnum*> known;
    return known;
}
} // namespace

void registerConverters()
{
    registerAll<&numberFromText<int>, &numberFromText<double>, &boolFromText>();
    registerAll<&numberToText<int>, &numberToText<long long>, &numberToText<double>, &boolToText>();
    registerAll<&doubleFromWhole<int>, &doubleFromWhole<long long>, &intFromDouble>();
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
