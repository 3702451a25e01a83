#pragma once

#include <zintar/base.h>
#include <zintar/detail/calls.h>

#include <type_traits>
#include <utility>

/// @file
/// The functions that the table of a declared class calls for each of its members.

namespace zt::detail
{
template <auto Member>
ZTVariant invokeMember(const ZTVariant& object, const ZTArgumentArray& arguments)
{
    using Traits = MemberTraits<decltype(Member)>;
    auto* self = objectIn<typename Traits::Object>(object);
    if (!self)
        return {};
    return callBoxed<typename Traits::Result>(
        *self,
        [self](auto&&... values) -> decltype(auto) {
            return (self->*Member)(std::forward<decltype(values)>(values)...);
        },
        arguments, typename Traits::Params{});
}

template <auto Member>
ZTVariant getProperty(const ZTVariant& object)
{
    using Traits = MemberTraits<decltype(Member)>;
    auto* self = objectIn<const typename Traits::Class>(object);
    if (!self)
        return {};
    if constexpr (Traits::isFunction)
        return boxResult((self->*Member)());
    else
        return boxResult(self->*Member);
}

template <auto Member, class P>
ZTVariant callSetter(const ZTVariant& object, const ZTVariant& value, Parameters<P>)
{
    using Class = typename MemberTraits<decltype(Member)>::Class;
    return storeUnboxed<Class, P>(object, value, [](Class& self, const Held<P>& held) {
        (void)(self.*Member)(passAs<P>(held));
    });
}

template <auto Member>
ZTVariant setByFunction(const ZTVariant& object, const ZTVariant& value)
{
    return callSetter<Member>(object, value, typename MemberTraits<decltype(Member)>::Params{});
}

template <auto Member>
ZTVariant setField(const ZTVariant& object, const ZTVariant& value)
{
    using Traits = MemberTraits<decltype(Member)>;
    using Class = typename Traits::Class;
    using Field = typename Traits::Result;
    return storeUnboxed<Class, Field>(object, value, [](Class& self, const Held<Field>& held) {
        self.*Member = static_cast<Field>(held);
    });
}
} // namespace zt::detail
