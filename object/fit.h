#pragma once

#include <zintar/variant.h>

#include <optional>

/// @file
/// Whether a value is one of a type that is known at run time only, or becomes one, without a word
/// in the log.

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

/// Looks whether the value fits. A pointer or a reference fits by the class of its object. Code of
/// the host may run: a converter.
/// @param converted  gets the value as one of the type where the result is `Converted`
Fit fitOf(const ZTVariant& value, const ZTMetaType& type, ZTVariant& converted);

/// The value as a function takes it whose parameter is of the type: the given one, or the converted
/// one.
inline const ZTVariant& fitting(Fit fit, const ZTVariant& value, const ZTVariant& converted)
{
    return fit == Fit::Converted ? converted : value;
}

/// The value, which fits, as one of exactly that type.
ZTVariant typed(Fit fit, const ZTVariant& value, const ZTMetaType& type,
                const ZTVariant& converted);
/// The same; nothing when it does not fit.
std::optional<ZTVariant> fitted(const ZTVariant& value, const ZTMetaType& type);
} // namespace zt::detail
