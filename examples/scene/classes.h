#pragma once

#include <zintar/metaclass.h>

#include <string>
#include <string_view>
#include <vector>

/// @file
/// The classes of a scene, among all that the library knows: those of the host, and those of a file
/// as long as a `ZTClassStore` holds them.

namespace scene
{
/// Those that an object can have: the host's first, then the declared ones, each behind its super
/// class.
std::vector<const ZTMetaClass*> sceneClasses();
/// The one of that name; an unknown name is a `Mistake` at the place.
const ZTMetaClass& classNamed(const std::string& name, const std::string& place);

/// Those that a declared class can derive from.
std::vector<const ZTMetaClass*> superClasses();
/// Null for an unknown name.
const ZTMetaClass* superClassNamed(std::string_view name);

/// "one, two, three"
std::string namesOf(const std::vector<const ZTMetaClass*>& classes);
} // namespace scene
