#include "metaclassbuilderprivate.h"

#include "../reflection/parameters.h"

#include <zintar/metaclassbuilder.h>

#include <algorithm>
#include <string>

ZTMetaClassBuilder::ZTMetaClassBuilder(const ZTMetaClass* prototype)
    : priv(new ZTMetaClassBuilderPrivate)
{
    if (prototype)
        copyMembers(*prototype);
}

ZTMetaClassBuilder::~ZTMetaClassBuilder() = default;

// The own members of the prototype. The invokables come before the properties, since a copied
// property finds its change event among them by number.
void ZTMetaClassBuilder::copyMembers(const ZTMetaClass& prototype)
{
    setSuperClass(prototype.superClass());
    setTypeName(prototype.typeName());
    for (unsigned int i = prototype.classInfoOffset(); i < prototype.classInfoCount(); ++i)
        addClassInfo(prototype.classInfo(i));
    for (unsigned int i = prototype.enumOffset(); i < prototype.enumCount(); ++i)
        addEnum(prototype.metaEnum(i));
    for (unsigned int i = prototype.invokableOffset(); i < prototype.invokableCount(); ++i)
        addInvokable(prototype.invokable(i));
    for (unsigned int i = prototype.propertyOffset(); i < prototype.propertyCount(); ++i)
        addProperty(prototype.property(i));
}

ZTMetaClass* ZTMetaClassBuilder::toMetaClass()
{
    ZTMetaClassBuilder copy(priv->metaClass.get());
    copy.priv->metaClass->finish();
    return copy.priv->metaClass.release();
}

void ZTMetaClassBuilder::setSuperClass(const ZTMetaClass* super)
{
    priv->metaClass->setSuperClass(super);
}

const ZTMetaClass* ZTMetaClassBuilder::superClass() const { return priv->metaClass->superClass(); }

void ZTMetaClassBuilder::setTypeName(std::string_view name)
{
    priv->metaClass->m_typeName = std::string(name);
}

std::string_view ZTMetaClassBuilder::typeName() const { return priv->metaClass->typeName(); }

namespace
{
template <class List>
void eraseAt(List& list, unsigned int index)
{
    if (index < list.size())
        list.erase(list.begin() + index);
}

template <class List>
int countOf(const List& list)
{
    return static_cast<int>(list.size());
}

/// The handle on the member that was appended; where none can be made, the member goes again.
template <class List, class MakeHandle>
auto handleOnLast(List& list, MakeHandle makeHandle)
{
    try {
        return makeHandle(list.back());
    } catch (...) { // of memory, or of the copy of a callable
        list.pop_back();
        throw;
    }
}
} // namespace

ZTMetaClassInfoBuilder ZTMetaClassBuilder::addClassInfo(const ZTMetaClassInfo* prototype)
{
    auto& list = priv->metaClass->m_classInfos;
    priv->metaClass->addClassInfo();
    return handleOnLast(list, [=](auto& info) -> ZTMetaClassInfoBuilder {
        return {info, prototype};
    });
}

ZTMetaClassInfoBuilder ZTMetaClassBuilder::classInfo(unsigned int index)
{
    auto& list = priv->metaClass->m_classInfos;
    if (index >= list.size())
        return {};
    return {list[index], nullptr};
}

void ZTMetaClassBuilder::removeClassInfo(unsigned int index)
{
    eraseAt(priv->metaClass->m_classInfos, index);
}

int ZTMetaClassBuilder::classInfoCount() const { return countOf(priv->metaClass->m_classInfos); }

ZTMetaEnumBuilder ZTMetaClassBuilder::addEnum(const ZTMetaEnum* prototype)
{
    auto& list = priv->metaClass->m_enums;
    priv->metaClass->addEnum();
    return handleOnLast(list, [=](auto& one) -> ZTMetaEnumBuilder { return {one, prototype}; });
}

ZTMetaEnumBuilder ZTMetaClassBuilder::metaEnum(unsigned int index)
{
    auto& list = priv->metaClass->m_enums;
    if (index >= list.size())
        return {};
    return {list[index], nullptr};
}

void ZTMetaClassBuilder::removeEnum(unsigned int index)
{
    eraseAt(priv->metaClass->m_enums, index);
}

int ZTMetaClassBuilder::enumCount() const { return countOf(priv->metaClass->m_enums); }

ZTMetaInvokableBuilder ZTMetaClassBuilder::addInvokable(const ZTMetaInvokable* prototype)
{
    auto& list = priv->metaClass->m_invokables;
    priv->metaClass->addInvokable();
    return handleOnLast(list, [=, this](auto& invokable) -> ZTMetaInvokableBuilder {
        return {this, invokable, prototype};
    });
}

