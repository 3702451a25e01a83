#pragma once

#include "hierarchy.h"
#include "records.h"
#include "variants.h"

#include <cstddef>
#include <iosfwd>
#include <limits>
#include <span>
#include <string>
#include <vector>

namespace dump
{
inline constexpr std::size_t all = std::numeric_limits<std::size_t>::max();

/// All that was read from one file. What is left out in print is still read, for the damage in it
/// and for the classes that derive from it.
struct Contents {
    std::string file;
    std::size_t size = 0;
    std::vector<ClassRecord> classes;
    std::vector<VariantRecord> variants;
    std::vector<Damage> damages;

    /// Of all records, classes first, how many are left out in print, and how many follow that
    /// are not.
    std::size_t skip = 0;
    std::size_t count = all;

    [[nodiscard]] std::span<const ClassRecord> shownClasses() const;
    [[nodiscard]] std::span<const VariantRecord> shownVariants() const;
};

/// Reads class records and then variants, until the bytes end or stop making sense.
/// @param classCount  after how many records variants begin; they also begin behind a record
///                    without name, super class and members
/// @param from  the first byte that is looked at
[[nodiscard]] Contents readContents(std::string file, std::string bytes, std::size_t classCount,
                                    std::size_t from);

/// The text for people.
void printListing(std::ostream& out, const std::vector<Contents>& files,
                  const Hierarchy& hierarchy);

/// One JSON object. Names stand in it as they are on the stream; what of them is no UTF-8 becomes
/// the replacement character.
void printJson(std::ostream& out, const std::vector<Contents>& files, const Hierarchy& hierarchy);

/// A class diagram for Graphviz.
void printDot(std::ostream& out, const std::vector<Contents>& files, const Hierarchy& hierarchy);
} // namespace dump
