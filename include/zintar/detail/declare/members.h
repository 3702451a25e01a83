#pragma once

#include <zintar/detail/declare/constructorentry.h>
#include <zintar/detail/declare/entries.h>
#include <zintar/detail/declare/enumerators.h>
#include <zintar/detail/declare/functions.h>
#include <zintar/detail/declare/list.h>
#include <zintar/detail/declare/memberchecks.h>
#include <zintar/detail/declare/names.h>

#include <array>
#include <cstddef>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>

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
    entry.record.info = value;
    return entry;
}

namespace detail
{
template <class Enum, bool IsFlags, auto... Values>
constexpr auto enumerationEntry(Enumerators<Values...>)
{
    using List = Enumerators<Values...>;
    constexpr bool isEnum = std::is_enum_v<Enum>;
    constexpr bool areOwn = !isEnum || List::template areAllOf<Enum>();
    static_assert(isEnum, "zt::enumeration<E>: E is no enumeration.");
    static_assert(areOwn, "zt::enumeration<E>: an enumerator belongs to another enumeration.");
    EnumerationEntry<Enum> entry;
    entry.record.kind = MemberKind::Enumeration;
    if constexpr (isEnum && areOwn) {
        static_assert(List::fitInt(),
                      "zt::enumeration<E>: the value of an enumerator does not fit into an int.");
        static_assert(List::areNamed(),
                      "zt::enumerators: a value has no name, or two have one name; give it by "
                      "zt::enumerator(\"name\", value).");
        entry.record.name = bareName<Enum>();
        entry.record.enumeration = {List::names.data(), enumeratorNumbers<Values...>.data(),
                                    &enumerationType<Enum, IsFlags>, 0};
        entry.record.count = sizeof...(Values);
    }
    return entry;
}

template <class Result, class... P>
inline constexpr Signature signatureOf{&resultType<Result>, Parameters<P...>::types,
                                       &Parameters<P...>::signature, sizeof...(P)};

template <class Result, class... P>
constexpr const Signature* signatureFor(Parameters<P...>)
{
    return &signatureOf<Result, P...>;
}

template <MemberKind kind, auto Member>
constexpr auto invokableEntry()
{
    using Traits = MemberTraits<decltype(Member)>;
    constexpr bool isBound = isForeign<std::remove_cv_t<decltype(Member)>>;
    using Binding = std::conditional_t<isBound, MethodBinding<Member>, void>;
    InvokableEntry<typename Traits::Params, Binding> entry;
    entry.identity = &memberIdentity<Member>;
    entry.record.kind = kind;
    entry.record.name = entry.identity->name;
    entry.record.isConst = Traits::isConst;
    entry.record.invokable = {signatureFor<typename Traits::Result>(typename Traits::Params()),
                              nullptr, &memberVariable<Member>, 0, 0};
    if constexpr (!isBound)
        entry.record.invokable.function = &invokeMember<Member>;
    return entry;
}

/// @tparam Setter  the data member itself where that can be set, or null
/// @tparam Field   that data member, or null
template <auto Getter, auto Setter, auto Field>
constexpr auto entryOfProperty()
{
    constexpr bool isBound = isForeign<std::remove_cv_t<decltype(Getter)>> ||
                             isForeign<std::remove_cv_t<decltype(Setter)>>;
    using Binding = std::conditional_t<isBound, PropertyBinding<Getter, Setter>, void>;
    PropertyEntry<0, Field, Binding> entry;
    entry.identity = &memberIdentity<Getter>;
    entry.record.kind = MemberKind::Property;
    entry.record.name = entry.identity->name;
    entry.record.property = {&resultType<typename MemberTraits<decltype(Getter)>::Result>, nullptr,
                             nullptr, nullptr};
    if constexpr (!isBound)
        entry.record.property.getter = &getProperty<Getter>;
    if constexpr (!isBound && !std::is_null_pointer_v<decltype(Setter)>)
        entry.record.property.setter = &setProperty<Setter>;
    return entry;
}

template <auto Getter, auto Setter>
constexpr auto propertyEntry()
{
    using Traits = MemberTraits<decltype(Getter)>;
    using Result = typename Traits::Result;
    if constexpr (!Traits::isFunction && !std::is_const_v<Result> &&
                  std::is_null_pointer_v<decltype(Setter)>) {
        return entryOfProperty<Getter, Getter, Getter>();
    } else {
        return entryOfProperty<Getter, Setter, nullptr>();
    }
}

/// Makes the entry of a member, or tells in one sentence what is wrong with it. The sentences stand
/// here together, at the least distance from the line of the host, which is what the compiler
/// prints behind them.
template <MemberKind kind, auto... Member>
struct EntryMaker {
    constexpr auto operator()() const
    {
        constexpr MemberFault fault = faultOfEntry<kind, Member...>();
        static_assert(fault != MemberFault::Static,
                      "What is listed is a member of an object, given as &Self::name: a static "
                      "member is none.");
        static_assert(fault != MemberFault::Qualified,
                      "A member function that is listed is not volatile, variadic or qualified "
                      "with & or &&.");
        static_assert(fault != MemberFault::Foreign,
                      "The member belongs to a class that is not an object class.");
        static_assert(fault != MemberFault::Incomplete,
                      "The types of a listed member must be complete: include their headers.");
        static_assert(fault != MemberFault::NotCopyable,
                      "What a listed member takes and gives is copied: no arrays, void* or types "
                      "that cannot be copied. An object travels as a pointer.");
        static_assert(fault != MemberFault::Field,
                      "A method or an event is a member function: a data member may be a "
                      "property.");
        static_assert(fault != MemberFault::Result, "An event returns nothing.");
        static_assert(fault != MemberFault::Count,
                      "A method or an event has at most ZTMetaInvokable::MaxParamCount "
                      "parameters.");
        static_assert(fault != MemberFault::References,
                      "The parameters of a method or an event are values or references to const.");
        static_assert(fault != MemberFault::Getter,
                      "The getter of a property is a const member function without parameters, or "
                      "a data member.");
        static_assert(fault != MemberFault::View,
                      "A data member that is a property keeps its text: a std::string, not a view "
                      "or a pointer.");
        static_assert(fault != MemberFault::Setter,
                      "The setter of a property is a member function of one parameter, a value or "
                      "a reference to const.");
        static_assert(fault != MemberFault::SetterType,
                      "The setter of a property takes what the getter gives, and nothing else.");
        static_assert(fault != MemberFault::NotAssignable,
                      "A data member that is a property can be assigned to, or is const.");
        static_assert(fault != MemberFault::NoDefault,
                      "The type of a property that can be set needs a default value.");
        if constexpr (fault != MemberFault::None)
            return std::conditional_t<kind == MemberKind::Property, PropertyEntry<0>,
                                      InvokableEntry<Parameters<>>>();
        else if constexpr (kind == MemberKind::Property)
            return propertyEntry<Member...>();
        else
            return invokableEntry<kind, Member...>();
    }
};
} // namespace detail

