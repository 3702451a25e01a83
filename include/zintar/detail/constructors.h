#pragma once

#include <zintar/detail/signature.h>
#include <zintar/fwd.h>

#include <concepts>
#include <type_traits>

/// @file
/// The constructors of a class, as records that tell how objects of it are made.

namespace zt::detail
{
/// Constant data. What it makes an object from are variants of exactly the types of its parameters.
struct ConstructorRecord {
    unsigned int parameterCount;
    const TypeGetter* parameterTypes;
    ZTBase* (*make)(const ZTVariant* arguments);
};

/// The constructors of a class; one without parameters stands first.
struct ConstructorList {
    const ConstructorRecord* first;
    unsigned int count;
    bool isAbstract;
};

/// A parent, and nothing that a pointer converts to: a `bool`, say, or a text.
struct ParentAlone {
    template <class T>
        requires std::same_as<T, ZTBase*>
    operator T() const;
};

/// Whether an object can be made from those arguments, and from those with a parent behind them.
template <class C, class... Arguments>
inline constexpr bool canMake = std::is_constructible_v<C, Arguments...>;
template <class C, class... Arguments>
inline constexpr bool canMakeWithParent = std::is_constructible_v<C, Arguments..., ParentAlone>&&
    std::is_constructible_v<C, Arguments..., ZTBase*>;
} // namespace zt::detail
