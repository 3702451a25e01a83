#pragma once

#include "records.h"

#include <string>
#include <vector>

/// @file
/// How the listing and the diagram put members in words.

namespace dump
{
/// "private", "protected", "public", or the number where it is none of them.
[[nodiscard]] std::string accessName(int access);

/// "a(int, double) -> bool, const"
[[nodiscard]] std::string signature(const InvokableRecord& invokable);

/// Empty for a property that can be read and written.
[[nodiscard]] std::string accessLimit(const PropertyRecord& property);

/// "Mode: Off 0, Heat 1"
[[nodiscard]] std::string enumeration(const EnumRecord& metaEnum);

[[nodiscard]] std::string joined(const std::vector<std::string>& parts);
} // namespace dump
