#include "text.h"

#include <sstream>

namespace
{
std::string fieldsOf(const ZTVariant& value)
{
    const ZTRecordView record(value);
    std::string text;
    for (std::size_t i = 0; i < record.count(); ++i)
        text +=
            (text.empty() ? "" : ", ") + std::string(record.name(i)) + " " + textOf(record.at(i));
    return "(" + text + ")";
}
} // namespace

std::string pathOf(const ZTBase* object)
{
    if (!object)
        return "none";
    std::string name = ztObjectName(object);
    if (name.empty())
        name = "(a " + ztShortName(*object->metaClass()) + ")";
    return object->parent() ? pathOf(object->parent()) + "/" + name : name;
}

std::string textOf(const ZTVariant& value)
{
    switch (ztKind(value.type())) {
    case ZTKind::ObjectPointer:
    case ZTKind::Reference:
        return pathOf(ztVariantValue<const ZTBase*>(value));
    case ZTKind::Text:
        return "\"" + ztVariantValue<std::string>(value) + "\"";
    case ZTKind::Record:
        return fieldsOf(value);
    default:
        break;
    }
    // The standard converters know numbers and truth values, their classes know enumerations.
    if (auto text = ztTryConvert(value, ztMetaType<std::string>()))
        return ztVariantValue<std::string>(*text);
    std::ostringstream printed;
    printed << value;
    return printed.str();
}

ZTVariant valueOf(const std::string& text, const ZTMetaType& type, ZTBase& root)
{
    const ZTKind kind = ztKind(type);
    if (kind != ZTKind::ObjectPointer && kind != ZTKind::Reference)
        return ZTVariant(text);
    if (text == "none")
        return ZTVariant(nullptr);
    // A path that leads nowhere stays a text, which the property refuses in words.
    ZTBase* object = ztFind(&root, text);
    return object ? ZTVariant(object) : ZTVariant(text);
}
