#pragma once

#include <zintar/typedvalue.h>

#include <optional>
#include <type_traits>
#include <utility>

namespace zt::detail
{
/// What a visit gives: whether there was one, where the callable gives nothing.
template <class... Results>
struct Visited {
    using type = std::optional<std::common_type_t<std::decay_t<Results>...>>;
};
template <class... Results>
    requires(std::is_void_v<Results>&&...)
struct Visited<Results...> {
    using type = bool;
};

/// As what a callable sees a `T`.
template <class T, class Variant>
using Seen = std::conditional_t<!std::is_same_v<T, Canonical<T>>, T,
                                std::conditional_t<std::is_const_v<Variant>, const T&, T&>>;

/// Calls if the variant holds a `T`.
template <class T, class Variant, class Callable, class Result>
bool visitOne(Variant& variant, Callable& callable, Result& result)
{
    using Known = Canonical<T>;
    using Held = std::conditional_t<std::is_const_v<Variant>, const Known, Known>;
    static_assert(std::is_same_v<ValueType<T>, Known>,
                  "ztVisit: the types are those that a variant holds. Text is held as a "
                  "std::string.");
    auto* held = ztVariantPointer<Held>(variant);
    if (!held)
        return false;
    auto call = [&]() -> decltype(auto) {
        if constexpr (std::is_same_v<T, Known>)
            return callable(*held);
        else
            return callable(static_cast<T>(*held));
    };
    if constexpr (std::is_void_v<decltype(call())>)
        call();
    else
        result.emplace(call());
    return true;
}

template <class... Types, class Variant, class Callable>
auto visit(Variant& variant, Callable& callable)
{
    static_assert(sizeof...(Types) > 0, "ztVisit<Types...>: name the types to look for.");
    static_assert((std::is_same_v<Types, std::decay_t<Types>> && ...),
                  "ztVisit<Types...>: the types are plain ones, without reference and const.");
    using Result =
        typename Visited<decltype(callable(std::declval<Seen<Types, Variant>>()))...>::type;
    Result result{};
    const bool isVisited = (visitOne<Types>(variant, callable, result) || ...);
    if constexpr (std::is_same_v<Result, bool>)
        return isVisited;
    else
        return result;
}
} // namespace zt::detail

/// Calls with the value that the variant holds, if that is of one of the types; so a list of types
/// replaces a chain of `ztVariantPointer`.
///
///     ztVisit<int, double, std::string>(value, [&](const auto& held) { write(held); });
///     auto size = ztVisit<int, std::string>(value, Overloaded{...}); // a std::optional
///
/// The type has to be the very one, as with `ztVariantPointer`: nothing is converted, and a pointer
/// is found as that pointer alone.
/// @param callable  takes each of the types: a reference into the block of the variant, which must
///                  not change meanwhile; to const where the variant is
/// @return for a callable that gives nothing: whether it was called. Otherwise a `std::optional`
///         with what it gave, of the type that is common to all; empty where it was not called.
/// Logs nothing.
template <class... Types, class Callable>
auto ztVisit(const ZTVariant& variant, Callable&& callable)
{
    return zt::detail::visit<Types...>(variant, callable);
}
template <class... Types, class Callable>
auto ztVisit(ZTVariant& variant, Callable&& callable)
{
    return zt::detail::visit<Types...>(variant, callable);
}
