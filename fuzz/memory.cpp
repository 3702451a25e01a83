#include "memory.h"

#include <malloc.h>

#include <algorithm>
#include <cstdlib>
#include <new>

namespace
{
std::size_t inUse = 0;
std::size_t mostInUse = 0;
} // namespace

namespace memory
{
std::size_t startPeak() { return mostInUse = inUse; }

std::size_t peak() { return mostInUse; }
} // namespace memory

void* operator new(std::size_t size)
{
    void* bytes = std::malloc(std::max<std::size_t>(size, 1));
    if (!bytes)
        throw std::bad_alloc();
    inUse += malloc_usable_size(bytes);
    mostInUse = std::max(mostInUse, inUse);
    return bytes;
}

void operator delete(void* bytes) noexcept
{
    inUse -= malloc_usable_size(bytes);
    std::free(bytes);
}

void operator delete(void* bytes, std::size_t) noexcept { operator delete(bytes); }
