#pragma once

#include <zintar/detail/declare/record.h>

#include <array>
#include <cstddef>
#include <string_view>

/// @file
/// What is listed: what each line of a list gives, and what may be said behind it.

namespace zt::detail
{
/// The annotations of one list, behind the members of that list.
template <std::size_t InfoCount>
struct ListedMember {
    MemberRecord record;
    const MemberIdentity* identity = &noMember;    ///< of properties, methods and events
    const MemberIdentity* changeEvent = &noMember; ///< of properties
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
        linked.changeEvent = &memberIdentity<Event>;
        linked.record.property.changeEventKey = &memberVariable<Event>;
        return linked;
    }

    /// Adds an annotation. Keys may repeat.
    constexpr PropertyEntry<InfoCount + 1> info(std::string_view key, std::string_view value) const
    {
        PropertyEntry<InfoCount + 1> longer;
        longer.record = this->record;
        longer.identity = this->identity;
        longer.changeEvent = this->changeEvent;
        longer.record.count = InfoCount + 1;
        for (std::size_t i = 0; i < InfoCount; ++i)
            longer.infos[i] = this->infos[i];
        longer.infos[InfoCount] = {key, value};
        return longer;
    }
};
} // namespace zt::detail
