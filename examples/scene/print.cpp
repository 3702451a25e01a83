#include "print.h"

#include "members.h"

#include <zintar/checked.h>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <ostream>
#include <sstream>

namespace scene
{
std::string shown(const ZTVariant& value, const Names& names)
{
    if (!value.isValid())
        return "nothing";
    if (const auto* text = ztVariantPointer<std::string>(value))
        return nlohmann::json(*text).dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
    if (value.type().metaClass())
        return names.of(ztVariantValue<const ZTBase*>(value));
    if (auto text = ztTryConvert(value, ztMetaType<std::string>()))
        return ztVariantValue<std::string>(*text);
    std::ostringstream printed;
    if (!value.type().print(printed, value.data()))
        printed << "a " << nameOf(value.type());
    return printed.str();
}

std::string shown(const ZTArgumentArray& arguments, unsigned int count, const Names& names)
{
    std::vector<std::string> texts;
    for (unsigned int i = 0; i < std::min(count, ZTMetaInvokable::MaxParamCount); ++i)
        texts.push_back(shown(arguments[i], names));
    return "(" + listed(texts) + ")";
}

namespace
{
std::string shownProperties(const ZTBase& object, const std::vector<std::string_view>& keys,
                            const Names& names)
{
    std::vector<std::string> texts;
    texts.reserve(keys.size());
    for (std::string_view key : keys)
        texts.push_back(std::string(key) + "=" + shown(object.property(key), names));
    return listed(texts);
}

void printObject(std::ostream& out, const ZTBase& object, const Names& names, std::size_t depth)
{
    out << std::string(2 * depth, ' ') << names.of(&object) << ": " << nameOf(*object.metaClass());
    std::vector<std::string_view> declared;
    for (unsigned int i = 0; i < object.metaClass()->propertyCount(); ++i)
        declared.push_back(object.metaClass()->property(i)->name());
    if (!declared.empty())
        out << "  " << shownProperties(object, declared, names);
    auto dynamic = object.dynamicProperties();
    std::sort(dynamic.begin(), dynamic.end());
    if (!dynamic.empty())
        out << "  dynamic " << shownProperties(object, dynamic, names);
    out << "\n";
    for (const ZTBase* child : object.children())
        printObject(out, *child, names, depth + 1);
}
} // namespace

void printTree(std::ostream& out, const ZTBase& top, const Names& names)
{
    if (top.children().empty())
        out << "  (nothing)\n";
    for (const ZTBase* child : top.children())
        printObject(out, *child, names, 1);
}
} // namespace scene
