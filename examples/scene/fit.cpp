#include "fit.h"

#include "members.h"
#include "mistake.h"

#include <zintar/checked.h>
#include <zintar/classes.h>
#include <zintar/enumeration.h>
#include <zintar/kind.h>
#include <zintar/typedvalue.h>

#include <algorithm>
#include <cmath>

namespace scene
{
namespace
{
/// Whether a file can mean that type by the value, which a converter makes one of it.
bool isMeant(const ZTVariant& value, const ZTMetaType& type)
{
    const ZTKind from = ztKind(value.type());
    switch (const ZTKind to = ztKind(type)) {
    case ZTKind::Boolean:
    case ZTKind::Enumeration:
    case ZTKind::Flags:
        return from == to.value || from == ZTKind::Text;
    case ZTKind::Integer:
        return from != ZTKind::Boolean;
    case ZTKind::Floating:
        return from != ZTKind::Boolean && std::isfinite(ztVariantValue<double>(value));
    default:
        return true;
    }
}

/// "Thermostat::Mode (Off, Heat, Cool)"
std::string expectation(const ZTMetaType& type)
{
    std::vector<std::string> names;
    if (const ZTMetaEnum* enumeration = ztEnumeration(type))
        for (unsigned int i = 0; i < enumeration->count(); ++i)
            names.emplace_back(enumeration->enumerator(i));
    return nameOf(type) + (names.empty() ? "" : " (" + listed(names) + ")");
}
} // namespace

ZTVariant fit(const Node& value, const std::string& where, const ZTMetaType& type)
{
    auto fitting = ztTryConvert(value.value(), type, where);
    if (!fitting)
        value.fail(fitting.error());
    if (!isMeant(value.value(), type))
        value.fail(value.written() + " does not fit " + where + " of type " + expectation(type));
    return *std::move(fitting);
}

std::string textOf(const ZTVariant& value)
{
    auto text = ztTryConvert(value, ztMetaType<std::string>());
    return text ? ztVariantValue<std::string>(*text) : std::string();
}

std::vector<const ZTMetaType*> valueTypes()
{
    static const Json written = Json::parse(R"({"values": [true, 1, 0.5, "text"]})");
    std::vector<const ZTMetaType*> types;
    for (const Node& value : Node(written).elements("values"))
        types.push_back(&value.value().type());
    // Enumerators are written as text.
    const auto plain = static_cast<std::ptrdiff_t>(types.size());
    for (const ZTMetaClass* known : ztClasses())
        for (unsigned int i = known->enumOffset(); i < known->enumCount(); ++i)
            types.push_back(&known->metaEnum(i)->metaType());
    std::sort(types.begin() + plain, types.end(),
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
    node.fail("unknown type \"" + name + "\"; known are " + listed(known));
}
} // namespace scene
