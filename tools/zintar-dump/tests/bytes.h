#pragma once

#include "contents.h"
#include "dump.h"

#include <limits>
#include <sstream>
#include <string>

/// @file
/// Bytes as they stand on a stream, and what is printed of them.

namespace support
{
constexpr std::size_t classesOnly = std::numeric_limits<std::size_t>::max();

inline std::string number(unsigned long long value, unsigned int bytes)
{
    std::string text;
    for (unsigned int i = 0; i < bytes; ++i, value >>= 8)
        text += static_cast<char>(value & 0xFF);
    return text;
}

inline std::string text(const std::string& bytes) { return number(bytes.size(), 8) + bytes; }

inline std::string shownAs(dump::Form form, const std::string& bytes, std::size_t classCount)
{
    std::ostringstream out, errors;
    dump::show({dump::readContents("sample", bytes, classCount, 0)}, form, out, errors);
    return out.str();
}
} // namespace support
