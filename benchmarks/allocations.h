#pragma once

#include <cstdint>

/// What a process has taken from the heap.
struct HeapUse {
    std::uint64_t allocations; ///< calls that gave a block, ever
    std::int64_t blocks;       ///< blocks that are held now
    std::int64_t bytes;        ///< what `malloc_usable_size` tells of them
};

/// Null unless the counting library is preloaded: counting costs time, so what is timed runs
/// without it.
extern "C" [[gnu::weak]] HeapUse heapUse();
