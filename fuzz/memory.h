#pragma once

#include <cstddef>

/// @file
/// Counts what the whole program takes by `new`, the library's own included.

namespace memory
{
/// Begins to watch for the most.
/// @return the bytes that are in use now
std::size_t startPeak();

/// The most bytes that were in use at any one time since.
std::size_t peak();
} // namespace memory
