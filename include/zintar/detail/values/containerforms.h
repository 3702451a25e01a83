#pragma once

#include <zintar/export.h>
#include <zintar/fwd.h>

/// @file
/// What `containers.h` stands on.

namespace zt::detail
{
/// From now on a container that is held by a variant streams and prints by its elements. Once on it
/// stays so, for all types of the process: what a variant can do must not hang on which file
/// registered its type.
ZT_EXPORT void useContainerForms();

// For types whose parts all have a form on the stream.

ZT_EXPORT void writeContainer(ZTDataStream& stream, const ZTMetaType& type, const void* value);
/// A container that cannot be read whole stays as it was.
ZT_EXPORT void readContainer(ZTDataStream& stream, const ZTMetaType& type, void* value);
} // namespace zt::detail
