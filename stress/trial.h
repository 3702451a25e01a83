#pragma once

#include "program.h"

#include <functional>
#include <string>

/// @file
/// Runs programs in a process of their own, which a fault may end.

namespace stress
{
struct Verdict {
    std::string fault; ///< in a few words; empty when nothing was found
    std::string log;   ///< what the process said
};

/// Runs one program, and looks for leaks where the build can.
Verdict tryProgram(const Program& program);

struct Batch {
    unsigned int programs = 0; ///< that passed
    std::size_t steps = 0;
    bool failed = false;
    unsigned int seed = 0; ///< of the program that failed
};

/// Runs the programs of the seeds from `first` on until one fails.
Batch tryPrograms(unsigned int first, unsigned int count, std::size_t profile);

/// The smallest program found that fails in the same way.
Program shrink(Program program, const std::string& fault);
} // namespace stress
