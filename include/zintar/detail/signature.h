#pragma once

#include <zintar/variant.h>

#include <cstddef>
#include <tuple>
#include <type_traits>
#include <typeindex>
#include <typeinfo>

/// @file
/// Functions as types: their class, result and parameters, and the types as which the library
/// carries values of them.

namespace zt::detail
{
/// The type as which an argument for a parameter `P` travels.
template <class P>
using Held = ValueType<P>;

/// The type that is asked for when an argument is taken out of a variant; it shows in warnings.
template <class P>
using Asked = std::conditional_t<std::is_same_v<std::decay_t<P>, Held<P>>,
                                 std::remove_reference_t<P>, Held<P>>;

/// A held value, as the function with the parameter `P` takes it.
template <class P>
decltype(auto) passAs(const Held<P>& value)
{
    if constexpr (std::is_same_v<std::decay_t<P>, const char*>)
        return value.c_str();
    else if constexpr (std::is_same_v<std::decay_t<P>, Held<P>>)
        return (value);
    else
        return static_cast<std::decay_t<P>>(value);
}

template <class P>
inline constexpr bool isPlainParameter =
    !std::is_rvalue_reference_v<P> &&
    (!std::is_lvalue_reference_v<P> ||
     std::is_const_v<std::remove_reference_t<P>>)&&!std::is_same_v<std::decay_t<P>, char*>;

template <class... Parameters>
inline constexpr TypeGetter parameterTypes[] = {&::ztMetaType<Held<Parameters>>..., nullptr};

/// A list of parameter types.
template <class... P>
struct Parameters {
    static constexpr unsigned int count = sizeof...(P);
    static constexpr bool plain = (isPlainParameter<P> && ...);
    static constexpr const TypeGetter* types = parameterTypes<P...>;

    static std::type_index signature() { return typeid(void (*)(P...)); }

    /// Whether these are the leading ones of `All`, as the library carries them.
    template <class... All>
    static constexpr bool lead(Parameters<All...>)
    {
        if constexpr (sizeof...(P) > sizeof...(All))
            return false;
        else
            return leadBy(Parameters<All...>{}, std::make_index_sequence<sizeof...(P)>());
    }

private:
    template <class... All, std::size_t... I>
    static constexpr bool leadBy(Parameters<All...>, std::index_sequence<I...>)
    {
        return (std::is_same_v<Held<P>, Held<std::tuple_element_t<I, std::tuple<All...>>>> && ...);
    }
};

/// What a pointer to a member is made of.
template <class Member>
struct MemberTraits;

template <class R, class C, class... P>
struct MemberTraits<R (C::*)(P...)> {
    using Class = C;
    using Result = R;
    using Params = Parameters<P...>;
    using Object = C;
    static constexpr bool isFunction = true;
    static constexpr bool isConst = false;
};
template <class R, class C, class... P>
struct MemberTraits<R (C::*)(P...) const> : MemberTraits<R (C::*)(P...)> {
    using Object = const C;
    static constexpr bool isConst = true;
};
template <class R, class C, class... P>
struct MemberTraits<R (C::*)(P...) noexcept> : MemberTraits<R (C::*)(P...)> {};
template <class R, class C, class... P>
struct MemberTraits<R (C::*)(P...) const noexcept> : MemberTraits<R (C::*)(P...) const> {};
template <class R, class C>
    requires(!std::is_function_v<R>)
struct MemberTraits<R C::*> {
    using Class = C;
    using Result = R;
    using Object = C;
    static constexpr bool isFunction = false;
    static constexpr bool isConst = false;
};

/// Whether a pointer to a member is one that the library knows: a member function that is volatile,
/// variadic or qualified with & is not.
template <class Member>
concept HasTraits = requires
{
    typename MemberTraits<Member>::Class;
};

/// The result and the parameters of a callable: of a function, or of the one call operator of an
/// object.
template <class F>
struct CallableTraits {};
template <class R, class... P>
struct CallableTraits<R (*)(P...)> {
    using Result = R;
    using Params = Parameters<P...>;
};
template <class R, class... P>
struct CallableTraits<R (*)(P...) noexcept> : CallableTraits<R (*)(P...)> {};
template <class F>
    requires HasTraits<decltype(&F::operator())>
struct CallableTraits<F> {
    using Result = typename MemberTraits<decltype(&F::operator())>::Result;
    using Params = typename MemberTraits<decltype(&F::operator())>::Params;
};

template <class F>
concept PlainCallable = requires
{
    typename CallableTraits<F>::Params;
};

/// Whether there is nothing to call: a null pointer, or an empty `std::function`.
template <class F>
bool isNullCallable(const F& callable)
{
    if constexpr (!std::is_empty_v<F> && requires { callable == nullptr; })
        return callable == nullptr;
    else
        return false;
}

/// A variable that holds a pointer to a member: what a class is asked for. Each program and plugin
/// has its own, since the address of an inline member function may differ between them.
template <auto Member>
[[gnu::visibility("hidden")]] inline constexpr auto memberVariable = Member;

template <auto Member>
void* memberKey()
{
    return const_cast<void*>(static_cast<const void*>(&memberVariable<Member>));
}
} // namespace zt::detail
