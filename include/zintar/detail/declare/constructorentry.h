#pragma once

#include <zintar/detail/signature.h>

#include <cstddef>
#include <tuple>
#include <type_traits>
#include <utility>

/// @file
/// What is listed: constructors.

namespace zt::detail
{
/// A constructor in the list.
template <class... P>
struct ConstructorEntry {
    using Binding = void;

    static constexpr std::size_t memberCount = 0;
    static constexpr std::size_t infoCount = 0;
    static constexpr std::size_t defaultCount = 0;
};

/// One with a mistake that was told.
struct FaultyConstructor {
    using Binding = void;

    static constexpr std::size_t memberCount = 0;
    static constexpr std::size_t infoCount = 0;
    static constexpr std::size_t defaultCount = 0;
};

/// The parameters of several constructors, each a `Parameters`.
template <class... Params>
struct ConstructorParameters {};

template <class Entry>
inline constexpr bool isConstructorEntry = false;
template <class... P>
inline constexpr bool isConstructorEntry<ConstructorEntry<P...>> = true;

template <class... P>
Parameters<P...> parametersOf(ConstructorEntry<P...>);

template <class... Entries>
constexpr std::size_t countOfConstructors()
{
    std::size_t count = 0;
    for (bool isConstructor : {false, isConstructorEntry<Entries>...})
        count += isConstructor;
    return count;
}

/// The n-th constructor among what is listed.
template <std::size_t n, class... Entries>
constexpr std::size_t placeOfConstructor()
{
    const bool areConstructors[] = {isConstructorEntry<Entries>...};
    std::size_t place = 0;
    for (std::size_t left = n; left > 0 || !areConstructors[place]; ++place)
        left -= areConstructors[place];
    return place;
}

template <class... Entries, std::size_t... n>
auto constructorsAmong(std::index_sequence<n...>) -> ConstructorParameters<decltype(parametersOf(
    std::tuple_element_t<placeOfConstructor<n, Entries...>(), std::tuple<Entries...>>()))...>;

/// The constructors among what is listed. Mostly there are none, which costs next to nothing.
template <class... Entries>
using ConstructorsAmong = decltype(constructorsAmong<Entries...>(
    std::make_index_sequence<countOfConstructors<Entries...>()>()));
} // namespace zt::detail
