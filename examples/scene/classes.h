#pragma once

#include "factories.h"

#include <zintar/metaclass.h>

#include <deque>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace scene
{
/// A class that an object of the scene can have.
struct SceneClass {
    const ZTMetaClass* metaClass;
    /// The host's class of the same name, or the nearest one that a declared class derives from.
    const Factory* host;

    std::unique_ptr<ZTBase> make() const;
};

/// The classes of the host and those that a file declares. Must outlive the objects.
class Classes
{
public:
    Classes();

    /// Null for an unknown name.
    const SceneClass* find(std::string_view name) const;
    /// The same; an unknown name is a `Mistake` at the place.
    const SceneClass& named(const std::string& name, const std::string& place) const;
    /// The host's first, then the declared ones, each behind its super class.
    const std::deque<SceneClass>& all() const { return m_all; }
    const std::vector<std::unique_ptr<ZTMetaClass>>& declared() const { return m_declared; }

    /// The classes that a declared one can derive from, by the names that a stream has for them.
    std::unordered_map<std::string, const ZTMetaClass*> superClasses() const;
    /// What a file calls those classes.
    std::vector<std::string> superClassNames() const;
    const ZTMetaClass* superClass(std::string_view name) const;

    void add(std::unique_ptr<ZTMetaClass> declared);

private:
    std::deque<SceneClass> m_all;
    std::vector<std::unique_ptr<ZTMetaClass>> m_declared;
};
} // namespace scene
