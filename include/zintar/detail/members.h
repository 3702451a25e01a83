#pragma once

#include <zintar/detail/enumerators.h>
#include <zintar/detail/memberfaults.h>
#include <zintar/detail/memberfunctions.h>
#include <zintar/detail/memberlist.h>
#include <zintar/detail/membernames.h>

#include <cstddef>
#include <string_view>
#include <type_traits>

/// @file
/// What a class lists with `zt::members`: each member becomes one constant record.

namespace zt
{
/// An annotation of the class.
constexpr detail::ListedMember<0> info(std::string_view key, std::string_view value)
{
    detail::ListedMember<0> entry;
    entry.record.kind = detail::MemberKind::Info;
    entry.record.name = key;
    entry.record.value = value;
    return entry;
}

/// An enumeration: `zt::enumeration<Mode>(zt::enumerators<Mode::Off, Mode::Heat>)`.
template <class Enum, auto... Values>
constexpr detail::EnumerationEntry enumeration(detail::Enumerators<Values...>)
{
    using List = detail::Enumerators<Values...>;
    constexpr bool isEnum = std::is_enum_v<Enum>;
    constexpr bool areOwn = !isEnum || List::template areAllOf<Enum>();
    static_assert(isEnum, "zt::enumeration<E>: E is no enumeration.");
    static_assert(areOwn, "zt::enumeration<E>: an enumerator belongs to another enumeration.");
    detail::EnumerationEntry entry;
    entry.record.kind = detail::MemberKind::Enumeration;
    if constexpr (isEnum && areOwn) {
        static_assert(List::fitInt(),
                      "zt::enumeration<E>: the value of an enumerator does not fit into an int.");
        static_assert(List::areNamed(),
                      "zt::enumerators: a value has no name, or two have one name; give it by "
                      "zt::enumerator(\"name\", value).");
        entry.record.name = detail::bareName<Enum>();
        entry.record.enumerators = List::names.data();
        entry.record.values = detail::enumeratorNumbers<Values...>.data();
        entry.record.count = sizeof...(Values);
    }
    return entry;
}

namespace detail
{
template <MemberKind kind, auto Member>
constexpr InvokableEntry invokableEntry()
{
    constexpr MemberFault fault = faultOfInvokable<kind, decltype(Member)>();
    tellMemberFault<fault>();
    static_assert(fault != MemberFault::Field,
                  "A method or an event is a member function: a data member may be a property.");
    static_assert(fault != MemberFault::Result, "An event returns nothing.");
    static_assert(fault != MemberFault::Count,
                  "A method or an event has at most ZTMetaInvokable::MaxParamCount parameters.");
    static_assert(fault != MemberFault::References,
                  "The parameters of a method or an event are values or references to const.");
    InvokableEntry entry;
    if constexpr (fault == MemberFault::None) {
        using Traits = MemberTraits<decltype(Member)>;
        using Params = typename Traits::Params;
        entry.record.kind = kind;
        entry.record.name = nameOfMember<Member>;
        entry.record.identity = memberIdentity<Member>;
        entry.record.key = &memberVariable<Member>;
        entry.record.type = &resultType<typename Traits::Result>;
        entry.record.parameterTypes = Params::types;
        entry.record.count = Params::count;
        entry.record.signature = &Params::signature;
        entry.record.function = &invokeMember<Member>;
        entry.record.isConst = Traits::isConst;
    }
    return entry;
}
} // namespace detail

/// An event: a member function that raises itself with `sendEvent<&Self::...>(...)`.
template <auto Member>
constexpr detail::InvokableEntry event()
{
    return detail::invokableEntry<detail::MemberKind::Event, Member>();
}

/// A method: a member function that can be called by name.
template <auto Member>
constexpr detail::InvokableEntry method()
{
    return detail::invokableEntry<detail::MemberKind::Method, Member>();
}

/// A property: a const getter and a setter, a getter alone for one that can only be read, or a
/// data member.
template <auto Getter, auto Setter = nullptr>
constexpr detail::PropertyEntry<0> property()
{
    using detail::MemberFault;
    constexpr MemberFault fault = detail::faultOfGetter<decltype(Getter)>();
    detail::tellMemberFault<fault>();
    static_assert(fault != MemberFault::Getter,
                  "The getter of a property is a const member function without parameters, or a "
                  "data member.");
    static_assert(fault != MemberFault::View,
                  "A data member that is a property keeps its text: a std::string, not a view or "
                  "a pointer.");
    detail::PropertyEntry<0> entry;
    entry.record.kind = detail::MemberKind::Property;
    if constexpr (fault == MemberFault::None) {
        using Traits = detail::MemberTraits<decltype(Getter)>;
        using Result = typename Traits::Result;
        entry.record.name = detail::nameOfMember<Getter>;
        entry.record.identity = detail::memberIdentity<Getter>;
        entry.record.key = &detail::memberVariable<Getter>;
        entry.record.type = &detail::resultType<Result>;
        entry.record.getter = &detail::getProperty<Getter>;
        if constexpr (!std::is_null_pointer_v<decltype(Setter)>) {
            constexpr auto setterFault = detail::faultOfSetter<Result, decltype(Setter)>();
            static_assert(setterFault != detail::SetterFault::NoSetter,
                          "The setter of a property is a member function of one parameter, a "
                          "value or a reference to const.");
            static_assert(setterFault != detail::SetterFault::OtherType,
                          "The setter of a property takes what the getter gives, and nothing "
                          "else.");
            if constexpr (setterFault == detail::SetterFault::None)
                entry.record.setter = &detail::setByFunction<Setter>;
        } else if constexpr (!Traits::isFunction && !std::is_const_v<Result>) {
            static_assert(std::is_assignable_v<Result&, Result>,
                          "A data member that is a property can be assigned to, or is const.");
            if constexpr (std::is_assignable_v<Result&, Result>)
                entry.record.setter = &detail::setField<Getter>;
        }
    }
    return entry;
}

namespace detail
{
template <class T>
inline constexpr bool isEntry = requires(const T& entry)
{
    entry.record.kind;
    T::infoCount;
};
} // namespace detail

/// The members of a class, in the order in which they are listed.
template <class... Entries>
constexpr auto members(const Entries&... entries)
{
    constexpr bool areEntries = detail::areAllTrue({detail::isEntry<Entries>...});
    static_assert(areEntries, "zt::members takes what zt::info, zt::enumeration, zt::property, "
                              "zt::method and zt::event give.");
    if constexpr (areEntries) {
        detail::MemberList<sizeof...(Entries), detail::sumOf({Entries::infoCount...})> list;
        [[maybe_unused]] std::size_t member = 0;
        [[maybe_unused]] std::size_t info = 0;
        // An array and no fold, which compilers nest.
        [[maybe_unused]] const bool added[] = {true, (list.add(entries, member, info), true)...};
        return list;
    } else {
        return detail::MemberList<0, 0>();
    }
}
} // namespace zt
