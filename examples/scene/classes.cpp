#include "classes.h"

#include "members.h"
#include "mistake.h"

#include <zintar/classes.h>
#include <zintar/dynamicbase.h>
#include <zintar/shortname.h>

namespace scene
{
namespace
{
const ZTMetaClass& root() { return ZTDynamicBase::typeMetaClass(); }

bool canBeSuperClass(const ZTMetaClass* metaClass)
{
    while (metaClass && metaClass != &root())
        metaClass = metaClass->superClass();
    return metaClass;
}

const ZTMetaClass* named(const std::vector<const ZTMetaClass*>& classes, std::string_view name)
{
    for (const ZTMetaClass* known : classes)
        if (ztShortName(*known) == name)
            return known;
    return nullptr;
}
} // namespace

std::vector<const ZTMetaClass*> sceneClasses()
{
    // No scene has an object of one of the library's own classes alone.
    auto classes = ztClasses();
    std::erase(classes, &ZTBase::typeMetaClass());
    std::erase(classes, &root());
    return classes;
}

const ZTMetaClass& classNamed(const std::string& name, const std::string& place)
{
    auto classes = sceneClasses();
    if (const ZTMetaClass* known = named(classes, name))
        return *known;
    throw Mistake(place, "unknown class \"" + name + "\"; known are " + namesOf(classes));
}

std::vector<const ZTMetaClass*> superClasses()
{
    auto classes = ztClasses();
    std::erase_if(classes, [](const ZTMetaClass* known) { return !canBeSuperClass(known); });
    return classes;
}

const ZTMetaClass* superClassNamed(std::string_view name) { return named(superClasses(), name); }

std::string namesOf(const std::vector<const ZTMetaClass*>& classes)
{
    std::vector<std::string> names;
    names.reserve(classes.size());
    for (const ZTMetaClass* known : classes)
        names.push_back(ztShortName(*known));
    return listed(names);
}
} // namespace scene
