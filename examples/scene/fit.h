#pragma once

#include "jsonfile.h"

#include <zintar/metatype.h>

#include <string>
#include <vector>

namespace scene
{
/// The value as one of that type; a `Mistake` when it does not fit. A file keeps truth values,
/// names and numbers apart, which the library's converters do not, and its numbers have an end.
/// @param where  what it is for: "parameter 1 of grow"
ZTVariant fit(const Node& value, const std::string& where, const ZTMetaType& type);

/// A value as text, which every type of the scene has.
std::string textOf(const ZTVariant& value);

/// The types that a declared class can use: those that a file can write a value of.
std::vector<const ZTMetaType*> valueTypes();
bool isValueType(const ZTMetaType& type);
/// The type of that name, as a file calls it.
const ZTMetaType& readType(const Node& node);
} // namespace scene
