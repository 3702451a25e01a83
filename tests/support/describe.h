#pragma once

#include <zintar/metaclass.h>
#include <zintar/metatypeof.h>

#include <string>

namespace support
{
/// The name of a type, short where the spelled one is long.
inline std::string nameOf(const ZTMetaType& type)
{
    return &type == &ztMetaType<std::string>() ? "std::string" : type.name();
}

/// "event 4 void said(int)"
inline std::string textOf(const ZTMetaInvokable& invokable)
{
    std::string parameters;
    for (unsigned int i = 0; i < invokable.parameterCount(); ++i)
        parameters += (i ? ", " : "") + nameOf(invokable.parameterMetaType(i));
    return (invokable.isEvent() ? "event " : "method ") + std::to_string(invokable.index()) + " " +
           nameOf(invokable.returnMetaType()) + " " + std::string(invokable.name()) + "(" +
           parameters + ")" + (invokable.isConst() ? " const" : "");
}

/// "property 0 int level get set unit=watt, 6 levelChanged"
inline std::string textOf(const ZTMetaProperty& property)
{
    std::string text = nameOf(property.metaType()) + " " + std::string(property.name()) +
                       (property.canGet() ? " get" : "") + (property.canSet() ? " set" : "");
    for (unsigned int i = 0; i < property.propInfoCount(); ++i)
        text += " " + std::string(property.propInfoKey(i)) + "=" +
                std::string(property.propInfoValue(i));
    const ZTMetaInvokable* event = property.changeEvent();
    return text + ", " + std::to_string(property.changeEventIndex()) +
           (event ? " " + std::string(event->name()) : "");
}

/// Every member that the class itself declares, a line each, with its index.
inline std::string describe(const ZTMetaClass& type)
{
    auto super = type.superClass();
    std::string text =
        std::string(type.typeName()) + ": " + std::string(super ? super->typeName() : "-") + "\n";
    for (unsigned int i = type.classInfoOffset(); i < type.classInfoCount(); ++i)
        text += "info " + std::to_string(i) + " " + std::string(type.classInfo(i)->key()) + "=" +
                std::string(type.classInfo(i)->value()) + "\n";
    for (unsigned int i = type.enumOffset(); i < type.enumCount(); ++i) {
        const ZTMetaEnum& one = *type.metaEnum(i);
        text += "enum " + std::to_string(i) + " " + std::string(one.name());
        for (unsigned int e = 0; e < one.count(); ++e)
            text += " " + std::string(one.enumerator(e)) + "=" + std::to_string(one.value(e));
        text += "\n";
    }
    for (unsigned int i = type.propertyOffset(); i < type.propertyCount(); ++i)
        text += "property " + std::to_string(i) + " " + textOf(*type.property(i)) + "\n";
    for (unsigned int i = type.invokableOffset(); i < type.invokableCount(); ++i)
        text += textOf(*type.invokable(i)) + ", " +
                std::to_string(static_cast<int>(type.invokable(i)->accessSpecifier())) + "\n";
    return text;
}
} // namespace support
