#pragma once

#include <zintar/detail/classtable.h>
#include <zintar/detail/memberfunctions.h>

#include <array>
#include <cstddef>
#include <string_view>
#include <type_traits>

/// @file
/// What a class lists with `zt::members`: each member becomes one constant record.

namespace zt::detail
{
/// The annotations of one list, behind the members of that list.
template <std::size_t InfoCount>
struct ListedMember {
    MemberRecord record;
    std::array<InfoText, InfoCount> infos{};

    static constexpr std::size_t infoCount = InfoCount;
};

/// A method or an event in the list.
struct InvokableEntry : ListedMember<0> {
    /// Gives the member another name than its own.
    constexpr InvokableEntry as(std::string_view name) const
    {
        InvokableEntry named = *this;
        named.record.name = name;
        return named;
    }
    /// Public where nothing else is said: the compiler does not tell.
    constexpr InvokableEntry access(ZTAccessSpecifier specifier) const
    {
        InvokableEntry changed = *this;
        changed.record.access = specifier;
        return changed;
    }
};

struct EnumerationEntry : ListedMember<0> {
    constexpr EnumerationEntry as(std::string_view name) const
    {
        EnumerationEntry named = *this;
        named.record.name = name;
        return named;
    }
};

template <std::size_t InfoCount>
struct PropertyEntry : ListedMember<InfoCount> {
    constexpr PropertyEntry as(std::string_view name) const
    {
        PropertyEntry named = *this;
        named.record.name = name;
        return named;
    }

    /// Names the event that announces a change of the property. Raising it is the setter's part.
    template <auto Event>
    constexpr PropertyEntry notify() const
    {
        PropertyEntry linked = *this;
        linked.record.changeEvent = memberIdentity<Event>();
        linked.record.changeEventKey = &memberVariable<Event>;
        return linked;
    }

    /// Adds an annotation. Keys may repeat.
    constexpr PropertyEntry<InfoCount + 1> info(std::string_view key, std::string_view value) const
    {
        PropertyEntry<InfoCount + 1> longer;
        longer.record = this->record;
        longer.record.count = InfoCount + 1;
        for (std::size_t i = 0; i < InfoCount; ++i)
            longer.infos[i] = this->infos[i];
        longer.infos[InfoCount] = {key, value};
        return longer;
    }
};

/// The list that `zt::members` gives.
template <std::size_t MemberCount, std::size_t InfoCount>
struct MemberList {
    std::array<MemberRecord, MemberCount> members{};
    std::array<InfoText, InfoCount> infos{};

    template <class Entry>
    constexpr void add(const Entry& entry, std::size_t& member, std::size_t& info)
    {
        members[member] = entry.record;
        members[member].firstInfo = info;
        ++member;
        for (const InfoText& text : entry.infos)
            infos[info++] = text;
    }

    constexpr bool isListedTwice(std::size_t position) const
    {
        const MemberRecord& member = members[position];
        bool hasName =
            member.kind == MemberKind::Property || member.kind == MemberKind::Enumeration;
        bool isMember = member.kind != MemberKind::Info && member.kind != MemberKind::Enumeration;
        for (std::size_t i = 0; i < position; ++i) {
            const MemberRecord& other = members[i];
            if (other.kind == member.kind && ((hasName && member.name == other.name) ||
                                              (isMember && member.identity == other.identity)))
                return true;
        }
        return false;
    }

    constexpr bool hasMemberListedTwice() const
    {
        for (std::size_t i = 0; i < MemberCount; ++i)
            if (isListedTwice(i))
                return true;
        return false;
    }

    constexpr bool hasEvent(MemberIdentity event) const
    {
        for (const MemberRecord& member : members)
            if (member.kind == MemberKind::Event && member.identity == event)
                return true;
        return false;
    }
};
} // namespace zt::detail

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

namespace detail
{
template <auto... Values>
struct Enumerators {
    static constexpr std::array<std::string_view, sizeof...(Values) + 1> names{
        valueName<Values>()...};
    static constexpr std::array<int, sizeof...(Values) + 1> values{static_cast<int>(Values)...};
};

template <class Enum>
constexpr std::string_view bareName()
{
    std::string_view name = QualifiedName<Enum>::text;
    std::size_t last = name.rfind(':');
    return last == std::string_view::npos ? name : name.substr(last + 1);
}
} // namespace detail

/// The enumerators of an enumeration, by their values.
template <auto... Values>
inline constexpr detail::Enumerators<Values...> enumerators{};

