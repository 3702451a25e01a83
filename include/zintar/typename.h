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
/// It differs for different types, but for what no template can take apart, which is spelled as the
/// compiler does, and may differ between compilers or be one name for several types: a type inside
/// of a function, a lambda among them; the arguments of a class template in the name of a class
/// within it; as a template argument an instance of a function template, a floating-point number
/// or an object with pointers in it. An inline namespace is in the name under GCC alone: GCC does
/// not tell that it is one, and Clang not that it is there. The text lives as long as the program
/// (or the plugin that asked).
template <class T>
[[nodiscard]] constexpr std::string_view ztTypeName() noexcept
{
    if constexpr (std::is_const_v<T>)
        return zt::detail::Spelling<const zt::detail::Canonical<std::remove_const_t<T>>>::text;
    else
        return zt::detail::Spelling<zt::detail::Canonical<T>>::text;
}
