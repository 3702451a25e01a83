#include "keptblocks.h"

#include <utility>

namespace zt::detail
{
#if defined(ZT_DETAIL_KEEP_NO_BLOCKS)
void* takeBlock(std::size_t size) { return ::operator new(size); }

void giveBlockBack(void* block, std::size_t) noexcept { ::operator delete(block); }
#else
constinit thread_local FreeLists* freeLists = nullptr;

namespace
{
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
