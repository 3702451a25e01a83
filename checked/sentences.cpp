#include "sentences.h"

#include "../types/metatypeprivate.h"
#include "nearestname.h"

#include <zintar/base.h>
#include <zintar/enumeration.h>
#include <zintar/shortname.h>
#include <zintar/typedvalue.h>

#include <algorithm>
#include <sstream>

namespace zt::detail
{
namespace
{
/// What is shown of a long text, and of a long list of names.
constexpr std::size_t mostLetters = 60;
constexpr std::size_t mostNames = 20;

/// The text without what would end its line, or go on for ever.
std::string onOneLine(std::string_view text)
{
    std::string line(text.substr(0, mostLetters));
    std::replace_if(
        line.begin(), line.end(),
        [](char letter) { return static_cast<unsigned char>(letter) < ' ' || letter == 127; }, '?');
    return text.size() > mostLetters ? line + "..." : line;
}

std::string quoted(std::string_view text) { return '"' + onOneLine(text) + '"'; }

std::string listed(const std::vector<std::string_view>& names)
{
    std::string text;
    for (std::size_t i = 0; i < std::min(names.size(), mostNames); ++i)
        text.append(i == 0 ? "" : ", ").append(names[i]);
    if (names.size() > mostNames)
        text += " and " + std::to_string(names.size() - mostNames) + " more";
    return text;
}

std::string shownObject(const ZTVariant& value)
{
    const auto* object = ztVariantValue<const ZTBase*>(value);
    if (!object)
        return "null";
    const std::string name = ztShortName(*object->metaClass());
    const bool isVowel =
        !name.empty() && std::string_view("AEIOUaeiou").find(name[0]) != std::string_view::npos;
    if (ZTMetaTypePrivate::of(value.type()).name.starts_with("const "))
        return "a const " + name;
    return (isVowel ? "an " : "a ") + name;
}

std::string printed(const ZTVariant& value)
{
    std::ostringstream out;
    out << std::boolalpha;
    if (value.data() && value.type().print(out, value.data()))
        return onOneLine(out.str());
    return "a value of type " + ztShortName(value.type());
}

/// "Thermostat::Mode (Off, Heat, Cool)"
std::string describedType(const ZTMetaType& type)
{
    const ZTMetaEnum* enumeration = ztEnumeration(type);
    if (!enumeration)
        return ztShortName(type);
    std::vector<std::string_view> names;
    for (unsigned int i = 0; i < enumeration->count(); ++i)
        names.push_back(enumeration->enumerator(i));
    return ztShortName(type) + " (" + listed(names) + ")";
}
} // namespace

std::string memberName(const ZTMetaClass& metaClass, std::string_view member)
{
    return ztShortName(metaClass).append(".").append(member);
}

std::string shownValue(const ZTVariant& value)
{
    if (!value)
        return "no value";
    if (const auto* text = ztVariantPointer<std::string>(value))
        return quoted(*text);
    if (value.type().metaClass())
        return shownObject(value);
    if (const ZTMetaEnum* enumeration = ztEnumeration(value.type())) {
        auto name = enumeration->nameOf(ztVariantValue<int>(value));
        if (name)
            return *name;
    }
    return printed(value);
}

std::string signatureText(const ZTMetaInvokable& invokable)
{
    std::string text = std::string(invokable.name()) + "(";
    for (unsigned int i = 0; i < invokable.parameterCount(); ++i) {
        text.append(i == 0 ? "" : ", ").append(ztShortName(invokable.parameterMetaType(i)));
        if (std::string_view name = invokable.parameterName(i); !name.empty())
            text.append(" ").append(name);
        if (const ZTVariant* value = invokable.defaultArgument(i))
            text.append(" = ").append(shownValue(*value));
    }
    return text + ")";
}

std::string noSuchMember(const ZTMetaClass& metaClass, std::string_view what, std::string_view name,
                         std::vector<std::string_view> known)
{
    std::sort(known.begin(), known.end());
    known.erase(std::unique(known.begin(), known.end()), known.end());
    std::string text = ztShortName(metaClass);
    text.append(" has no ").append(what).append(" ").append(quoted(name));
    if (std::string_view nearest = nearestName(name, known); !nearest.empty())
        text.append(" (did you mean \"").append(nearest).append("\"?)");
    return text + "; it has " + (known.empty() ? "none" : listed(known));
}

std::string foreignMember(std::string_view what, std::string_view name,
                          const ZTMetaClass& metaClass)
{
    std::string text = "the ";
    text.append(what).append(" ").append(quoted(name));
    return text + " is of another class than " + ztShortName(metaClass);
}

std::string misfit(const ZTVariant& value, std::string_view what, const ZTMetaType& type)
{
    std::string text = shownValue(value) + " does not fit ";
    if (!what.empty())
        text.append(what).append(" of ");
    return text + "type " + describedType(type);
}
} // namespace zt::detail
