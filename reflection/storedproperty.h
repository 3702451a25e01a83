#pragma once

#include <zintar/variant.h>

#include <memory>
#include <string>

struct ZTMetaInvokable;

/// @file
/// Properties of classes made at run time whose values each object keeps itself. Where it keeps
/// them is not known here; the folder of the objects has it.

namespace zt::detail
{
struct StoredProperty {
    /// @param first  valid
    explicit StoredProperty(const ZTVariant& first);

    /// The value until another one is set. It tells the type.
    const ZTVariant start;
    /// Finds the value in an object: no two properties have the same, whatever their names.
    const std::string key;
};

/// @param object  holds a pointer to the object
[[nodiscard]] ZTVariant storedValue(const StoredProperty& property, const ZTVariant& object);
/// A value that does not fit is told in the log and changes nothing.
/// @param changeEvent  raised with the value when that has changed, and with the one before if it
///                     takes two of that type; may be null
void setStoredValue(const StoredProperty& property, const ZTMetaInvokable* changeEvent,
                    const ZTVariant& object, const ZTVariant& value);
} // namespace zt::detail
