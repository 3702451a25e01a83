#pragma once

#include <zintar/base.h>

#include <memory>
#include <string_view>
#include <vector>

namespace scene
{
/// A class of the host that a scene file can ask for.
struct Factory {
    const ZTMetaClass& (*metaClass)();
    std::unique_ptr<ZTBase> (*make)();
};

const std::vector<Factory>& factories();

/// Null when the host has no class of that name.
const Factory* factoryOf(std::string_view className);

/// Registers the converters for the enumerations of the host's classes. Call it once.
void registerHostEnumerations();
} // namespace scene
