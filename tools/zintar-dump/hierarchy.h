#pragma once

#include "records.h"

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace dump
{
/// What is known of the super class of a class.
enum class SuperKind {
    None,     ///< it has none, or its name could not be read
    Known,    ///< it stands in one of the files or is one of the library's own
    Missing,  ///< it is known by name only
    Circular, ///< following the names comes back to the class, or to one above it, by others
};

struct Lineage {
    SuperKind kind = SuperKind::Missing;
    const ClassRecord* super = nullptr; ///< where it was found
    /// Whether every class up to the root is there in full, and with it what follows.
    bool isKnown = false;
    std::size_t invokableOffset = 0;
    std::size_t propertyOffset = 0;
};

/// Ties classes to their super classes by name, in whatever order they came.
///
/// Of several classes with one name the first is taken as super class. One in a file goes before
/// one of the library, as a host may have classes of its own under those names. No class is taken
/// as its own super class, which is then another one of the same name; and no name stands for none.
class Hierarchy
{
public:
    /// @param classes  must outlive the hierarchy
    explicit Hierarchy(const std::vector<const ClassRecord*>& classes);

    [[nodiscard]] const Lineage& of(const ClassRecord& record) const;
    [[nodiscard]] static bool isOfLibrary(const ClassRecord& record);

    /// The event that announces a change of the property; null when there is none, or when the
    /// class that has it is not here.
    [[nodiscard]] const InvokableRecord* changeEventRecord(const ClassRecord& record,
                                                           const PropertyRecord& property) const;

    /// The same for people: a name, or why there is none. Nothing when nothing announces it.
    [[nodiscard]] std::optional<std::string> changeEvent(const ClassRecord& record,
                                                         const PropertyRecord& property) const;

private:
    void tie(const ClassRecord& record);
    void tieTo(const ClassRecord& record, const ClassRecord* super);
    [[nodiscard]] const ClassRecord* superOf(const ClassRecord& record) const;
    [[nodiscard]] const InvokableRecord* inheritedInvokable(const ClassRecord& record,
                                                            std::size_t index) const;

    std::map<std::string, const ClassRecord*> m_byName; // hashes can be made to collide
    std::unordered_map<const ClassRecord*, Lineage> m_lineages;
};
} // namespace dump
