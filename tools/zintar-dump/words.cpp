#include "words.h"

#include "text.h"

#include <zintar/metaclass.h>
#include <zintar/metatype.h>

namespace dump
{
std::string accessName(int access)
{
    switch (static_cast<ZTAccessSpecifier>(access)) {
    case ZTAccessSpecifier::Private:
        return "private";
    case ZTAccessSpecifier::Protected:
        return "protected";
    case ZTAccessSpecifier::Public:
        return "public";
    }
    return std::to_string(access);
}

std::string joined(const std::vector<std::string>& parts)
{
    std::string text;
    for (const std::string& part : parts) {
        if (!text.empty())
            text += ", ";
        text += part;
    }
    return text;
}

std::string signature(const InvokableRecord& invokable)
{
    std::vector<std::string> parameters;
    for (const std::string& type : invokable.parameterTypes)
        parameters.push_back(shownType(type));
    std::string text = shownName(invokable.name) + "(" + joined(parameters) + ")";
    // A method without a result has one of these, depending on how it was made.
    if (invokable.returnType != "void" && invokable.returnType != ZTMetaType::ZTBadMetaType.name())
        text += " -> " + shownType(invokable.returnType);
    if (invokable.isConst)
        text += ", const";
    return text;
}

std::string accessLimit(const PropertyRecord& property)
{
    if (property.canGet)
        return property.canSet ? "" : "read only";
    return property.canSet ? "write only" : "neither read nor written";
}

std::string enumeration(const EnumRecord& metaEnum)
{
    std::vector<std::string> enumerators;
    for (const Enumerator& enumerator : metaEnum.enumerators)
        enumerators.push_back(shownName(enumerator.name) + " " + std::to_string(enumerator.value));
    return shownName(metaEnum.name) + ": " + joined(enumerators);
}
} // namespace dump
