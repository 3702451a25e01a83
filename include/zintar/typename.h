#pragma once

#include <zintar/detail/spelling.h>
#include <zintar/integers.h>

#include <string_view>

/// The name under which the library registers `T`, and that goes on streams and into messages.
///
/// Worked out by the compiler, the same under GCC and Clang. A class, struct or union is spelled
/// with "struct " or "union " in front, an enumeration with "enum "; there is no blank before `*`
/// and after a comma, and one between two closing angle brackets:
///
///     ztTypeName<const Room*>()               "const struct Room*"
///     ztTypeName<std::vector<Room::Kind>>()   "struct std::vector<enum Room::Kind,..."
///
/// What no template can take apart is spelled as the compiler does, which may differ between
/// compilers, and in the case of lambdas of one function be the same for all of them: a type
/// inside of a function, an inline namespace, the arguments of a class template in the name of a
/// class within it, a floating-point number in a template argument. The text lives as long as the
/// program (or the plugin that asked).
template <class T>
[[nodiscard]] constexpr std::string_view ztTypeName() noexcept
{
    if constexpr (std::is_const_v<T>)
        return zt::detail::Spelling<const zt::detail::Canonical<std::remove_const_t<T>>>::text;
    else
        return zt::detail::Spelling<zt::detail::Canonical<T>>::text;
}