ZTMetaInvokableBuilder ZTMetaClassBuilder::invokable(unsigned int index)
{
    auto& list = priv->metaClass->m_invokables;
    if (index >= list.size())
        return {};
    return {this, list[index], nullptr};
}

void ZTMetaClassBuilder::removeInvokable(unsigned int index)
{
    auto& list = priv->metaClass->m_invokables;
    if (index < list.size())
        list[index]->forgetOwner();
    eraseAt(list, index);
}

int ZTMetaClassBuilder::invokableCount() const { return countOf(priv->metaClass->m_invokables); }

ZTMetaPropertyBuilder ZTMetaClassBuilder::addProperty(const ZTMetaProperty* prototype)
{
    auto& list = priv->metaClass->m_properties;
    priv->metaClass->addProperty();
    return handleOnLast(list, [=, this](auto& property) -> ZTMetaPropertyBuilder {
        return {this, property, prototype};
    });
}

ZTMetaPropertyBuilder ZTMetaClassBuilder::property(unsigned int index)
{
    auto& list = priv->metaClass->m_properties;
    if (index >= list.size())
        return {};
    return {this, list[index], nullptr};
}

void ZTMetaClassBuilder::removeProperty(unsigned int index)
{
    eraseAt(priv->metaClass->m_properties, index);
}

int ZTMetaClassBuilder::propertyCount() const { return countOf(priv->metaClass->m_properties); }

ZTMetaPropertyBuilder ZTMetaClassBuilder::addStoredProperty(std::string_view name,
                                                            const ZTVariant& start)
{
    auto& properties = priv->metaClass->m_properties;
    auto& invokables = priv->metaClass->m_invokables;
    const std::size_t propertiesBefore = properties.size();
    const std::size_t invokablesBefore = invokables.size();
    try {
        auto event = addInvokable();
        event.setName(std::string(name) + "Changed");
        event.setAccessSpecifier(ZTAccessSpecifier::Public);
        event.setEvent({&start.type()});
        auto property = addProperty();
        property.setName(name);
        property.setStored(start);
        property.setChangeEvent(event);
        return {this, properties.back(), nullptr};
    } catch (...) { // of memory, or of the copy of the value
        properties.resize(propertiesBefore);
        invokables.resize(invokablesBefore);
        throw;
    }
}

const ZTMetaInvokable*
ZTMetaClassBuilder::superMethod(std::string_view name,
                                const std::vector<const ZTMetaType*>& parameterTypes) const
{
    const ZTMetaClass* super = superClass();
    // Those of the nearest class stand last.
    for (unsigned int i = super ? super->invokableCount() : 0; i-- > 0;) {
        const ZTMetaInvokable* method = super->invokable(i);
        if (method && !method->isEvent() && method->name() == name &&
            zt::detail::takesExactly(*method, parameterTypes))
            return method;
    }
    return nullptr;
}

namespace
{
template <class List, class NameOf>
int indexIn(const List& list, std::string_view name, NameOf nameOf)
{
    auto found = std::find_if(list.begin(), list.end(),
                              [&](const auto& member) { return nameOf(*member) == name; });
    return found == list.end() ? -1 : static_cast<int>(found - list.begin());
}
constexpr auto nameOf = [](const auto& member) { return member.name(); };
} // namespace

int ZTMetaClassBuilder::indexOfClassInfo(std::string_view key) const
{
    return indexIn(priv->metaClass->m_classInfos, key, [](const auto& info) { return info.key(); });
}

int ZTMetaClassBuilder::indexOfEnum(std::string_view name) const
{
    return indexIn(priv->metaClass->m_enums, name, nameOf);
}

int ZTMetaClassBuilder::indexOfInvokable(std::string_view name) const
{
    return indexIn(priv->metaClass->m_invokables, name, nameOf);
}

int ZTMetaClassBuilder::indexOfProperty(std::string_view name) const
{
    return indexIn(priv->metaClass->m_properties, name, nameOf);
}

// -1 is an index that no class has, either.

ZTMetaClassInfoBuilder ZTMetaClassBuilder::classInfo(std::string_view key)
{
    return classInfo(static_cast<unsigned int>(indexOfClassInfo(key)));
}

ZTMetaEnumBuilder ZTMetaClassBuilder::metaEnum(std::string_view name)
{
    return metaEnum(static_cast<unsigned int>(indexOfEnum(name)));
}

ZTMetaInvokableBuilder ZTMetaClassBuilder::invokable(std::string_view name)
{
    return invokable(static_cast<unsigned int>(indexOfInvokable(name)));
}

ZTMetaPropertyBuilder ZTMetaClassBuilder::property(std::string_view name)
{
    return property(static_cast<unsigned int>(indexOfProperty(name)));
}
