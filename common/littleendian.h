#pragma once

#include <algorithm>
#include <array>
#include <bit>

namespace zt::detail
{
template <class T>
using BytesOf = std::array<char, sizeof(T)>;

/// The bytes of `value` with the least significant one first.
template <class T>
BytesOf<T> toBytes(T value)
{
    auto bytes = std::bit_cast<BytesOf<T>>(value);
    if constexpr (std::endian::native == std::endian::big)
        std::reverse(bytes.begin(), bytes.end());
    return bytes;
}

template <class T>
T fromBytes(BytesOf<T> bytes)
{
    if constexpr (std::endian::native == std::endian::big)
        std::reverse(bytes.begin(), bytes.end());
    return std::bit_cast<T>(bytes);
}
} // namespace zt::detail
