#pragma once

#include "measure.h"

#include <string>
#include <vector>

struct Record {
    int number;
    double weight;
    std::string name;
};

inline const std::vector<Record>& records()
{
    static const std::vector<Record> made(100'000, Record{7, 0.5, "eleven char"});
    return made;
}

/// How many variants go through one stream.
inline constexpr int variantCount = 1000;
