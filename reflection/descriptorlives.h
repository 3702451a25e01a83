#pragma once

#include <atomic>

namespace zt::detail
{
/// Changes when a descriptor of a class or an invokable ends. A descriptor that is known by its
/// address is the same one only as long as this has not changed: another one may stand there. The
/// last bit is none of that number: it tells whether deliveries are monitored, so that each, which
/// looks here anyway, comes to know it at no cost.
extern std::atomic<unsigned int> descriptorsEnded;
inline constexpr unsigned int areMonitored = 1;

inline void noteEndOfDescriptor() noexcept
{
    descriptorsEnded.fetch_add(2, std::memory_order_relaxed);
}
} // namespace zt::detail
