#pragma once

#include <string>

namespace scene
{
// What cannot be done is a `Mistake`.

/// All bytes of a file.
std::string readFile(const std::string& file);
void writeFile(const std::string& file, const std::string& contents);
} // namespace scene
