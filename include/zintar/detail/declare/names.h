#pragma once

#include <zintar/detail/signature.h>
#include <zintar/detail/spelling.h>

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <type_traits>

/// @file
/// What is listed: the names of members and enumerators, which come out of the compiler's text for
/// a value, and what tells one member from another while compiling.

namespace zt::detail
{
namespace piece
{
inline constexpr std::string_view operatorBefore = "operator ";
}

/// A hash that finds equal names without comparing each with each.
constexpr std::uint32_t hashOf(std::string_view name) noexcept
{
    std::uint32_t hash = 2166136261U;
    for (const char *c = name.data(), *end = c + name.size(); c != end; ++c)
        hash = (hash ^ static_cast<unsigned char>(*c)) * 16777619U;
    return hash ^ hash >> 15;
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

/// Stands for a type, so that two of them can be compared as addresses.
template <class T>
[[gnu::visibility("hidden")]] inline constexpr char typeTag = 0;

/// What is known of a member while compiling. It serves the checks; none of it gets into a program.
struct MemberIdentity {
    std::string_view name; ///< bare
    std::string_view text; ///< as the compiler writes the member: one for all overloads
    const void* type;      ///< of the pointer to it, which differs between overloads
    const void* key;       ///< the variable that holds the pointer to it
    std::uint32_t hash;    ///< of the name

    constexpr bool isSet() const { return !text.empty(); }
};

/// In the place of a null pointer, which no address is compared with while compiling.
inline constexpr MemberIdentity noMember{{}, {}, nullptr, nullptr, 0};

template <auto Member>
constexpr MemberIdentity identify()
{
    constexpr std::string_view text = compilerValueSpelling<Member>();
    constexpr std::string_view name = lastName(text);
    const void* type = &typeTag<decltype(Member)>;
    // The compilers do not agree on how to write a conversion.
    if constexpr (name.empty() || name.starts_with("operator ")) {
        using Result = std::remove_cvref_t<typename MemberTraits<decltype(Member)>::Result>;
        constexpr std::string_view conversion =
            Joined<piece::operatorBefore, Spelling<Result>::text>::text;
        return {conversion, text, type, &memberVariable<Member>, hashOf(conversion)};
    } else {
        return {name, text, type, &memberVariable<Member>, hashOf(name)};
    }
}

// A variable, since a compiler computes a function anew for each list that a member stands in, and
// counts the steps as those of the list.
template <auto Member>
inline constexpr MemberIdentity memberIdentity = identify<Member>();

// Addresses are compared while compiling. Under some sets of flags the compiler does not know the
// answer where it would be no.

constexpr bool isKnownSame(const void* a, const void* b)
{
#if defined(__clang__)
    return a == b;
#else
    return __builtin_constant_p(a == b) && a == b;
#endif
}

constexpr bool isKnownOther(const void* a, const void* b)
{
#if defined(__clang__)
    return a != b;
#else
    return __builtin_constant_p(a == b) && !(a == b);
#endif
}

/// Finds the places in a list of what has one hash, in a number of steps that does not grow with
/// the list.
template <std::size_t Capacity>
class HashedPlaces
{
public:
    /// @param found  is called with each place that may have the hash, until it gives true
    template <class Found>
    constexpr bool find(std::uint32_t hash, const Found& found) const
    {
        for (std::size_t i = hash & mask; m_places[i] != 0; i = (i + 1) & mask)
            if (found(m_places[i] - 1))
                return true;
        return false;
    }
    /// At most as many as the capacity.
    constexpr void add(std::uint32_t hash, std::size_t place)
    {
        std::size_t i = hash & mask;
        while (m_places[i] != 0)
            i = (i + 1) & mask;
        m_places[i] = static_cast<std::uint32_t>(place + 1);
    }

private:
    static constexpr std::size_t size()
    {
        std::size_t size = 4;
        while (size < 2 * Capacity)
            size *= 2;
        return size;
    }
    static constexpr std::size_t mask = size() - 1;

    std::uint32_t m_places[size()] = {}; // 0 where there is none
};
} // namespace zt::detail
