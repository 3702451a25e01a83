#pragma once

#include <cstddef>
#include <iosfwd>
#include <limits>
#include <string>
#include <vector>

namespace dump
{
enum class Form { Listing, Json, Dot };

struct Options {
    /// "-" is the standard input; none at all means the same.
    std::vector<std::string> files;
    Form form = Form::Listing;
    /// How many class records stand in each file before variants begin.
    std::size_t classCount = std::numeric_limits<std::size_t>::max();
    /// The first byte that is read in each file.
    std::size_t from = 0;
    /// How many records of each file are left out, and how many follow that are not.
    std::size_t skip = 0;
    std::size_t count = std::numeric_limits<std::size_t>::max();
    /// The most bytes that a file may have. What is read takes several times as many.
    std::size_t limit = std::size_t{256} << 20;
};

// What the tool exits with.
inline constexpr int sound = 0;
inline constexpr int damaged = 1;
inline constexpr int failed = 2;

struct Contents;

/// Prints what was read; what did not make sense is told on `errors`, a line each.
/// @return the exit code
int show(const std::vector<Contents>& files, Form form, std::ostream& out, std::ostream& errors);

/// Reads the files and shows them. Files that cannot be read are told on `errors`, a line each.
/// @return the exit code
int dump(const Options& options, std::ostream& out, std::ostream& errors);
} // namespace dump
