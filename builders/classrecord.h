#pragma once

#include "../reflection/dynamicmetaclass.h"

#include <zintar/fwd.h>

#include <string>

namespace zt::detail
{
/// Reads a class into an empty one that gets its super class later.
/// @param superName  gets the name of it, "ZTNone" for none
void readClassRecord(ZTDataStream& stream, ZTDynamicMetaClass& metaClass, std::string& superName);
} // namespace zt::detail
