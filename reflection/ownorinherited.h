#pragma once

#include <zintar/metaclass.h>

#include <memory>
#include <string_view>

/// @file
/// The lookups that both families of class descriptors share.

namespace zt::detail
{
/// Present, though empty: its data pointer is not null, which the `operator bool`s look at.
inline constexpr std::string_view emptyView = "";

/// Descriptors note a missing type as null and speak of it as the invalid type.
inline const ZTMetaType& typeOrBad(const ZTMetaType* type)
{
    return type ? *type : ZTMetaType::ZTBadMetaType;
}

// A list holds its members by value (static classes) or by pointer (dynamic ones).
template <class Member>
const Member* memberAddress(const Member& member)
{
    return &member;
}
template <class Member>
const Member* memberAddress(const std::shared_ptr<Member>& member)
{
    return member.get();
}

/// The member with a class-wide index: an own one, or what `inherited` gives for the super class.
template <class Result, class List, class Inherited>
const Result* memberAt(const List& own, unsigned int offset, unsigned int index,
                       const ZTMetaClass* superClass, Inherited inherited)
{
    if (index < offset)
        return superClass ? inherited(*superClass) : nullptr;
    return index - offset < own.size() ? memberAddress(own[index - offset]) : nullptr;
}

/// The first own member that `matches`, or what `inherited` gives for the super class.
template <class Result, class List, class Matches, class Inherited>
const Result* memberNamed(const List& own, Matches matches, const ZTMetaClass* superClass,
                          Inherited inherited)
{
    for (const auto& member : own)
        if (matches(*memberAddress(member)))
            return memberAddress(member);
    return superClass ? inherited(*superClass) : nullptr;
}
} // namespace zt::detail
