#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace scene
{
struct CommandLine {
    bool help = false;
    bool classes = false;
    std::string file; ///< a scene file, or
    std::string load; ///< a saved scene
    std::string save;
    std::vector<std::string> record;
};

/// Nothing when the arguments make no sense together.
std::optional<CommandLine> readCommandLine(const std::vector<std::string>& arguments);

extern const std::string_view usage;
/// What follows the usage.
extern const std::string_view help;
} // namespace scene
