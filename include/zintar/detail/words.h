#pragma once

#include <cstdint>

namespace zt::detail
{
/// The address that a word holds which may hold something else instead.
template <class T>
[[nodiscard]] T* pointerIn(std::uintptr_t word) noexcept
{
    return reinterpret_cast<T*>(word); // NOLINT(performance-no-int-to-ptr)
}
} // namespace zt::detail
