#pragma once

#include <atomic>

namespace zt::detail
{
/// How many descriptors of classes and invokables have ended so far. A descriptor that is known by
/// its address is the same one only as long as this has not changed: another one may stand there.
extern std::atomic<unsigned int> descriptorsEnded;
} // namespace zt::detail
