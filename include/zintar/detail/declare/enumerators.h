#pragma once

#include <zintar/detail/declare/list.h>
#include <zintar/detail/declare/names.h>
#include <zintar/enumeration.h>
#include <zintar/metatypeof.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <string>
#include <string_view>
#include <type_traits>

/// @file
/// What is listed: the enumerators of an enumeration: their names and their values.

namespace zt
{
namespace detail
{
/// An enumerator with a name that a host gives, for the compiler's names are those of values.
template <class Enum, std::size_t Size>
struct NamedEnumerator {
    Enum value;
    char name[Size];
};

template <class T>
inline constexpr bool isNamedEnumerator = false;
template <class Enum, std::size_t Size>
inline constexpr bool isNamedEnumerator<NamedEnumerator<Enum, Size>> = true;

template <auto Value>
constexpr std::string_view nameOfEnumerator()
{
    using T = std::remove_cv_t<decltype(Value)>;
    if constexpr (isNamedEnumerator<T>)
        return {std::data(Value.name), std::size(Value.name) - 1};
    else
        return enumeratorName<Value>();
}

template <auto Value>
constexpr auto valueOfEnumerator()
{
    if constexpr (isNamedEnumerator<std::remove_cv_t<decltype(Value)>>)
        return Value.value;
    else
        return Value;
}

template <auto Value, class Enum>
constexpr bool isOf()
{
    return std::is_same_v<std::remove_cv_t<decltype(valueOfEnumerator<Value>())>, Enum>;
}

template <auto Value>
constexpr bool fitsInt()
{
    using Number = std::underlying_type_t<std::remove_cv_t<decltype(Value)>>;
    return static_cast<Number>(static_cast<int>(Value)) == static_cast<Number>(Value);
}

template <auto... Values>
struct Enumerators {
    static constexpr std::size_t count = sizeof...(Values);
    static constexpr std::array<std::string_view, count + 1> names{nameOfEnumerator<Values>()...};

    static constexpr bool areNamed()
    {
        HashedPlaces<count> places;
        for (std::size_t i = 0; i < count; ++i) {
            const std::uint32_t hash = hashOf(names[i]);
            auto hasSameName = [&](std::size_t other) { return names[other] == names[i]; };
            if (names[i].empty() || places.find(hash, hasSameName))
                return false;
            places.add(hash, i);
        }
        return true;
    }

    template <class Enum>
    static constexpr bool areAllOf()
    {
        return areAllTrue({isOf<Values, Enum>()...});
    }

    static constexpr bool fitInt()
    {
        return areAllTrue({fitsInt<valueOfEnumerator<Values>()>()...});
    }
};

/// Instantiated for enumerators alone, behind the checks.
template <auto... Values>
inline constexpr std::array<int, sizeof...(Values) + 1> enumeratorNumbers{
    static_cast<int>(valueOfEnumerator<Values>())...};

/// How values convert by the enumeration of the type, whichever class declared it first.
template <class Enum>
struct EnumerationConverters {
    static bool toInt(const void* source, void* target)
    {
        if (!source)
            return false;
        const Enum value = *static_cast<const Enum*>(source);
        const int number = static_cast<int>(value);
        *static_cast<int*>(target) = number;
        return static_cast<Enum>(number) == value;
    }
    static bool fromInt(const void* source, void* target)
    {
        const bool isValue =
            source && isEnumerator(::ztMetaType<Enum>(), *static_cast<const int*>(source));
        if (isValue)
            *static_cast<Enum*>(target) = static_cast<Enum>(*static_cast<const int*>(source));
        return isValue;
    }
    static bool toText(const void* source, void* target)
    {
        int number = 0;
        return toInt(source, &number) &&
               enumeratorToText(::ztMetaType<Enum>(), number, *static_cast<std::string*>(target));
    }
    static bool fromText(const void* source, void* target)
    {
        int number = 0;
        const bool isName =
            source && textToEnumerator(::ztMetaType<Enum>(),
                                       *static_cast<const std::string*>(source), number);
        if (isName)
            *static_cast<Enum*>(target) = static_cast<Enum>(number);
        return isName;
    }
};

template <class Enum, bool IsFlags>
inline constexpr EnumerationType enumerationType{&::ztMetaType<Enum>,
                                                 IsFlags,
                                                 &EnumerationConverters<Enum>::toText,
                                                 &EnumerationConverters<Enum>::fromText,
                                                 &EnumerationConverters<Enum>::toInt,
                                                 &EnumerationConverters<Enum>::fromInt};

template <class Enum>
constexpr std::string_view bareName()
{
    std::string_view name = QualifiedName<Enum>::text;
    std::size_t last = name.rfind(':');
    return last == std::string_view::npos ? name : name.substr(last + 1);
}
} // namespace detail

/// An enumerator that is to have another name than its own, or whose value has one already: the
/// compiler tells one name for each value.
///
///     zt::enumerators<Mode::Off, Mode::Heat, zt::enumerator("Default", Mode::Off)>
template <class Enum, std::size_t Size>
constexpr detail::NamedEnumerator<Enum, Size> enumerator(const char (&name)[Size], Enum value)
{
    detail::NamedEnumerator<Enum, Size> named{value, {}};
    for (std::size_t i = 0; i < Size; ++i)
        named.name[i] = name[i];
    return named;
}

/// The enumerators of an enumeration, by their values.
template <auto... Values>
inline constexpr detail::Enumerators<Values...> enumerators{};
} // namespace zt