/// An enumeration: `zt::enumeration<Mode>(zt::enumerators<Mode::Off, Mode::Heat>)`.
template <class Enum, auto... Values>
constexpr auto enumeration(detail::Enumerators<Values...> list)
{
    return detail::enumerationEntry<Enum, false>(list);
}

namespace detail
{
/// Finds what `ZT_ENUM` says of an enumeration.
template <class Enum>
struct EnumerationTag {};

template <class Enum>
concept DeclaredEnumeration = requires
{
    ztDeclaredEnumeration(EnumerationTag<Enum>());
};

/// What `ZT_ENUM` says of an enumeration, in a place that stays.
template <class Enum>
struct LoneEnumeration {
    static constexpr auto entry = ztDeclaredEnumeration(EnumerationTag<Enum>());

    static bool publish() { return publishEnumeration(entry.record, entry.infos.data()); }
};
} // namespace detail

/// An enumeration that `ZT_ENUM` or `ZT_FLAGS` declares beside it, for as many classes as list it:
/// `zt::enumeration<Mode>()`.
template <class Enum>
constexpr auto enumeration()
{
    constexpr bool isDeclared = detail::DeclaredEnumeration<Enum>;
    static_assert(isDeclared, "zt::enumeration<E>(): E has no ZT_ENUM or ZT_FLAGS beside it; or "
                              "give its enumerators, zt::enumerators<E::A, E::B>.");
    if constexpr (isDeclared)
        return ztDeclaredEnumeration(detail::EnumerationTag<Enum>());
    else
        return detail::EnumerationEntry<Enum>();
}

/// An enumeration of which a value may be several enumerators together:
/// `zt::flags<Access>(zt::enumerators<Access::Read, Access::Write>)`.
template <class Enum, auto... Values>
constexpr auto flags(detail::Enumerators<Values...> list)
{
    return detail::enumerationEntry<Enum, true>(list);
}

