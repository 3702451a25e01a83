#pragma once

#include <zintar/base.h>

#include <memory>
#include <string_view>
#include <vector>

namespace scene
{
/// A class of the host.
struct Factory {
    const ZTMetaClass* metaClass;
    std::unique_ptr<ZTBase> (*make)();
    /// An object of this class that answers by a class made at run time, one that derives from
    /// this one. Null where objects keep the class that they were compiled with.
    std::unique_ptr<ZTBase> (*makeAs)(const ZTMetaClass& declared);
    /// Gives an object back the value of a property that can only be read. Null where the class
    /// has none to give back.
    void (*restore)(ZTBase& object, std::string_view property, const ZTVariant& value);
};

/// The classes that a scene file can ask for.
const std::vector<Factory>& factories();

/// The root of the classes that a file can derive from; no scene has an object of it alone.
const Factory& dynamicRoot();

/// Registers the converters for the enumerations of the host's classes. Call it once.
void registerHostEnumerations();
} // namespace scene
