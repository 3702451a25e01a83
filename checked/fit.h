#pragma once

#include <zintar/variant.h>

namespace zt::detail
{
/// How far a value is from a type, for choosing among overloads: the less, the better.
enum class Fit : unsigned int {
    Exact = 0,
    /// From here on, by the number of classes between: a pointer to an object of a derived class.
    Derived = 1,
    /// From here on: the pointer is declared as one to a base class, and the object is of the
    /// class that is asked for.
    ByObject = 1'000'000,
    Converted = 2'000'000,
    /// The type takes a variant as it is.
    AsVariant = 3'000'000,
    None = 4'000'000,
};

/// Looks whether the value fits. Code of the host may run: a converter.
/// @param converted  gets the value as one of the type where the result is `Converted`
Fit fitOf(const ZTVariant& value, const ZTMetaType& type, ZTVariant& converted);

/// The value that fits: the given one, or the converted one.
inline const ZTVariant& fitting(Fit fit, const ZTVariant& value, const ZTVariant& converted)
{
    return fit == Fit::Converted ? converted : value;
}
} // namespace zt::detail
