#pragma once

#include <zintar/detail/calls.h>
#include <zintar/detail/constructors.h>
#include <zintar/detail/declare/classchecks.h>
#include <zintar/detail/declare/constructorentry.h>

#include <array>
#include <cstddef>
#include <utility>

/// @file
/// What makes the objects of a declared class.

namespace zt::detail
{
/// By the constructor without parameters, or by the one with a parent.
template <class C>
ZTBase* makePlain(const ZTVariant*)
{
    if constexpr (canMake<C>)
        return new C();
    else
        return new C(static_cast<ZTBase*>(nullptr));
}

/// @param arguments  of exactly the types of the parameters
template <class C, class... P, std::size_t... I>
ZTBase* makeFrom(const ZTVariant* arguments, std::index_sequence<I...>)
{
    return new C(passAs<P>(*static_cast<const Canonical<Held<P>>*>(arguments[I].data()))...);
}

template <class C, class... P>
ZTBase* makeOf(const ZTVariant* arguments)
{
    return makeFrom<C, P...>(arguments, std::index_sequence_for<P...>());
}

template <class C, class... P>
constexpr ConstructorRecord constructorRecord(Parameters<P...>)
{
    return {sizeof...(P), Parameters<P...>::types, &makeOf<C, P...>};
}

template <class C, class... Params>
constexpr auto constructorRecords(ConstructorParameters<Params...>)
{
    constexpr bool hasPlain = canMake<C> || canMakeWithParent<C>;
    std::array<ConstructorRecord, sizeof...(Params) + hasPlain> records{};
    [[maybe_unused]] std::size_t count = 0;
    if constexpr (hasPlain)
        records[count++] = {0, Parameters<>::types, &makePlain<C>};
    ((records[count++] = constructorRecord<C>(Params())), ...);
    return records;
}

template <class C>
[[gnu::visibility("hidden")]] inline constexpr auto
    constructorRecordsOf = constructorRecords<C>(ListedConstructors<C>());

template <class C>
[[gnu::visibility("hidden")]] inline constexpr ConstructorList constructorsOf{
    constructorRecordsOf<C>.data(), constructorRecordsOf<C>.size(), std::is_abstract_v<C>};
} // namespace zt::detail
