#pragma once

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

constexpr bool areAllTrue(std::initializer_list<bool> answers)
{
    for (bool answer : answers)
        if (!answer)
            return false;
    return true;
}

/// The hashes of the events in a list, to be asked for one.
template <std::size_t Capacity>
struct EventHashes {
    std::array<HashedPlace, Capacity> sorted{};
    std::size_t count = 0;

    constexpr bool has(std::uint64_t hash) const
    {
        std::size_t begin = 0;
        std::size_t end = count;
        while (begin < end) {
            std::size_t middle = begin + (end - begin) / 2;
            if (sorted[middle].hash == hash)
                return true;
            (sorted[middle].hash < hash ? begin : end) =
                sorted[middle].hash < hash ? middle + 1 : middle;
        }
        return false;
    }
};

/// Whether two entries are for one variable, as far as the compiler can tell while compiling.
constexpr bool isKnownSameKey(const void* a, const void* b)
{
#if defined(__clang__)
    return a == b;
#else
    return __builtin_constant_p(a == b) && a == b;
#endif
}

/// The list that `zt::members` gives.
///
/// A list may be long. What is asked of all its members together sorts hashes, since each name
/// against each, letter by letter, is more than compilers are ready to compute.
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

    static constexpr bool hasName(MemberKind kind)
    {
        return kind == MemberKind::Property || kind == MemberKind::Enumeration;
    }
    static constexpr bool isInvokable(MemberKind kind)
    {
        return kind == MemberKind::Method || kind == MemberKind::Event;
    }

    /// Of two entries of which either the names or the members have one hash.
    static constexpr bool isListedTwice(const MemberRecord& a, const MemberRecord& b)
    {
        if (a.kind != b.kind && !(isInvokable(a.kind) && isInvokable(b.kind)))
            return false;
        bool isOneName = a.name == b.name;
        if (isOneName && hasName(a.kind))
            return true;
        // Instances of one function template differ by their names alone.
        return isOneName ? a.identity.isSet() && a.identity == b.identity
                         : a.identity.isSet() && isKnownSameKey(a.key, b.key);
    }

    constexpr bool hasMemberListedTwice() const
    {
        std::array<HashedPlace, 2 * MemberCount + 1> places{};
        std::array<HashedPlace, 2 * MemberCount + 1> space{};
        std::size_t count = 0;
        for (std::size_t i = 0; i < MemberCount; ++i) {
            if (members[i].identity.isSet())
                places[count++] = {members[i].identity.hash, i};
            if (hasName(members[i].kind))
                places[count++] = {hashOf(members[i].name), i};
        }
        sortByHash(places.data(), space.data(), count);
        for (std::size_t i = 0; i < count; ++i)
            for (std::size_t j = i + 1; j < count && places[j].hash == places[i].hash; ++j)
                if (isListedTwice(members[places[i].position], members[places[j].position]))
                    return true;
        return false;
    }

    constexpr EventHashes<MemberCount> events() const
    {
        EventHashes<MemberCount> events;
        std::array<HashedPlace, MemberCount> space{};
        for (std::size_t i = 0; i < MemberCount; ++i)
            if (members[i].kind == MemberKind::Event)
                events.sorted[events.count++] = {members[i].identity.hash, i};
        sortByHash(events.sorted.data(), space.data(), events.count);
        return events;
    }
};

template <class T>
inline constexpr bool isMemberList = false;
template <std::size_t MemberCount, std::size_t InfoCount>
inline constexpr bool isMemberList<MemberList<MemberCount, InfoCount>> = true;
} // namespace zt::detail
