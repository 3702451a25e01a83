#include "fit.h"

#include "members.h"
#include "mistake.h"

#include <zintar/checked.h>
#include <zintar/classes.h>

#include <algorithm>

namespace scene
{
ZTVariant fit(const Node& value, const std::string& where, const ZTMetaType& type)
{
    auto fitting = ztTryConvert(value.value(), type, where);
    if (!fitting)
        throw Mistake(value.place(), fitting.error());
    return *std::move(fitting);
}

std::string textOf(const ZTVariant& value)
{
    auto text = ztTryConvert(value, ztMetaType<std::string>());
    return text ? ztVariantValue<std::string>(*text) : std::string();
}

std::vector<const ZTMetaType*> valueTypes()
{
    // What JSON writes, and below it the enumerations of all classes, which it writes as text.
    std::vector<const ZTMetaType*> types{&ztMetaType<bool>(), &ztMetaType<int>(),
                                         &ztMetaType<double>(), &ztMetaType<std::string>()};
    for (const ZTMetaClass* known : ztClasses())
        for (unsigned int i = known->enumOffset(); i < known->enumCount(); ++i)
            types.push_back(&known->metaEnum(i)->metaType());
    std::sort(types.begin() + 4, types.end(),
              [](const auto* a, const auto* b) { return a->name() < b->name(); });
    return types;
}

bool isValueType(const ZTMetaType& type)
{
    const auto types = valueTypes();
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
