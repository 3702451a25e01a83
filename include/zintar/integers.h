#pragma once

#include <cstdint>
#include <type_traits>

/// @file
/// The two integer types whose width the stream format fixes but the platform does not.
///
/// The types named "long" and "unsigned long" have 4 bytes on a stream everywhere. Where the
/// compiler's `long` has 8 bytes, `ZTLong` and `ZTULong` take that place, and the compiler's
/// `long` (`std::int64_t`, `std::size_t`) is the same type to the library as `long long`.

namespace zt::detail
{
/// An integer of fixed width that is a type of its own and otherwise behaves as the integer.
template <class Integer>
struct FixedInteger {
    constexpr FixedInteger(Integer integer = 0) noexcept : value(integer) {}
    constexpr operator Integer() const noexcept { return value; }

    Integer value;
};

inline constexpr bool longIsWide = sizeof(long) == 8;
} // namespace zt::detail

/// The 4-byte type named "long".
using ZTLong =
    std::conditional_t<zt::detail::longIsWide, zt::detail::FixedInteger<std::int32_t>, long>;

/// The 4-byte type named "unsigned long".
using ZTULong = std::conditional_t<zt::detail::longIsWide, zt::detail::FixedInteger<std::uint32_t>,
                                   unsigned long>;

namespace zt::detail
{
template <class T, bool Wide>
struct CanonicalOf {
    using type = T;
};
template <>
struct CanonicalOf<long, true> {
    using type = long long;
};
template <>
struct CanonicalOf<unsigned long, true> {
    using type = unsigned long long;
};

/// The type as which the library knows `T`: another one only for an 8-byte `long`.
template <class T>
using Canonical = typename CanonicalOf<T, longIsWide>::type;
} // namespace zt::detail
