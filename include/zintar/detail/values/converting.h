#pragma once

#include <zintar/detail/signature.h>
#include <zintar/metatypeof.h>

#include <memory>
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
        return pass(source, [&](auto&& value) {
            replace(*static_cast<Target*>(target), std::forward<decltype(value)>(value));
        });
    }
    static bool convertToOptional(const void* source, void* target)
    {
        return pass(source, [&](auto&& value) {
            static_cast<std::optional<Target>*>(target)->emplace(
                std::forward<decltype(value)>(value));
        });
    }
    static void add()
    {
        const ZTMetaType& source = ::ztMetaType<Held<Source>>();
        ztRegisterConverter(source, ::ztMetaType<Target>(), &convert);
        // Nobody has a value to convert into but who has one already.
        if constexpr (!std::is_default_constructible_v<Target>)
            ztRegisterConverter(source, ::ztMetaType<std::optional<Target>>(), &convertToOptional);
    }

private:
    /// Hands on what the converter gives, if it gives something.
    template <class Take>
    static bool pass(const void* source, const Take& take)
    {
        if (!source)
            return false;
        Result result = Convert()(passAs<Source>(*static_cast<const Held<Source>*>(source)));
        if constexpr (Converted<Result>::always)
            take(std::move(result));
        else if (result)
            take(*std::move(result));
        else
            return false;
        return true;
    }
    template <class Value>
    static void replace(Target& target, Value&& value)
    {
        if constexpr (std::is_assignable_v<Target&, Value&&>) {
            target = std::forward<Value>(value);
        } else {
            static_assert(std::is_nothrow_constructible_v<Target, Value&&>,
                          "ztRegisterConverter: a type that cannot be assigned has to be moved "
                          "without exceptions.");
            std::destroy_at(&target);
            std::construct_at(&target, std::forward<Value>(value));
        }
    }
};
} // namespace zt::detail
