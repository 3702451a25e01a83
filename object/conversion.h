#pragma once

#include <zintar/variant.h>

#include <optional>

/// @file
/// How a value becomes one of a type that is known at run time only, without a word in the log.

namespace zt::detail
{
/// What it takes; more is worse.
enum class Conversion { None, AlongClassTree, ByConverter, IntoVariant, Impossible };

/// A pointer goes along the class tree only if its object really is one of the class.
[[nodiscard]] Conversion conversionTo(const ZTMetaType& type, const ZTVariant& value);

/// The value as one of exactly that type; nothing where there is none, or where a converter refuses
/// it. Runs code of the host.
[[nodiscard]] std::optional<ZTVariant> convertedTo(const ZTMetaType& type, const ZTVariant& value);
} // namespace zt::detail
