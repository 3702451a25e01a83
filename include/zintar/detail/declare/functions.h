#pragma once

#include <zintar/base.h>
#include <zintar/detail/calls.h>

#include <type_traits>
#include <utility>

/// @file
/// The functions made of what is listed: those that the table of a declared class calls.
///
/// A record holds plain functions, one for each member. Such a function has in it what it needs for
/// values that are plain: the call itself is one that the compiler sees through. Whatever may run
/// code of the host, convert or warn is made once for all members of a signature, whatever their
/// class: a pointer to a member of an object class is one to a member of `ZTBase`.

namespace zt::detail
{
template <class Member>
struct RootMember;
template <class R, class C>
struct RootMember<R C::*> {
    using type = R ZTBase::*;
};

/// The member as one of the root. Only to be used on an object of the class that it is of.
template <auto Member>
constexpr auto asRootMember()
{
    using Type = typename RootMember<std::remove_cv_t<decltype(Member)>>::type;
    if constexpr (requires { static_cast<Type>(Member); })
        return static_cast<Type>(Member);
    else
        return Type(); // of a class that the checks refuse
}

// For each signature.

template <class R, class... P>
[[gnu::always_inline]] inline ZTVariant callMember(const ZTVariant& object,
                                                   const ZTArgumentArray& arguments,
                                                   ObjectSource& source, R (ZTBase::*member)(P...))
{
    ZTBase* self = objectIn(object, source);
    if (!self)
        return {};
    return callBoxed<R>(
        *self,
        [self, member](auto&&... values) -> decltype(auto) {
            return (self->*member)(std::forward<decltype(values)>(values)...);
        },
        arguments, Parameters<P...>());
}

template <class R, class... P>
[[gnu::always_inline]] inline ZTVariant
callMember(const ZTVariant& object, const ZTArgumentArray& arguments, ObjectSource& source,
           R (ZTBase::*member)(P...) const)
{
    const ZTBase* self = objectIn(object, source);
    if (!self)
        return {};
    return callBoxed<R>(
        *self,
        [self, member](auto&&... values) -> decltype(auto) {
            return (self->*member)(std::forward<decltype(values)>(values)...);
        },
        arguments, Parameters<P...>());
}

template <class R>
[[gnu::always_inline]] inline ZTVariant getMember(const ZTVariant& object, ObjectSource& source,
                                                  R (ZTBase::*getter)() const)
{
    const ZTBase* self = objectIn(object, source);
    return self ? boxResult((self->*getter)()) : ZTVariant();
}

template <class Field>
    requires(!std::is_function_v<Field>)
[[gnu::always_inline]] inline ZTVariant getMember(const ZTVariant& object, ObjectSource& source,
                                                  Field ZTBase::*field)
{
    const ZTBase* self = objectIn(object, source);
    return self ? boxResult(self->*field) : ZTVariant();
}

template <class R, class P>
[[gnu::always_inline]] inline ZTVariant setMember(const ZTVariant& object, const ZTVariant& value,
                                                  ObjectSource& source, R (ZTBase::*setter)(P))
{
    return storeUnboxed<P>(object, value, source, [setter](ZTBase& self, const Held<P>& held) {
        (void)(self.*setter)(passAs<P>(held));
    });
}

template <class R, class P>
[[gnu::always_inline]] inline ZTVariant setMember(const ZTVariant& object, const ZTVariant& value,
                                                  ObjectSource& source,
                                                  R (ZTBase::*setter)(P) const)
{
    return storeUnboxed<P>(object, value, source, [setter](ZTBase& self, const Held<P>& held) {
        (void)(self.*setter)(passAs<P>(held));
    });
}

template <class Field>
    requires(!std::is_function_v<Field>)
[[gnu::always_inline]] inline ZTVariant setMember(const ZTVariant& object, const ZTVariant& value,
                                                  ObjectSource& source, Field ZTBase::*field)
{
    return storeUnboxed<Field>(
        object, value, source,
        [field](ZTBase& self, const Held<Field>& held) { self.*field = static_cast<Field>(held); });
}

// For each member.

template <auto Member>
ZTVariant invokeMember(const ZTVariant& object, const ZTArgumentArray& arguments)
{
    return callMember(object, arguments,
                      objectSource<typename MemberTraits<decltype(Member)>::Object>,
                      asRootMember<Member>());
}

template <auto Getter>
ZTVariant getProperty(const ZTVariant& object)
{
    return getMember(object, objectSource<const typename MemberTraits<decltype(Getter)>::Class>,
                     asRootMember<Getter>());
}

template <auto Setter>
ZTVariant setProperty(const ZTVariant& object, const ZTVariant& value)
{
    return setMember(object, value, objectSource<typename MemberTraits<decltype(Setter)>::Class>,
                     asRootMember<Setter>());
}
} // namespace zt::detail
