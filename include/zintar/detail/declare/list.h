#pragma once

#include <zintar/detail/declare/constructorentry.h>
#include <zintar/detail/declare/entries.h>
#include <zintar/detail/declare/names.h>
#include <zintar/detail/declare/record.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <initializer_list>

/// @file
/// What is listed: the list as a whole.

namespace zt::detail
{
constexpr std::size_t sumOf(std::initializer_list<std::size_t> numbers)
{
    std::size_t sum = 0;
    for (std::size_t number : numbers)
        sum += number;
    return sum;
}

/// The list that `zt::members` gives.
///
/// A list may be long. What is asked of all its members together goes by hashes, since each name
/// against each is more than compilers are ready to compute.
///
/// Constructors are no members: no descriptor shows them. So they are types of the list.
/// @tparam BindingsOf  a `BindingList` of all members, or an empty one where none has a binding
template <std::size_t MemberCount, std::size_t InfoCount, std::size_t DefaultCount = 0,
          class BindingsOf = BindingList<>, class ListedConstructors = ConstructorParameters<>>
struct MemberList {
    using Bindings = BindingsOf;
    using Constructors = ListedConstructors;

    std::array<MemberRecord, MemberCount> members{};
    std::array<InfoText, InfoCount> infos{};
    std::array<ListedDefault, DefaultCount> defaultArguments{};
    std::array<const MemberIdentity*, MemberCount> identities{};
    std::array<const MemberIdentity*, MemberCount> changeEvents{};
    bool notifies = false; ///< a property names its change event
    WordFault fault = WordFault::None;

    /// How far the list is filled.
    struct Filled {
        std::size_t members = 0;
        std::size_t infos = 0;
        std::size_t defaults = 0;
    };

    template <std::size_t Texts, std::size_t Defaults>
    constexpr void add(const ListedMember<Texts, Defaults>& entry, Filled& filled)
    {
        MemberRecord& record = members[filled.members];
        record = entry.record;
        record.firstInfo = static_cast<unsigned int>(filled.infos);
        identities[filled.members] = entry.identity;
        changeEvents[filled.members] = entry.changeEvent;
        notifies = notifies || entry.changeEvent->isSet();
        if (fault == WordFault::None)
            fault = entry.fault;
        ++filled.members;
        for (const InfoText& text : entry.infos)
            infos[filled.infos++] = text;
        if constexpr (Defaults > 0) {
            record.invokable.firstDefault = static_cast<unsigned int>(filled.defaults);
            for (const ListedDefault& listed : entry.defaultArguments)
                defaultArguments[filled.defaults++] = listed;
        }
    }
    template <class... P>
    constexpr void add(const ConstructorEntry<P...>&, Filled&)
    {}
    constexpr void add(const FaultyConstructor&, Filled&) {}

    static constexpr bool hasName(MemberKind kind)
    {
        return kind == MemberKind::Property || kind == MemberKind::Enumeration;
    }

    static constexpr bool isSameMember(const MemberIdentity& a, const MemberIdentity& b)
    {
        return a.isSet() && b.isSet() && isKnownSame(a.type, b.type) && a.text == b.text;
    }

    constexpr bool isListedTwice(std::size_t first, std::size_t second) const
    {
        const MemberRecord& a = members[first];
        const MemberRecord& b = members[second];
        if (a.kind != b.kind && !(a.isInvokable() && b.isInvokable()))
            return false;
        const bool isOneName = a.name == b.name;
        if (isOneName && hasName(a.kind))
            return true;
        const MemberIdentity& one = *identities[first];
        const MemberIdentity& other = *identities[second];
        // Instances of one function template differ by their names alone.
        return isSameMember(one, other) && (isOneName || isKnownSame(one.key, other.key));
    }

    constexpr bool hasMemberListedTwice() const
    {
        HashedPlaces<2 * MemberCount> places;
        for (std::size_t i = 0; i < MemberCount; ++i) {
            auto isSame = [&](std::size_t other) { return isListedTwice(other, i); };
            const MemberIdentity& identity = *identities[i];
            const bool isNamedApart = hasName(members[i].kind) && identity.name != members[i].name;
            const std::uint32_t given = isNamedApart ? hashOf(members[i].name) : 0;
            if ((identity.isSet() && places.find(identity.hash, isSame)) ||
                (isNamedApart && places.find(given, isSame)))
                return true;
            if (identity.isSet())
                places.add(identity.hash, i);
            if (isNamedApart)
                places.add(given, i);
        }
        return false;
    }

    constexpr HashedPlaces<MemberCount> events() const
    {
        HashedPlaces<MemberCount> events;
        for (std::size_t i = 0; i < MemberCount; ++i)
            if (members[i].kind == MemberKind::Event)
                events.add(identities[i]->hash, i);
        return events;
    }
    /// @param events  what `events()` gives
    constexpr bool hasEvent(const HashedPlaces<MemberCount>& events,
                            const MemberIdentity& event) const
    {
        return events.find(event.hash, [&](std::size_t place) {
            const MemberIdentity& listed = *identities[place];
            return listed.text == event.text && !isKnownOther(listed.type, event.type);
        });
    }
};

template <class T>
inline constexpr bool isMemberList = false;
template <std::size_t MemberCount, std::size_t InfoCount, std::size_t DefaultCount, class Bindings,
          class Constructors>
inline constexpr bool
    isMemberList<MemberList<MemberCount, InfoCount, DefaultCount, Bindings, Constructors>> = true;
} // namespace zt::detail
