#pragma once

#include <zintar/base.h>
#include <zintar/detail/calls.h>
#include <zintar/detail/declare/bindings.h>
#include <zintar/detail/declare/record.h>
#include <zintar/detail/signature.h>

#include <type_traits>

/// @file
/// The mistakes that the compiler can see in what a class lists.

namespace zt::detail
{
/// What can be wrong with a member that is listed. A check looks at each member once, and only
/// what is right goes further, so that a mistake is told by its sentence alone.
enum class MemberFault {
    None,
    Static,
    Field,
    Qualified,
    Foreign,
    Count,
    References,
    Incomplete,
    NotCopyable,
    Result,
    Getter,
    View,
    Setter,
    SetterType,
    NotAssignable,
    NoDefault
};

/// Whether values of the type can be carried.
template <class T>
constexpr MemberFault faultOfValue()
{
    using Value = std::remove_cvref_t<T>;
    if constexpr (std::is_void_v<Value>)
        return MemberFault::None;
    else if constexpr (std::is_array_v<Value> || std::is_same_v<std::decay_t<T>, void*>)
        return MemberFault::NotCopyable;
    else if constexpr (!Complete<Value>)
        return MemberFault::Incomplete;
    else
        return isCopyable<Held<T>> ? MemberFault::None : MemberFault::NotCopyable;
}

template <class... P>
constexpr MemberFault faultOfValues(Parameters<P...>)
{
    MemberFault fault = MemberFault::None;
    for (MemberFault next : {faultOfValue<P>()..., MemberFault::None})
        fault = fault == MemberFault::None ? next : fault;
    return fault;
}

/// What is wrong with a member of any kind.
template <MemberKind kind, class Member>
constexpr MemberFault faultOfMember()
{
    if constexpr (!std::is_member_pointer_v<Member>)
        return MemberFault::Static;
    else if constexpr (!HasTraits<Member>)
        return MemberFault::Qualified;
    else
        return kind == MemberKind::Event && isForeign<Member> ? MemberFault::Foreign
                                                              : MemberFault::None;
}

template <MemberKind kind, class Member>
constexpr MemberFault faultOfInvokable()
{
    constexpr MemberFault fault = faultOfMember<kind, Member>();
    if constexpr (fault != MemberFault::None) {
        return fault;
    } else if constexpr (!MemberTraits<Member>::isFunction) {
        return MemberFault::Field;
    } else {
        using Traits = MemberTraits<Member>;
        using Params = typename Traits::Params;
        if constexpr (kind == MemberKind::Event && !std::is_void_v<typename Traits::Result>)
            return MemberFault::Result;
        else if constexpr (Params::count > maxParamCount)
            return MemberFault::Count;
        else if constexpr (!Params::plain)
            return MemberFault::References;
        else if constexpr (faultOfValues(Params{}) != MemberFault::None)
            return faultOfValues(Params{});
        else
            return faultOfValue<typename Traits::Result>();
    }
}

template <class Member>
constexpr MemberFault faultOfGetter()
{
    constexpr MemberFault fault = faultOfMember<MemberKind::Property, Member>();
    if constexpr (fault != MemberFault::None) {
        return fault;
    } else {
        using Traits = MemberTraits<Member>;
        using Result = typename Traits::Result;
        if constexpr (Traits::isFunction) {
            if constexpr (!Traits::isConst || Traits::Params::count != 0 || std::is_void_v<Result>)
                return MemberFault::Getter;
            else
                return faultOfValue<Result>();
        } else if constexpr (isText<Result>) {
            return MemberFault::View; // a field that is not const can be set
        } else {
            return faultOfValue<Result>();
        }
    }
}

template <class Getter, class Setter>
constexpr MemberFault faultOfSetter()
{
    using Value = typename MemberTraits<Getter>::Result;
    if constexpr (std::is_null_pointer_v<Setter>) {
        if constexpr (MemberTraits<Getter>::isFunction || std::is_const_v<Value>)
            return MemberFault::None;
        else if constexpr (!std::is_assignable_v<Value&, Value>)
            return MemberFault::NotAssignable;
        else
            return std::is_default_constructible_v<Held<Value>> ? MemberFault::None
                                                                : MemberFault::NoDefault;
    } else if constexpr (std::is_member_function_pointer_v<Setter> && HasTraits<Setter>) {
        using Params = typename MemberTraits<Setter>::Params;
        if constexpr (Params::count != 1 || !Params::plain)
            return MemberFault::Setter;
        else if constexpr (!Params::lead(Parameters<Value>{}))
            return MemberFault::SetterType;
        else
            return std::is_default_constructible_v<Held<Value>> ? MemberFault::None
                                                                : MemberFault::NoDefault;
    } else {
        return MemberFault::Setter;
    }
}

template <MemberKind kind, auto Member, auto... Setter>
constexpr MemberFault faultOfEntry()
{
    if constexpr (kind != MemberKind::Property)
        return faultOfInvokable<kind, decltype(Member)>();
    else if constexpr (faultOfGetter<decltype(Member)>() != MemberFault::None)
        return faultOfGetter<decltype(Member)>();
    else
        return faultOfSetter<decltype(Member), decltype(Setter)...>();
}
} // namespace zt::detail
