#include <zintar/detail/blocks.h>

#include <new>
#include <utility>

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
#if defined(ZT_DETAIL_KEEP_NO_BLOCKS)
void* takeBlock(std::size_t size) { return ::operator new(size); }

void giveBlockBack(void* block, std::size_t) noexcept { ::operator delete(block); }
#else
namespace
{
/// Sizes are rounded up to what an allocator gives without waste, and blocks of one such size are
/// kept together.
constexpr std::size_t step = 16;
constexpr std::size_t listCount = 16;

std::size_t listOf(std::size_t size) { return (size + step / 2 - 1) / step; }

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
[[gnu::tls_model("initial-exec")]] thread_local FreeLists* freeLists = nullptr;
thread_local bool threadIsEnding = false;

struct ThreadEnd {
    ThreadEnd() { freeLists = new (std::nothrow) FreeLists; }
    ThreadEnd(const ThreadEnd&) = delete;
    ThreadEnd& operator=(const ThreadEnd&) = delete;
    ~ThreadEnd()
    {
        // What is destroyed later on this thread gives its blocks back past the lists.
        threadIsEnding = true;
        delete std::exchange(freeLists, nullptr);
    }
};

bool keep(void* block, std::size_t index)
{
    FreeLists* kept = freeLists;
    return kept && kept->lists[index].keep(block);
}

/// For a full list, and for a thread whose lists are not laid out.
[[gnu::noinline]] void giveBackElsewhere(void* block, std::size_t index)
{
    if (!freeLists && !threadIsEnding) {
        thread_local ThreadEnd atThreadEnd;
        if (keep(block, index))
            return;
    }
    ::operator delete(block);
}
} // namespace

void* takeBlock(std::size_t size)
{
    std::size_t index = listOf(size);
    if (index >= listCount)
        return ::operator new(size);
    if (FreeLists* kept = freeLists)
        if (void* block = kept->lists[index].take())
            return block;
    return ::operator new(blockSize(index));
}

void giveBlockBack(void* block, std::size_t size) noexcept
{
    std::size_t index = listOf(size);
    if (index >= listCount)
        ::operator delete(block);
    else if (!keep(block, index)) [[unlikely]]
        giveBackElsewhere(block, index);
}
#endif
} // namespace zt::detail
