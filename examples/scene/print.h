#pragma once

#include "names.h"

#include <zintar/variant.h>

#include <iosfwd>
#include <string>

namespace scene
{
/// The value as a person would write it: 21.5, "north", Heat, an object by its name.
std::string shown(const ZTVariant& value, const Names& names);
/// "(21.5, "north")": the first `count` of the arguments.
std::string shown(const ZTArgumentArray& arguments, unsigned int count, const Names& names);

/// Everything below `top`, one line for each object: its class, its properties with their values,
/// and its dynamic properties in the order of their names.
void printTree(std::ostream& out, const ZTBase& top, const Names& names);
} // namespace scene
