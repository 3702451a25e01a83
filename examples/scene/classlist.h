#pragma once

#include <zintar/metaclass.h>

#include <iosfwd>

namespace scene
{
/// Everything that a class tells of itself; what it inherits is marked with the class it is from.
void printClass(std::ostream& out, const ZTMetaClass& metaClass);
} // namespace scene
