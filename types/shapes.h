#pragma once

#include "metatypeprivate.h"

#include <zintar/detail/values/shape.h>

#include <iosfwd>

/// @file
/// What a type does part by part where it has no function of its own for it.
///
/// 1. A function of the type comes first. Part by part it streams only if it has neither of the two
///    functions, so that what is written is what is read.
/// 2. It can do what all of its parts can do, however deep.
/// 3. A container by itself streams and prints once some file of the program includes
///    `containers.h`; in a record always.
/// 4. What cannot be read whole leaves its target as it was.

namespace zt::detail
{
[[nodiscard]] bool canWriteParts(const ZTMetaTypePrivate& type);
[[nodiscard]] bool canReadParts(const ZTMetaTypePrivate& type);
[[nodiscard]] bool canPrintParts(const ZTMetaTypePrivate& type);

// Each is for a type of which the function above, or for a comparison nothing, was asked.

void writeParts(ZTDataStream& stream, const ZTMetaTypePrivate& type, const void* value);
void readParts(ZTDataStream& stream, const ZTMetaType& type, void* value);
void printParts(std::ostream& stream, const ZTMetaTypePrivate& type, const void* value);
[[nodiscard]] ZTPartialOrdering compareParts(const ZTMetaTypePrivate& type, const void* left,
                                             const void* right);

/// The shape as one of its kind; null where it is of another kind.
template <class KindOfShape>
const KindOfShape* shapeAs(const ZTMetaTypePrivate& type)
{
    const bool fits = type.shape && type.shape->kind == KindOfShape::ofKind;
    return fits ? static_cast<const KindOfShape*>(type.shape) : nullptr;
}

/// Calls `visit` with the shape as one of its kind; false for a type without parts.
template <class Visit>
bool visitShape(const ZTMetaTypePrivate& type, Visit visit)
{
    if (const auto* sequence = shapeAs<SequenceShape>(type))
        visit(*sequence);
    else if (const auto* association = shapeAs<AssociationShape>(type))
        visit(*association);
    else if (const auto* optional = shapeAs<OptionalShape>(type))
        visit(*optional);
    else if (const auto* record = shapeAs<RecordShape>(type))
        visit(*record);
    else
        return false;
    return true;
}

inline const ZTMetaTypePrivate& recordOf(TypeGetter getter)
{
    return ZTMetaTypePrivate::of(getter());
}
} // namespace zt::detail
