#include "memory.h"

#include <cstdlib>
#include <new>
#include <utility>

// Takes the place of the allocation functions of the whole program, the library's calls included.

namespace
{
int left = 0;
}

int stress::failAllocation(int n) { return std::exchange(left, n); }

void* operator new(std::size_t size)
{
    if (left > 0 && --left == 0)
        throw std::bad_alloc();
    if (void* memory = std::malloc(size))
        return memory;
    throw std::bad_alloc();
}

void operator delete(void* memory) noexcept { std::free(memory); }

void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
