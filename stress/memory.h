#pragma once

namespace stress
{
/// Lets `operator new` throw at the n-th call from now on, once; 0 for never. Gives what was left
/// to count.
int failAllocation(int n);
} // namespace stress