/// An enumeration: `zt::enumeration<Mode>(zt::enumerators<Mode::Off, Mode::Heat>)`.
template <class Enum, auto... Values>
constexpr detail::EnumerationEntry enumeration(detail::Enumerators<Values...>)
{
    static_assert(std::is_enum_v<Enum>, "zt::enumeration<E>: E is no enumeration.");
    static_assert((std::is_same_v<std::remove_cv_t<decltype(Values)>, Enum> && ...),
                  "zt::enumeration<E>: an enumerator belongs to another enumeration.");
    static_assert(((static_cast<Enum>(static_cast<int>(Values)) == Values) && ...),
                  "zt::enumeration<E>: the value of an enumerator does not fit into an int.");
    using List = detail::Enumerators<Values...>;
    detail::EnumerationEntry entry;
    entry.record.kind = detail::MemberKind::Enumeration;
    entry.record.name = detail::bareName<Enum>();
    entry.record.enumerators = List::names.data();
    entry.record.values = List::values.data();
    entry.record.count = sizeof...(Values);
    return entry;
}

namespace detail
{
template <auto Member>
constexpr InvokableEntry invokableEntry(MemberKind kind)
{
    using Traits = MemberTraits<decltype(Member)>;
    using Params = typename Traits::Params;
    static_assert(isObjectClass<typename Traits::Class>,
                  "The member belongs to a class that is not an object class.");
    static_assert(Params::count <= maxParamCount,
                  "A method or an event has at most ZTMetaInvokable::MaxParamCount parameters.");
    static_assert(Params::plain,
                  "The parameters of a method or an event are values or references to const.");
    InvokableEntry entry;
    entry.record.kind = kind;
    entry.record.name = valueName<Member>();
    entry.record.identity = memberIdentity<Member>();
    entry.record.key = &memberVariable<Member>;
    entry.record.type = &resultType<typename Traits::Result>;
    entry.record.parameterTypes = Params::types;
    entry.record.count = Params::count;
    entry.record.signature = &Params::signature;
    if constexpr (Params::count <= maxParamCount && Params::plain)
        entry.record.function = &invokeMember<Member>;
    entry.record.isConst = Traits::isConst;
    return entry;
}
} // namespace detail

/// An event: a member function that raises itself with `sendEvent<&Self::...>(...)`.
template <auto Member>
constexpr detail::InvokableEntry event()
{
    static_assert(std::is_member_function_pointer_v<decltype(Member)>,
                  "zt::event<&Self::member>: the member is no member function.");
    static_assert(std::is_void_v<typename detail::MemberTraits<decltype(Member)>::Result>,
                  "An event returns nothing.");
    return detail::invokableEntry<Member>(detail::MemberKind::Event);
}

/// A method: a member function that can be called by name.
template <auto Member>
constexpr detail::InvokableEntry method()
{
    static_assert(std::is_member_function_pointer_v<decltype(Member)>,
                  "zt::method<&Self::member>: the member is no member function.");
    return detail::invokableEntry<Member>(detail::MemberKind::Method);
}

/// A property: a const getter and a setter, a getter alone for one that can only be read, or a
/// data member.
template <auto Getter, auto Setter = nullptr>
constexpr detail::PropertyEntry<0> property()
{
    using Traits = detail::MemberTraits<decltype(Getter)>;
    using Result = typename Traits::Result;
    static_assert(detail::isObjectClass<typename Traits::Class>,
                  "The member belongs to a class that is not an object class.");
    detail::PropertyEntry<0> entry;
    entry.record.kind = detail::MemberKind::Property;
    entry.record.name = detail::valueName<Getter>();
    entry.record.identity = detail::memberIdentity<Getter>();
    entry.record.key = &detail::memberVariable<Getter>;
    entry.record.type = &detail::resultType<Result>;
    constexpr bool readable = [] {
        if constexpr (Traits::isFunction)
            return Traits::isConst && Traits::Params::count == 0 && !std::is_void_v<Result>;
        else
            return true;
    }();
    static_assert(readable, "The getter of a property is a const member function without "
                            "parameters, or a data member.");
    if constexpr (readable)
        entry.record.getter = &detail::getProperty<Getter>;
    if constexpr (!std::is_null_pointer_v<decltype(Setter)>) {
        constexpr bool fits = detail::takesValue<Result, decltype(Setter)>();
        static_assert(fits, "The setter of a property takes what the getter gives, and nothing "
                            "else.");
        if constexpr (fits)
            entry.record.setter = &detail::setByFunction<Setter>;
    } else if constexpr (!Traits::isFunction && !std::is_const_v<Result>) {
        entry.record.setter = &detail::setField<Getter>;
    }
    return entry;
}

/// The members of a class, in the order in which they are listed.
template <class... Entries>
constexpr auto members(const Entries&... entries)
{
    detail::MemberList<sizeof...(Entries), (Entries::infoCount + ... + 0)> list;
    [[maybe_unused]] std::size_t member = 0;
    [[maybe_unused]] std::size_t info = 0;
    (list.add(entries, member, info), ...);
    return list;
}
} // namespace zt
