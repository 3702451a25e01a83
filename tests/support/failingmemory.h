#pragma once

#include <zintar/detail/blocks.h>

#include <array>
#include <cstddef>
#include <cstdlib>
#include <new>

#include <dlfcn.h>

/// @file
/// Memory that fails when it is told to. `operator new` and `realloc` are replaced for the whole
/// program, the library included; they are defined here too: a test is a program of one file.

namespace support
{
struct Memory {
    enum class Failing { Once, FromThenOn };

    /// From here on the n-th allocation fails; 0 for none.
    static void failAt(int n, Failing how)
    {
        asked = 0;
        hasFailed = false;
        failing = n;
        mode = how;
    }
    static void failNoMore() { failing = 0; }
    static bool grants()
    {
        ++asked;
        bool fails =
            failing > 0 && (asked == failing || (asked > failing && mode == Failing::FromThenOn));
        hasFailed = hasFailed || fails;
        return !fails;
    }
    static void* allocate(std::size_t size, std::size_t alignment = alignof(std::max_align_t))
    {
        if (!grants())
            return nullptr;
        ++live;
        std::size_t whole = (size + alignment) / alignment * alignment;
        return std::aligned_alloc(alignment, whole);
    }
    static void free(void* block)
    {
        live -= block ? 1 : 0;
        std::free(block);
    }
    static void* orThrow(void* block) { return block ? block : throw std::bad_alloc(); }

    /// The allocations since the last `failAt`.
    inline static int asked = 0;
    inline static bool hasFailed = false;
    /// The allocations by `operator new` that were not given back.
    inline static long live = 0;

private:
    inline static int failing = 0;
    inline static Failing mode = Failing::Once;
};

/// As long as it lives, the blocks that the library keeps for this thread are taken, so that it
/// has to allocate whatever it needs.
class WithoutKeptBlocks
{
public:
    WithoutKeptBlocks()
    {
        for (std::size_t size = 8; size <= 256; size += 16)
            for (long before = Memory::live; before == Memory::live; ++m_count)
                m_taken[m_count] = {zt::detail::takeBlock(size), size};
    }
    WithoutKeptBlocks(const WithoutKeptBlocks&) = delete;
    WithoutKeptBlocks& operator=(const WithoutKeptBlocks&) = delete;
    ~WithoutKeptBlocks()
    {
        while (m_count > 0) {
            auto [block, size] = m_taken[--m_count];
            zt::detail::giveBlockBack(block, size);
        }
    }
    /// The allocations that somebody has use for.
    [[nodiscard]] long inUse() const { return Memory::live - long(m_count); }

private:
    struct Taken {
        void* block;
        std::size_t size;
    };
    std::array<Taken, 4096> m_taken;
    std::size_t m_count = 0;
};
} // namespace support

using support::Memory;

// clang-format off
void* operator new(std::size_t size) { return Memory::orThrow(Memory::allocate(size)); }
void* operator new[](std::size_t size) { return Memory::orThrow(Memory::allocate(size)); }
void* operator new(std::size_t size, const std::nothrow_t&) noexcept { return Memory::allocate(size); }
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept { return Memory::allocate(size); }
void* operator new(std::size_t size, std::align_val_t alignment) { return Memory::orThrow(Memory::allocate(size, std::size_t(alignment))); }
void* operator new[](std::size_t size, std::align_val_t alignment) { return Memory::orThrow(Memory::allocate(size, std::size_t(alignment))); }
void operator delete(void* block) noexcept { Memory::free(block); }
void operator delete[](void* block) noexcept { Memory::free(block); }
void operator delete(void* block, std::size_t) noexcept { Memory::free(block); }
void operator delete[](void* block, std::size_t) noexcept { Memory::free(block); }
void operator delete(void* block, std::align_val_t) noexcept { Memory::free(block); }
void operator delete[](void* block, std::align_val_t) noexcept { Memory::free(block); }
void operator delete(void* block, std::size_t, std::align_val_t) noexcept { Memory::free(block); }
void operator delete[](void* block, std::size_t, std::align_val_t) noexcept { Memory::free(block); }
void operator delete(void* block, const std::nothrow_t&) noexcept { Memory::free(block); }
void operator delete[](void* block, const std::nothrow_t&) noexcept { Memory::free(block); }
// clang-format on

extern "C" void* realloc(void* block, std::size_t size) noexcept
{
    using Realloc = void* (*)(void*, std::size_t);
    static const auto next = reinterpret_cast<Realloc>(dlsym(RTLD_NEXT, "realloc"));
    return Memory::grants() ? next(block, size) : nullptr;
}
