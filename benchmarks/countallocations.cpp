/// @file
/// A library to preload, which counts what the process takes from malloc. `operator new` and the
/// C libraries among the peers all end there.

#include "allocations.h"

#include <cerrno>
#include <cstddef>
#include <malloc.h>

extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
void __libc_free(void* block);
}

namespace
{
HeapUse use; // the programs have one thread

void* taken(void* block)
{
    if (block) {
        ++use.allocations;
        ++use.blocks;
        use.bytes += static_cast<std::int64_t>(malloc_usable_size(block));
    }
    return block;
}

void given(void* block)
{
    if (block) {
        --use.blocks;
        use.bytes -= static_cast<std::int64_t>(malloc_usable_size(block));
    }
}
} // namespace

extern "C" {
HeapUse heapUse() { return use; }

void* malloc(std::size_t size) noexcept { return taken(__libc_malloc(size)); }
void* calloc(std::size_t count, std::size_t size) noexcept
{
    return taken(__libc_calloc(count, size));
}
void* realloc(void* block, std::size_t size) noexcept
{
    given(block);
    return taken(__libc_realloc(block, size));
}
void* memalign(std::size_t alignment, std::size_t size) noexcept
{
    return taken(__libc_memalign(alignment, size));
}
void* aligned_alloc(std::size_t alignment, std::size_t size) noexcept
{
    return taken(__libc_memalign(alignment, size));
}
int posix_memalign(void** block, std::size_t alignment, std::size_t size) noexcept
{
    *block = taken(__libc_memalign(alignment, size));
    return *block ? 0 : ENOMEM;
}
void free(void* block) noexcept
{
    given(block);
    __libc_free(block);
}
}
