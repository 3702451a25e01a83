#pragma once

#include <zintar/datastream.h>

#include <cstdio>
#include <string>

namespace support
{
/// The bytes in hexadecimal: "01 00 FF".
inline std::string hex(const std::string& bytes)
{
    std::string text;
    for (char byte : bytes) {
        char digits[4];
        std::snprintf(digits, sizeof digits, "%02X", static_cast<unsigned char>(byte));
        text += (text.empty() ? "" : " ") + std::string(digits);
    }
    return text;
}

inline std::string bytesOf(const ZTDataStream& stream) { return hex(stream.data()); }

/// The bytes of the values, one behind the other.
template <class... Values>
std::string streamed(const Values&... values)
{
    ZTDataStream stream;
    (stream << ... << values);
    return stream.data();
}

/// A stream that holds the bytes, to be read from the first one.
inline ZTDataStream streamOf(const std::string& bytes) { return ZTDataStream(bytes); }
} // namespace support
