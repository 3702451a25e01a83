#pragma once

#include "jsonfile.h"
#include "mistake.h"

#include <zintar/metatype.h>

#include <string>
#include <vector>

namespace scene
{
/// "a" value in the file that does not fit "parameter 1 of grow" of that type, and what would.
Mistake misfit(const Node& value, const std::string& where, const ZTMetaType& type);

/// The value as one of that type; a `Mistake` when it does not fit.
/// @param where  what it is for
ZTVariant fit(const Node& value, const std::string& where, const ZTMetaType& type);

/// The types that a declared class can use: those that a file can write a value of.
const std::vector<const ZTMetaType*>& valueTypes();
bool isValueType(const ZTMetaType& type);
/// The type of that name, as a file calls it.
const ZTMetaType& readType(const Node& node);
} // namespace scene
