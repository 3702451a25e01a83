#pragma once

#include <zintar/base.h>

#include <string>
#include <unordered_map>

namespace scene
{
/// The names of the objects in the file, by address. It never looks at an object, so it also
/// names one that is dying or dead, as the argument of an event may be.
class Names
{
public:
    void add(const ZTBase* object, const std::string& name)
    {
        m_names[object] = name;
        m_objects[name] = object;
    }

    std::string of(const ZTBase* object) const
    {
        if (!object)
            return "nobody";
        auto found = m_names.find(object);
        return found == m_names.end() ? "(not of the scene)" : found->second;
    }

    /// The address of the object that got the name, dead or alive; null for an unknown name.
    const ZTBase* addressOf(const std::string& name) const
    {
        auto found = m_objects.find(name);
        return found == m_objects.end() ? nullptr : found->second;
    }

private:
    std::unordered_map<const ZTBase*, std::string> m_names;
    std::unordered_map<std::string, const ZTBase*> m_objects;
};
} // namespace scene
