#pragma once

#include "common/nameindex.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

namespace support
{
/// Different names that an index of names, which hashes them, wants to put in one place, whatever
/// its size.
inline std::vector<std::string> collidingNames(std::size_t count)
{
    // Of two words, each times a factor of its own, the hash is the exclusive or. For whatever
    // first word the second one can be worked out that gives a hash of 0.
    constexpr std::uint64_t firstFactor = 0x9E3779B97F4A7C15u;
    constexpr std::uint64_t secondFactor = 0xD6E8FEB86659FD93u;
    std::uint64_t inverse = 1; // of the second factor; each step doubles the bits that are right
    for (int step = 0; step < 6; ++step)
        inverse *= 2 - secondFactor * inverse;
    std::vector<std::string> names;
    for (std::uint64_t i = 0; i < count; ++i) {
        const std::uint64_t words[] = {i ^ 16, i * firstFactor * inverse};
        std::string name(sizeof words, '\0');
        std::memcpy(name.data(), words, sizeof words);
        EXPECT_EQ(zt::detail::NameKey(name).hash(), 0U) << "made up for another hash";
        names.push_back(name);
    }
    return names;
}
} // namespace support
