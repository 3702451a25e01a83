#pragma once

#include <zintar/detail/calls.h>
#include <zintar/detail/declare/functions.h>
#include <zintar/detail/declare/record.h>

#include <initializer_list>
#include <type_traits>
#include <utility>

/// @file
/// What is listed: the members of a base that is no object class. Such a member does not tell in
/// which object class it is, so its functions are made when the class is known that lists it.

namespace zt::detail
{
template <class... Bindings>
struct BindingList {};

// Arrays and no folds where there is one for each member: compilers nest these.

constexpr bool areAllTrue(std::initializer_list<bool> answers)
{
    for (bool answer : answers)
        if (!answer)
            return false;
    return true;
}

template <class Member>
inline constexpr bool isForeign = false;
template <class Member>
    requires(HasTraits<Member>)
inline constexpr bool isForeign<Member> = !isObjectClass<typename MemberTraits<Member>::Class>;

/// Whether an object of class `C` has the member.
template <class C, auto Member>
constexpr bool hasMember()
{
    if constexpr (HasTraits<std::remove_cv_t<decltype(Member)>>)
        return std::is_convertible_v<
            C*, typename MemberTraits<std::remove_cv_t<decltype(Member)>>::Class*>;
    else
        return std::is_null_pointer_v<decltype(Member)>;
}

template <class C, class Member>
struct MemberIn;
template <class C, class R, class Base>
struct MemberIn<C, R Base::*> {
    using type = R C::*;
};
/// Holds the pointer to a member as one of class `C`, which tells virtual functions of several
/// bases apart.
template <class C, auto Member>
[[gnu::visibility("hidden")]] inline constexpr
    typename MemberIn<C, std::remove_cv_t<decltype(Member)>>::type memberVariableIn = Member;

/// The base of an object of which the member is.
template <auto Member, class Object>
auto& partWith(Object& object)
{
    using Base = typename MemberTraits<std::remove_cv_t<decltype(Member)>>::Class;
    return static_cast<std::conditional_t<std::is_const_v<Object>, const Base, Base>&>(object);
}

template <class C, auto Method>
ZTVariant invokeIn(const ZTVariant& object, const ZTArgumentArray& arguments)
{
    using Traits = MemberTraits<decltype(Method)>;
    using Object = std::conditional_t<Traits::isConst, const C, C>;
    auto* self = objectIn<Object>(object);
    if (!self)
        return {};
    return callBoxed<typename Traits::Result>(
        *self,
        [&part = partWith<Method>(*self)](auto&&... values) -> decltype(auto) {
            return (part.*Method)(std::forward<decltype(values)>(values)...);
        },
        arguments, typename Traits::Params());
}

template <class C, auto Getter>
ZTVariant getIn(const ZTVariant& object)
{
    const C* self = objectIn<const C>(object);
    if (!self)
        return {};
    if constexpr (MemberTraits<decltype(Getter)>::isFunction)
        return boxResult((partWith<Getter>(*self).*Getter)());
    else
        return boxResult(partWith<Getter>(*self).*Getter);
}

template <class C, auto Setter, class P>
ZTVariant setBy(const ZTVariant& object, const ZTVariant& value, Parameters<P>)
{
    return storeUnboxed<P>(object, value, objectSource<C>, [](ZTBase& self, const Held<P>& held) {
        (void)(partWith<Setter>(static_cast<C&>(self)).*Setter)(passAs<P>(held));
    });
}

template <class C, auto Setter>
ZTVariant setIn(const ZTVariant& object, const ZTVariant& value)
{
    using Traits = MemberTraits<decltype(Setter)>;
    if constexpr (Traits::isFunction) {
        return setBy<C, Setter>(object, value, typename Traits::Params());
    } else {
        using Field = typename Traits::Result;
        return storeUnboxed<Field>(
            object, value, objectSource<C>, [](ZTBase& self, const Held<Field>& held) {
                partWith<Setter>(static_cast<C&>(self)).*Setter = static_cast<Field>(held);
            });
    }
}

template <auto Method>
struct MethodBinding {
    template <class C>
    static constexpr bool fits = hasMember<C, Method>();

    template <class C>
    static constexpr void bind(MemberRecord& record)
    {
        record.invokable.function = &invokeIn<C, Method>;
        record.invokable.key = &memberVariableIn<C, Method>;
    }
};

/// @tparam Setter  the data member itself where that can be set, or null
/// @tparam Event   the event that announces a change of the data member, or null
template <auto Getter, auto Setter, auto Event = nullptr>
struct PropertyBinding {
    template <auto ChangeEvent>
    using Notifying = PropertyBinding<Getter, Setter, ChangeEvent>;

    template <class C>
    static constexpr bool fits = hasMember<C, Getter>() && hasMember<C, Setter>();

    template <class C>
    static constexpr void bind(MemberRecord& record)
    {
        record.property.getter = &getIn<C, Getter>;
        if constexpr (!std::is_null_pointer_v<decltype(Event)> && hasMember<C, Event>())
            record.property.setter = &setAndNotify<C, Setter, Event>;
        else if constexpr (!std::is_null_pointer_v<decltype(Setter)>)
            record.property.setter = &setIn<C, Setter>;
    }
};

template <class C, class Binding>
constexpr bool canBind()
{
    if constexpr (std::is_void_v<Binding>)
        return true;
    else
        return Binding::template fits<C>;
}

template <class C, class... Bindings>
constexpr bool canBindAll(BindingList<Bindings...>)
{
    return areAllTrue({canBind<C, Bindings>()...});
}

template <class C, class Binding>
constexpr void bindOne(MemberRecord& record)
{
    if constexpr (!std::is_void_v<Binding> && canBind<C, Binding>())
        Binding::template bind<C>(record);
}

/// The members of a list, with their functions in class `C`.
template <class C, class Members, class... Bindings>
constexpr Members bound(Members members, BindingList<Bindings...>)
{
    [[maybe_unused]] auto* record = members.data();
    [[maybe_unused]] const bool done[] = {true, (bindOne<C, Bindings>(*record++), true)...};
    return members;
}
} // namespace zt::detail
