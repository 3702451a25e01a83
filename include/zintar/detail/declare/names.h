#pragma once

#include <zintar/detail/signature.h>
#include <zintar/detail/spelling.h>

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <type_traits>

/// @file
/// The names of members and enumerators, and what tells one member from another while compiling.
/// Both come out of the compiler's text for a value.

namespace zt::detail
{
namespace piece
{
inline constexpr std::string_view operatorBefore = "operator ";
}

/// A hash that finds equal texts without comparing each with each.
constexpr std::uint64_t hashOf(std::string_view text,
                               std::uint64_t hash = 14695981039346656037U) noexcept
{
    for (char c : text)
        hash = (hash ^ static_cast<unsigned char>(c)) * 1099511628211U;
    return hash;
}

/// Letters beyond ASCII are bytes of UTF-8.
constexpr bool isNameChar(char c) noexcept
{
    return isIdentifierChar(c) || static_cast<unsigned char>(c) >= 0x80;
}

/// What is behind the last "::" of a compiler's text, with "operator" in front of an operator's
/// sign; empty for a value without a name.
constexpr std::string_view lastName(std::string_view text) noexcept
{
    std::size_t begin = text.size();
    while (begin > 0 && isNameChar(text[begin - 1]))
        --begin;
    std::string_view name = text.substr(begin);
    bool isPlain = !name.empty() && (begin == 0 || text[begin - 1] == ':');
    if (isPlain)
        return name[0] >= '0' && name[0] <= '9' ? std::string_view() : name;
    std::size_t scope = text.rfind("::operator");
    return scope == std::string_view::npos ? std::string_view() : text.substr(scope + 2);
}

/// The bare name of an enumerator, or an empty view for a value without one.
template <auto Value>
constexpr std::string_view enumeratorName() noexcept
{
    return lastName(compilerValueSpelling<Value>());
}

/// The bare name of a member.
template <auto Member>
constexpr std::string_view memberName() noexcept
{
    constexpr std::string_view name = lastName(compilerValueSpelling<Member>());
    // The compilers do not agree on how to write a conversion.
    if constexpr (name.empty() || name.starts_with("operator ")) {
        using Result = std::remove_cvref_t<typename MemberTraits<decltype(Member)>::Result>;
        return Joined<piece::operatorBefore, Spelling<Result>::text>::text;
    } else {
        return name;
    }
}

/// Tells members apart while compiling: the compiler's text for the member, and for its type, which
/// differs between overloads. (Addresses cannot be compared then under every set of flags.) The
/// text does not differ between instances of one function template.
struct MemberIdentity {
    std::string_view member;
    std::string_view type;
    std::uint64_t hash = 0;

    constexpr bool operator==(const MemberIdentity&) const = default;
    constexpr bool isSet() const { return !member.empty(); }
};

template <auto Member>
constexpr MemberIdentity identify()
{
    std::string_view member = compilerValueSpelling<Member>();
    std::string_view type = compilerSpelling<decltype(Member)>();
    return {member, type, hashOf(type, hashOf(member))};
}

// Variables, since a compiler computes a function anew for each list that a member stands in, and
// counts the steps as those of the list.

template <auto Member>
inline constexpr std::string_view nameOfMember = memberName<Member>();
template <auto Member>
inline constexpr MemberIdentity memberIdentity = identify<Member>();

/// A hash, and the position in a list of what it was made from.
struct HashedPlace {
    std::uint64_t hash = 0;
    std::size_t position = 0;
};

/// Sorts by the hash, in a number of steps that compilers allow for long lists: merges ever longer
/// runs.
/// @param space  as many as there are places
constexpr void sortByHash(HashedPlace* places, HashedPlace* space, std::size_t count)
{
    for (std::size_t width = 1; width < count; width *= 2) {
        for (std::size_t begin = 0; begin < count; begin += 2 * width) {
            std::size_t middle = begin + width < count ? begin + width : count;
            std::size_t end = middle + width < count ? middle + width : count;
            std::size_t left = begin;
            std::size_t right = middle;
            for (std::size_t i = begin; i < end; ++i) {
                bool takesLeft =
                    left < middle && (right == end || places[left].hash <= places[right].hash);
                space[i] = takesLeft ? places[left++] : places[right++];
            }
        }
        for (std::size_t i = 0; i < count; ++i)
            places[i] = space[i];
    }
}
} // namespace zt::detail
