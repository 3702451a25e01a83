#pragma once

#include <limits>
#include <type_traits>
#include <utility>

/// @file
/// Members are counted in `unsigned int`, but hosts count in `std::size_t` as often.

namespace zt::detail
{
template <class T>
concept WideIndex = std::is_integral_v<T> && sizeof(T) > sizeof(unsigned int);

/// The same index; one that no member has where it is too large.
template <class Index>
constexpr unsigned int narrowIndex(Index index)
{
    return std::in_range<unsigned int>(index) ? static_cast<unsigned int>(index)
                                              : std::numeric_limits<unsigned int>::max();
}
} // namespace zt::detail
