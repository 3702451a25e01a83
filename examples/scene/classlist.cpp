#include "classlist.h"

#include "members.h"

#include <zintar/metatypeof.h>

#include <iomanip>
#include <ostream>
#include <string>
#include <vector>

namespace scene
{
namespace
{
/// Where the members of one kind begin in a class, counted over all of its super classes.
using Offset = unsigned int (ZTMetaClass::*)() const;

const ZTMetaClass& ownerOf(const ZTMetaClass& metaClass, Offset offset, unsigned int index)
{
    const ZTMetaClass* owner = &metaClass;
    while (index < (owner->*offset)())
        owner = owner->superClass();
    return *owner;
}

/// The members of one kind, the root's first, each described by `describe(index)`.
template <class Describe>
void printMembers(std::ostream& out, const ZTMetaClass& metaClass, std::string_view title,
                  unsigned int count, Offset offset, Describe describe)
{
    bool isFirst = true;
    for (unsigned int i = 0; i < count; ++i) {
        std::string text = describe(i);
        if (text.empty())
            continue;
        if (std::exchange(isFirst, false))
            out << "  " << title << "\n";
        const ZTMetaClass& owner = ownerOf(metaClass, offset, i);
        out << "    ";
        if (&owner == &metaClass)
            out << text << "\n";
        else
            out << std::left << std::setw(58) << text << " from " << nameOf(owner) << "\n";
    }
}

std::string describeProperty(const ZTMetaProperty& property)
{
    std::string text = std::string(property.name()) + ": " + nameOf(property.metaType());
    if (!property.canSet())
        text += ", read only";
    if (const ZTMetaInvokable* event = property.changeEvent())
        text += ", announced by " + std::string(event->name());
    for (unsigned int i = 0; i < property.propInfoCount(); ++i)
        text += ", " + std::string(property.propInfoKey(i)) + " \"" +
                onOneLine(std::string(property.propInfoValue(i))) + "\"";
    return text;
}

std::string describeInvokable(const ZTMetaInvokable& invokable)
{
    std::string text = std::string(invokable.name()) + parametersOf(invokable);
    if (invokable.returnMetaType() != ztMetaType<void>())
        text += " -> " + nameOf(invokable.returnMetaType());
    return text;
}

std::string describeEnumeration(const ZTMetaEnum& enumeration)
{
    std::vector<std::string> texts;
    for (unsigned int i = 0; i < enumeration.count(); ++i)
        texts.push_back(std::string(enumeration.enumerator(i)) + " " +
                        std::to_string(enumeration.value(i)));
    return std::string(enumeration.name()) + ": " + listed(texts);
}
} // namespace

void printClass(std::ostream& out, const ZTMetaClass& metaClass)
{
    out << nameOf(metaClass);
    for (auto* super = metaClass.superClass(); super; super = super->superClass())
        out << " : " << nameOf(*super);
    out << "\n";

    printMembers(out, metaClass, "annotations", metaClass.classInfoCount(),
                 &ZTMetaClass::classInfoOffset, [&](unsigned int i) {
                     const ZTMetaClassInfo& info = *metaClass.classInfo(i);
                     return std::string(info.key()) + " \"" + std::string(info.value()) + "\"";
                 });
    printMembers(out, metaClass, "enumerations", metaClass.enumCount(), &ZTMetaClass::enumOffset,
                 [&](unsigned int i) { return describeEnumeration(*metaClass.metaEnum(i)); });
    printMembers(out, metaClass, "properties", metaClass.propertyCount(),
                 &ZTMetaClass::propertyOffset,
                 [&](unsigned int i) { return describeProperty(*metaClass.property(i)); });
    for (bool events : {false, true})
        printMembers(out, metaClass, events ? "events" : "methods", metaClass.invokableCount(),
                     &ZTMetaClass::invokableOffset, [&](unsigned int i) {
                         const ZTMetaInvokable& invokable = *metaClass.invokable(i);
                         return invokable.isEvent() == events ? describeInvokable(invokable) : "";
                     });
}
} // namespace scene
