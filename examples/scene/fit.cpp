#include "fit.h"

#include "converters.h"
#include "members.h"

#include <algorithm>

namespace scene
{
namespace
{
/// What was expected of a value that does not fit: "Thermostat::Mode (Off, Heat, Cool)".
std::string expectation(const ZTMetaType& type)
{
    std::string text = nameOf(type);
    if (const ZTMetaEnum* enumeration = enumerationOf(type)) {
        std::vector<std::string> names;
        for (unsigned int i = 0; i < enumeration->count(); ++i)
            names.emplace_back(enumeration->enumerator(i));
        text += " (" + listed(names) + ")";
    }
    return text;
}
} // namespace

Mistake misfit(const Node& value, const std::string& where, const ZTMetaType& type)
{
    return {value.place(),
            value.written() + " does not fit " + where + " of type " + expectation(type)};
}

ZTVariant fit(const Node& value, const std::string& where, const ZTMetaType& type)
{
    auto fitting = convert(value.value(), type);
    if (!fitting)
        throw misfit(value, where, type);
    return *std::move(fitting);
}

const std::vector<const ZTMetaType*>& valueTypes()
{
    static const std::vector<const ZTMetaType*> types = [] {
        std::vector<const ZTMetaType*> all{&ztMetaType<bool>(), &ztMetaType<int>(),
                                           &ztMetaType<double>(), &ztMetaType<std::string>()};
        for (const ZTMetaType* enumeration : enumerationTypes())
            all.push_back(enumeration);
        return all;
    }();
    return types;
}

bool isValueType(const ZTMetaType& type)
{
    const auto& types = valueTypes();
    return std::find(types.begin(), types.end(), &type) != types.end();
}

const ZTMetaType& readType(const Node& node)
{
    std::string name = node.name();
    std::vector<std::string> known;
    for (const ZTMetaType* type : valueTypes()) {
        if (nameOf(*type) == name)
            return *type;
        known.push_back(nameOf(*type));
    }
    throw Mistake(node.place(), "unknown type \"" + name + "\"; known are " + listed(known));
}
} // namespace scene
