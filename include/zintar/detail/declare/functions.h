#pragma once

#include <zintar/base.h>
#include <zintar/detail/calls.h>
#include <zintar/detail/lifewatch.h>

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

// What stands behind a member. The plain way is short and is made for each; what has to convert,
// watch or warn is called, and made once for a signature.

template <class Method, class... P>
[[gnu::always_inline]] inline ZTVariant
callMember(const ZTVariant& object, const ZTArgumentArray& arguments, ObjectSource& source,
           Method method, Parameters<P...> parameters)
{
    ZTBase* self = objectIn(object, source);
    if (!self)
        return {};
    return callBoxed<typename MemberTraits<Method>::Result>(
        *self,
        [self, method](auto&&... values) -> decltype(auto) {
            return (self->*method)(std::forward<decltype(values)>(values)...);
        },
        arguments, parameters);
}

template <class Method, class P>
[[gnu::always_inline]] inline ZTVariant setByMethod(const ZTVariant& object, const ZTVariant& value,
                                                    ObjectSource& source, Method setter,
                                                    Parameters<P>)
{
    return storeUnboxed<P>(object, value, source, [setter](ZTBase& self, const Held<P>& held) {
        (void)(self.*setter)(passAs<P>(held));
    });
}

template <class Field>
[[gnu::always_inline]] inline ZTVariant setField(const ZTVariant& object, const ZTVariant& value,
                                                 ObjectSource& source, Field ZTBase::*field)
{
    return storeUnboxed<Field>(
        object, value, source,
        [field](ZTBase& self, const Held<Field>& held) { self.*field = static_cast<Field>(held); });
}

// The functions of a record.

template <auto Method>
ZTVariant invokeMember(const ZTVariant& object, const ZTArgumentArray& arguments)
{
    using Traits = MemberTraits<decltype(Method)>;
    return callMember(object, arguments, objectSource<typename Traits::Object>,
                      asRootMember<Method>(), typename Traits::Params());
}

template <auto Getter>
ZTVariant getProperty(const ZTVariant& object)
{
    using Traits = MemberTraits<decltype(Getter)>;
    const ZTBase* self = objectIn(object, objectSource<const typename Traits::Class>);
    constexpr auto getter = asRootMember<Getter>();
    if (!self)
        return ZTVariant();
    if constexpr (Traits::isFunction)
        return boxResult((self->*getter)());
    else
        return boxResult(self->*getter);
}

template <auto Setter>
ZTVariant setProperty(const ZTVariant& object, const ZTVariant& value)
{
    using Traits = MemberTraits<decltype(Setter)>;
    auto& source = objectSource<typename Traits::Class>;
    if constexpr (Traits::isFunction)
        return setByMethod(object, value, source, asRootMember<Setter>(),
                           typename Traits::Params());
    else
        return setField(object, value, source, asRootMember<Setter>());
}

/// Whether the event takes what there is to tell of a change: the value of the data member, that
/// and the one before, or nothing.
/// @tparam Field  null where the property is no data member that can be set
template <auto Field, auto Event>
constexpr bool canAnnounce()
{
    using Announced = std::remove_cv_t<decltype(Event)>;
    constexpr bool isField = !std::is_null_pointer_v<decltype(Field)>;
    if constexpr (isField && std::is_member_function_pointer_v<Announced> && HasTraits<Announced>) {
        using FieldTraits = MemberTraits<std::remove_cv_t<decltype(Field)>>;
        using Class = typename FieldTraits::Class;
        using EventClass = typename MemberTraits<Announced>::Class;
        using Params = typename MemberTraits<Announced>::Params;
        constexpr bool areRelated = !isObjectClass<Class> || std::is_base_of_v<Class, EventClass> ||
                                    std::is_base_of_v<EventClass, Class>;
        using Value = typename FieldTraits::Result;
        return areRelated && Params::lead(Parameters<Value, Value>());
    } else {
        return false;
    }
}

/// The class of which an object is that has both: the one derives from the other.
template <auto Field, auto Event>
using ObjectOf = std::conditional_t<
    std::is_base_of_v<typename MemberTraits<std::remove_cv_t<decltype(Field)>>::Class,
                      typename MemberTraits<std::remove_cv_t<decltype(Event)>>::Class>,
    typename MemberTraits<std::remove_cv_t<decltype(Event)>>::Class,
    typename MemberTraits<std::remove_cv_t<decltype(Field)>>::Class>;

template <auto Event, class Object, class... P, class... Values>
void announce(Object& self, Parameters<P...>, const Values&... values)
{
    (self.*Event)(passAs<P>(values)...);
}

/// Sets a data member and raises its change event, if the value is another one.
template <class Object, auto Field, auto Event>
ZTVariant setAndNotify(const ZTVariant& object, const ZTVariant& value)
{
    using Value = typename MemberTraits<decltype(Field)>::Result;
    using Traits = MemberTraits<decltype(Event)>;
    const auto setIn = [](ZTBase& base, const Held<Value>& held) {
        auto& self = static_cast<Object&>(base);
        auto given = static_cast<Value>(held);
        // What compares, copies and assigns may be code of the host that ends the object.
        const ZTLifeWatch watch(&base);
        if constexpr (hasEquality<Value>)
            if (self.*Field == given || !watch.isStill(&base))
                return;
        const auto setAndTell = [&](const auto&... values) {
            self.*Field = std::move(given);
            if (watch.isStill(&base))
                announce<Event>(self, typename Traits::Params(), values...);
        };
        if constexpr (Traits::Params::count == 0) {
            setAndTell();
        } else if constexpr (Traits::Params::count == 1) {
            setAndTell(held);
        } else {
            const auto before = static_cast<Held<Value>>(self.*Field);
            if (watch.isStill(&base))
                setAndTell(held, before);
        }
    };
    return storeUnboxed<Value>(object, value, objectSource<Object>, setIn);
}
} // namespace zt::detail
