#pragma once

#include <zintar/detail/blocks.h>

#include <cstddef>
#include <new>

/// @file
/// The blocks that a thread keeps, for the sources of the library that take and give them without a
/// call.

#if defined(__has_feature)
#    if __has_feature(address_sanitizer) || __has_feature(memory_sanitizer) ||                     \
        __has_feature(thread_sanitizer)
#        define ZT_DETAIL_KEEP_NO_BLOCKS
#    endif
#elif defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#    define ZT_DETAIL_KEEP_NO_BLOCKS
#endif

namespace zt::detail
{
#if !defined(ZT_DETAIL_KEEP_NO_BLOCKS)
/// Sizes are rounded up to what an allocator gives without waste, and blocks of one such size are
/// kept together.
inline constexpr std::size_t step = 16;
inline constexpr std::size_t listCount = 16;

constexpr std::size_t listOf(std::size_t size) { return (size + step / 2 - 1) / step; }

constexpr std::size_t blockSize(std::size_t list) { return list * step + step / 2; }

/// The free blocks of one size. They are not linked through their own memory, which the processor
/// would have to fetch before it can hand one out.
class FreeList
{
public:
    FreeList() : m_top(m_blocks) { m_blocks[capacity + 1] = this; }
    FreeList(const FreeList&) = delete;
    FreeList& operator=(const FreeList&) = delete;
    ~FreeList()
    {
        while (void* block = take())
            ::operator delete(block);
    }
    void* take()
    {
        void* block = *m_top;
        if (block)
            *m_top-- = nullptr;
        return block;
    }
    bool keep(void* block)
    {
        if (m_top[1])
            return false;
        *++m_top = block;
        return true;
    }

private:
    static constexpr std::size_t capacity = 125;
    void** m_top;
    /// Null below the first block and above the last, and something else at the end: so neither
    /// way has to count.
    void* m_blocks[capacity + 2] = {};
};

struct FreeLists {
    FreeList lists[listCount];
};

/// Null before the thread's first block is given back, and again when the thread is ending. A mere
/// pointer: there is little room for what a library that is loaded late keeps for each thread.
[[gnu::tls_model("initial-exec")]] extern constinit thread_local FreeLists* freeLists;
#endif

/// The same as `takeBlock` and `giveBlockBack`, for sizes that are known while compiling.
template <std::size_t Size>
void* takeBlockOf()
{
#if !defined(ZT_DETAIL_KEEP_NO_BLOCKS)
    static_assert(listOf(Size) < listCount);
    if (FreeLists* kept = freeLists)
        if (void* block = kept->lists[listOf(Size)].take())
            return block;
#endif
    return takeBlock(Size);
}
template <std::size_t Size>
void giveBlockOfBack(void* block) noexcept
{
#if !defined(ZT_DETAIL_KEEP_NO_BLOCKS)
    FreeLists* kept = freeLists;
    if (kept && kept->lists[listOf(Size)].keep(block))
        return;
#endif
    giveBlockBack(block, Size);
}
} // namespace zt::detail
