#include <zintar/detail/blocks.h>

#include <new>

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

/// The bytes that a thread keeps of each size at most.
constexpr std::size_t keptBytes = 64 * 1024;

struct FreeBlock {
    FreeBlock* next;
};

/// The free blocks of one size.
struct FreeList {
    FreeBlock* first = nullptr;
    /// How many more are kept.
    std::size_t room = 0;
};

struct FreeLists {
    FreeLists()
    {
        for (std::size_t i = 0; i < listCount; ++i)
            lists[i].room = keptBytes / blockSize(i);
    }
    FreeLists(const FreeLists&) = delete;
    FreeLists& operator=(const FreeLists&) = delete;
    ~FreeLists()
    {
        for (FreeList& list : lists)
            while (FreeBlock* block = list.first) {
                list.first = block->next;
                ::operator delete(block);
            }
    }

    FreeList lists[listCount];
};

/// Null before the thread's first block is given back, and again when the thread is ending.
[[gnu::tls_model("initial-exec")]] thread_local FreeLists* freeLists = nullptr;
thread_local bool threadIsEnding = false;

struct ThreadEnd {
    FreeLists lists;
    ThreadEnd() { freeLists = &lists; }
    ThreadEnd(const ThreadEnd&) = delete;
    ThreadEnd& operator=(const ThreadEnd&) = delete;
    ~ThreadEnd()
    {
        // What is destroyed later on this thread gives its blocks back past the lists.
        freeLists = nullptr;
        threadIsEnding = true;
    }
};

/// Lays the lists of the thread out.
[[gnu::noinline]] void startKeeping()
{
    if (threadIsEnding)
        return;
    thread_local ThreadEnd atThreadEnd;
}
} // namespace

void* takeBlock(std::size_t size)
{
    std::size_t index = listOf(size);
    if (index >= listCount)
        return ::operator new(size);
    if (FreeLists* kept = freeLists) {
        FreeList& list = kept->lists[index];
        if (FreeBlock* block = list.first) {
            list.first = block->next;
            ++list.room;
            return block;
        }
    }
    return ::operator new(blockSize(index));
}

void giveBlockBack(void* block, std::size_t size) noexcept
{
    std::size_t index = listOf(size);
    if (index < listCount && block) {
        if (!freeLists)
            startKeeping();
        if (FreeLists* kept = freeLists; kept && kept->lists[index].room > 0) {
            FreeList& list = kept->lists[index];
            --list.room;
            list.first = ::new (block) FreeBlock{list.first};
            return;
        }
    }
    ::operator delete(block);
}
#endif
} // namespace zt::detail
