#pragma once

#include <zintar/declare.h>

#include <cstddef>
#include <string_view>

/// @file
/// The name of a property, from the member that it is: what the compiler checks, where a text might
/// be misspelled or become stale.
///
///     ztBind(&sensor, zt::propertyName<&Sensor::celsius>,
///            &gauge, zt::propertyName<&Gauge::level>);
///     thermostat.setProperty(zt::propertyName<&Thermostat::target>, 21.5);

namespace zt
{
namespace detail
{
/// Empty if the class of the member lists no such property.
template <auto Member>
constexpr std::string_view findPropertyName()
{
    using Class = typename MemberTraits<decltype(Member)>::Class;
    if constexpr (isDeclared<Class>()) {
        const auto& list = declaredList<Class>;
        const MemberIdentity& wanted = memberIdentity<Member>;
        for (std::size_t i = 0; i < list.members.size(); ++i) {
            const MemberIdentity& listed = *list.identities[i];
            if (list.members[i].kind == MemberKind::Property && listed.text == wanted.text &&
                !isKnownOther(listed.type, wanted.type))
                return list.members[i].name;
        }
    }
    return {};
}

template <auto Member>
constexpr std::string_view checkedPropertyName()
{
    constexpr std::string_view name = findPropertyName<Member>();
    static_assert(!name.empty(),
                  "zt::propertyName: no property of the class is this data member, or read by this "
                  "function.");
    return name;
}
} // namespace detail

/// @tparam Member  the data member or the getter that stands in `zt::property<...>()`, of the class
///                 that lists it
template <auto Member>
inline constexpr std::string_view propertyName = detail::checkedPropertyName<Member>();
} // namespace zt
