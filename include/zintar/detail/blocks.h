#pragma once

#include <zintar/export.h>

#include <cstddef>
#include <new>
#include <utility>

/// @file
/// Memory for the small things that come and go all the time: the values of variants, the records
/// of objects and subscriptions, handlers.
///
/// Each thread keeps some of the blocks that it gives back, and takes them again without asking the
/// allocator. A block may be given back on another thread than took it. Under a sanitizer nothing
/// is kept, so that it sees the life of each block.

namespace zt::detail
{
/// Memory for an object of that size and of no more than the default alignment.
[[nodiscard]] ZT_EXPORT void* takeBlock(std::size_t size);
/// @param size  as it was given to `takeBlock`
ZT_EXPORT void giveBlockBack(void* block, std::size_t size) noexcept;

/// Gives the classes that derive from it their memory out of blocks, as far as their alignment
/// allows.
struct InBlocks {
    static void* operator new(std::size_t size) { return takeBlock(size); }
    static void operator delete(void* block, std::size_t size) noexcept
    {
        giveBlockBack(block, size);
    }
    static void* operator new(std::size_t size, std::align_val_t alignment)
    {
        return ::operator new(size, alignment);
    }
    static void operator delete(void* memory, std::size_t, std::align_val_t alignment) noexcept
    {
        ::operator delete(memory, alignment);
    }
};

/// Where a value is, whatever its class makes of `&`. (The standard library's costs <memory>.)
template <class T>
[[nodiscard]] constexpr T* addressOf(T& value) noexcept
{
    return __builtin_addressof(value);
}

template <class T>
struct BlockOf : InBlocks {
    template <class... Arguments>
    explicit BlockOf(Arguments&&... arguments) : value(std::forward<Arguments>(arguments)...)
    {}

    T value;
};

/// The same for what a standard container or a shared pointer makes.
template <class T>
struct BlockAllocator {
    using value_type = T;

    BlockAllocator() noexcept = default;
    template <class Other>
    BlockAllocator(const BlockAllocator<Other>&) noexcept
    {}
    T* allocate(std::size_t count) { return static_cast<T*>(takeBlock(count * sizeof(T))); }
    void deallocate(T* block, std::size_t count) noexcept
    {
        giveBlockBack(block, count * sizeof(T));
    }
    template <class Other>
    bool operator==(const BlockAllocator<Other>&) const noexcept
    {
        return true;
    }
};
} // namespace zt::detail
