#pragma once

#include <string_view>
#include <vector>

namespace zt::detail
{
/// Of those names the one that was meant, most likely; empty when none comes near. Letters that
/// were left out, added, mistaken or exchanged with their neighbours count, their case does not.
std::string_view nearestName(std::string_view name, const std::vector<std::string_view>& known);
} // namespace zt::detail
