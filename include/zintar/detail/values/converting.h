#pragma once

#include <zintar/detail/signature.h>
#include <zintar/metatypeof.h>

#include <optional>
#include <type_traits>
#include <utility>

/// @file
/// A host's converter behind the untyped function that the registry keeps.

namespace zt::detail
{
/// What a converter gives where it may refuse a value, and where it never does.
template <class Result>
struct Converted {
    using type = Result;
    static constexpr bool always = true;
};
template <class T>
struct Converted<std::optional<T>> {
    using type = T;
    static constexpr bool always = false;
};

template <class Convert>
concept StatelessCallable =
    PlainCallable<Convert> && std::is_empty_v<Convert> && std::is_default_constructible_v<Convert>;

/// A converter, and the types of its parameter and result.
template <class Convert, class Params>
struct TypedConverter {
    static_assert(sizeof(Convert) == 0,
                  "ztRegisterConverter: a converter takes one value, or a reference to const.");
    static void add() {}
};
template <StatelessCallable Convert, class Source>
    requires(isPlainParameter<Source>)
struct TypedConverter<Convert, Parameters<Source>> {
    using Result = typename CallableTraits<Convert>::Result;
    using Target = Held<typename Converted<Result>::type>;

    /// Null is what a variant without a block gives, which has no value to convert.
    static bool convert(const void* source, void* target)
    {
        if (!source)
            return false;
        Result result = Convert()(passAs<Source>(*static_cast<const Held<Source>*>(source)));
        if constexpr (Converted<Result>::always)
            *static_cast<Target*>(target) = std::move(result);
        else if (result)
            *static_cast<Target*>(target) = *std::move(result);
        else
            return false;
        return true;
    }
    static void add()
    {
        ztRegisterConverter(::ztMetaType<Held<Source>>(), ::ztMetaType<Target>(), &convert);
    }
};
} // namespace zt::detail