/// An event, `zt::event<&Self::changed>()`: a member function that raises itself with
/// `sendEvent<&Self::changed>(...)`.
template <auto Member>
inline constexpr detail::EntryMaker<detail::MemberKind::Event, Member> event{};

/// A method, `zt::method<&Self::run>()`: a member function that can be called by name.
template <auto Member>
inline constexpr detail::EntryMaker<detail::MemberKind::Method, Member> method{};

/// A property, `zt::property<&Self::get, &Self::set>()`: a const getter and a setter, a getter
/// alone for one that can only be read, or a data member.
template <auto Getter, auto Setter = nullptr>
inline constexpr detail::EntryMaker<detail::MemberKind::Property, Getter, Setter> property{};

namespace detail
{
template <class... P>
struct ConstructorMaker {
    constexpr auto operator()() const
    {
        constexpr bool isShort = sizeof...(P) <= maxParamCount;
        constexpr bool isCarried =
            Parameters<P...>::plain && faultOfValues(Parameters<P...>{}) == MemberFault::None;
        static_assert(isShort, "A constructor that is listed has at most "
                               "ZTMetaInvokable::MaxParamCount parameters.");
        static_assert(isCarried, "The parameters of a constructor that is listed are complete "
                                 "types that can be copied: values or references to const.");
        if constexpr (isShort && isCarried)
            return ConstructorEntry<P...>();
        else
            return FaultyConstructor();
    }
};
} // namespace detail

/// A constructor that `ztCreate` can call with arguments, `zt::constructor<double, std::string>()`.
/// It is no member: no descriptor shows it. One without parameters, or with a parent alone, need
/// not be listed.
template <class... P>
inline constexpr detail::ConstructorMaker<P...> constructor{};

namespace detail
{
/// The places of the members among what is listed, where constructors stand between them.
template <class... Entries>
constexpr auto placesOfMembers()
{
    std::array<std::size_t, sumOf({Entries::memberCount...})> places{};
    std::size_t place = 0;
    std::size_t count = 0;
    for (std::size_t members : {Entries::memberCount...}) {
        if (members > 0)
            places[count++] = place;
        ++place;
    }
    return places;
}

template <class... Entries, std::size_t... n>
auto bindingsOfMembers(std::index_sequence<n...>)
    -> BindingList<typename std::tuple_element_t<placesOfMembers<Entries...>()[n],
                                                 std::tuple<Entries...>>::Binding...>;

template <bool isAny, bool areAllMembers, class... Entries>
struct Bindings {
    using type = BindingList<>;
};
template <class... Entries>
struct Bindings<true, true, Entries...> {
    using type = BindingList<typename Entries::Binding...>;
};
template <class... Entries>
struct Bindings<true, false, Entries...> {
    using type = decltype(bindingsOfMembers<Entries...>(
        std::make_index_sequence<sumOf({Entries::memberCount...})>()));
};

/// Of all members, so that they keep their positions; empty where none has one.
template <class... Entries>
using BindingsAmong =
    typename Bindings<!areAllTrue({std::is_void_v<typename Entries::Binding>...}),
                      areAllTrue({Entries::memberCount == 1 ...}), Entries...>::type;

template <class T>
inline constexpr bool isEntry = requires(const T& entry)
{
    entry.record.kind;
    T::infoCount;
};
template <class... P>
inline constexpr bool isEntry<ConstructorEntry<P...>> = true;
template <>
inline constexpr bool isEntry<FaultyConstructor> = true;
} // namespace detail

/// The members of a class, in the order in which they are listed.
template <class... Entries>
constexpr auto members(const Entries&... entries)
{
    constexpr bool areEntries = detail::areAllTrue({detail::isEntry<Entries>...});
    static_assert(areEntries, "zt::members takes what zt::info, zt::enumeration, zt::property, "
                              "zt::method, zt::event and zt::constructor give.");
    if constexpr (areEntries) {
        using List = detail::MemberList<
            detail::sumOf({Entries::memberCount...}), detail::sumOf({Entries::infoCount...}),
            detail::sumOf({Entries::defaultCount...}), detail::BindingsAmong<Entries...>,
            detail::ConstructorsAmong<Entries...>>;
        List list;
        [[maybe_unused]] typename List::Filled filled;
        // An array and no fold, which compilers nest.
        [[maybe_unused]] const bool added[] = {true, (list.add(entries, filled), true)...};
        return list;
    } else {
        return detail::MemberList<0, 0>();
    }
}
} // namespace zt
