#include "classes.h"

#include "members.h"
#include "mistake.h"

namespace scene
{
std::unique_ptr<ZTBase> SceneClass::make() const
{
    return metaClass == host->metaClass ? host->make() : host->makeAs(*metaClass);
}

Classes::Classes()
{
    for (const Factory& factory : factories())
        m_all.push_back({factory.metaClass, &factory});
}

const SceneClass* Classes::find(std::string_view name) const
{
    for (const SceneClass& known : m_all)
        if (nameOf(*known.metaClass) == name)
            return &known;
    return nullptr;
}

const SceneClass& Classes::named(const std::string& name, const std::string& place) const
{
    if (const SceneClass* known = find(name))
        return *known;
    std::vector<std::string> names;
    for (const SceneClass& known : m_all)
        names.push_back(nameOf(*known.metaClass));
    throw Mistake(place, "unknown class \"" + name + "\"; known are " + listed(names));
}

std::unordered_map<std::string, const ZTMetaClass*> Classes::superClasses() const
{
    const ZTMetaClass* root = dynamicRoot().metaClass;
    std::unordered_map<std::string, const ZTMetaClass*> supers{
        {std::string(root->typeName()), root}};
    for (const SceneClass& known : m_all)
        if (known.host->makeAs)
            supers.emplace(known.metaClass->typeName(), known.metaClass);
    return supers;
}

std::vector<std::string> Classes::superClassNames() const
{
    std::vector<std::string> names{nameOf(*dynamicRoot().metaClass)};
    for (const SceneClass& known : m_all)
        if (known.host->makeAs)
            names.push_back(nameOf(*known.metaClass));
    return names;
}

const ZTMetaClass* Classes::superClass(std::string_view name) const
{
    for (const auto& [typeName, metaClass] : superClasses())
        if (nameOf(*metaClass) == name)
            return metaClass;
    return nullptr;
}

void Classes::add(std::unique_ptr<ZTMetaClass> declared)
{
    const Factory* host = &dynamicRoot();
    for (const SceneClass& known : m_all)
        if (known.metaClass == declared->superClass())
            host = known.host;
    m_all.push_back({declared.get(), host});
    m_declared.push_back(std::move(declared));
}
} // namespace scene
