#pragma once

#include <zintar/detail/calls.h>
#include <zintar/detail/declare/record.h>
#include <zintar/detail/signature.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>

/// @file
/// What is listed: the default arguments of parameters. A list is constant data, so what cannot be
/// constant is kept as what it is made of: a number, a text, a function.

namespace zt::detail
{
/// The type of a parameter, counted from the end: 1 is the last.
template <class Params, std::size_t FromEnd>
struct FromEndOf;
template <class... P, std::size_t FromEnd>
struct FromEndOf<Parameters<P...>, FromEnd> {
    using type = std::tuple_element_t<sizeof...(P) - FromEnd, std::tuple<P...>>;
};
template <class Params, std::size_t FromEnd>
using ParameterFromEnd = typename FromEndOf<Params, FromEnd>::type;

template <class Value>
inline constexpr bool isTextValue =
    std::is_convertible_v<const Value&, std::string_view> && !std::is_null_pointer_v<Value>;

/// A function without parameters and captures.
template <class Value>
concept ValueMaker = std::is_empty_v<Value> && std::is_default_constructible_v<Value> &&
    requires(Value make)
{
    make();
};

template <class Held, class Value>
constexpr bool fitsAsDefault()
{
    constexpr bool isAny = std::is_same_v<Held, ZTVariant>;
    if constexpr (isTextValue<Value>)
        return isAny || std::is_same_v<Held, std::string>;
    else if constexpr (std::is_null_pointer_v<Value>)
        return std::is_pointer_v<Held>;
    else if constexpr (ValueMaker<Value>)
        return std::is_convertible_v<decltype(Value()()), Held>;
    else if constexpr (std::is_enum_v<Value> || std::is_same_v<Value, bool>)
        return isAny || std::is_same_v<Held, Value>;
    else if constexpr (std::is_floating_point_v<Value>)
        return isAny || std::is_floating_point_v<Held>;
    else if constexpr (std::is_integral_v<Value>)
        return isAny || (std::is_arithmetic_v<Held> && !std::is_same_v<Held, bool>);
    else
        return false;
}

template <class Params, class... Values, std::size_t... I>
constexpr bool doDefaultsFit(std::index_sequence<I...>)
{
    return (fitsAsDefault<Held<ParameterFromEnd<Params, sizeof...(I) - I>>, Values>() && ...);
}

/// A number that is not one of `Held` is no default value of it.
template <class Held, class Value>
constexpr bool isIn(Value value)
{
    if constexpr (std::is_integral_v<Held> && std::is_integral_v<Value>)
        return static_cast<Value>(static_cast<Held>(value)) == value &&
               (static_cast<Held>(value) < Held()) == (value < Value());
    else
        return true;
}

template <class Held, class Value>
ZTVariant makeDefault(const ListedDefault& listed)
{
    constexpr bool isAny = std::is_same_v<Held, ZTVariant>;
    using Wanted = std::conditional_t<isAny, Value, Held>;
    if constexpr (isTextValue<Value>)
        return ZTVariant(listed.text);
    else if constexpr (std::is_null_pointer_v<Value>)
        return ZTVariant(Held(nullptr));
    else if constexpr (ValueMaker<Value>)
        return ZTVariant(static_cast<Held>(Value()()));
    else if constexpr (std::is_floating_point_v<Value>)
        return ZTVariant(static_cast<Wanted>(listed.number));
    else
        return ZTVariant(static_cast<Wanted>(static_cast<Value>(listed.integer)));
}

/// Whether the value is within what the parameter holds.
/// @tparam P  the type of the parameter
template <class P, class Value>
constexpr bool isDefaultOf([[maybe_unused]] const Value& value)
{
    if constexpr (std::is_integral_v<Value> || std::is_enum_v<Value>)
        return isIn<Held<P>>(value);
    else
        return true;
}

/// @tparam P  the type of the parameter
template <class P, class Value>
constexpr ListedDefault listDefault(const Value& value)
{
    using Type = std::remove_cv_t<Value>;
    ListedDefault listed;
    listed.make = &makeDefault<Held<P>, Type>;
    if constexpr (isTextValue<Type>) {
        listed.text = value;
    } else if constexpr (std::is_floating_point_v<Type>) {
        listed.number = static_cast<double>(value);
    } else if constexpr (std::is_integral_v<Type> || std::is_enum_v<Type>) {
        listed.integer = static_cast<long long>(value);
    }
    return listed;
}
} // namespace zt::detail
