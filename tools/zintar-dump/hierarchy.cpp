#include "hierarchy.h"

#include "text.h"

#include <zintar/base.h>
#include <zintar/dynamicbase.h>

#include <algorithm>
#include <array>

namespace dump
{
namespace
{
/// How far up an inherited event is looked for. A damaged stream can make a line of ancestors as
/// long as it has bytes for, and properties that all ask for the topmost.
constexpr int highestAncestor = 200;

struct LibraryClass {
    const char* shortName;
    ClassRecord record;
};

const std::array<LibraryClass, 2>& libraryClasses()
{
    static const std::array<LibraryClass, 2> classes{
        {{"ZTBase", recordOf(ZTBase::typeMetaClass())},
         {"ZTDynamicBase", recordOf(ZTDynamicBase::typeMetaClass())}}};
    return classes;
}

bool hasSuper(const ClassRecord& record)
{
    bool isUnread = record.super.empty() && !record.isComplete;
    return record.super != noSuper && !isUnread;
}
} // namespace

Hierarchy::Hierarchy(const std::vector<const ClassRecord*>& classes)
{
    for (const ClassRecord* record : classes)
        if (!record->name.empty())
            m_byName.emplace(record->name, record);
    for (const LibraryClass& library : libraryClasses()) {
        m_byName.emplace(library.record.name, &library.record);
        m_byName.emplace(library.shortName, &library.record);
    }
    for (const LibraryClass& library : libraryClasses())
        tie(library.record);
    for (const ClassRecord* record : classes)
        tie(*record);
}

const Lineage& Hierarchy::of(const ClassRecord& record) const { return m_lineages.at(&record); }

bool Hierarchy::isOfLibrary(const ClassRecord& record)
{
    const auto& classes = libraryClasses();
    return std::any_of(classes.begin(), classes.end(),
                       [&](const LibraryClass& library) { return &library.record == &record; });
}

const ClassRecord* Hierarchy::superOf(const ClassRecord& record) const
{
    if (!hasSuper(record))
        return nullptr;
    auto found = m_byName.find(record.super);
    bool isOther = found != m_byName.end() && found->second != &record;
    return isOther ? found->second : nullptr;
}

// Climbs to the first class that is tied already or has nothing above it, and ties from there
// down. Each class is climbed over once, so the whole takes time in proportion to the classes.
void Hierarchy::tie(const ClassRecord& record)
{
    std::vector<const ClassRecord*> line;
    const ClassRecord* current = &record;
    while (current && m_lineages.emplace(current, Lineage{}).second) {
        line.push_back(current);
        current = superOf(*current);
    }
    bool isCircle = std::find(line.begin(), line.end(), current) != line.end();
    if (isCircle) {
        for (const ClassRecord* member : line)
            m_lineages[member] = {SuperKind::Circular, superOf(*member), false, 0, 0};
        return;
    }
    for (auto member = line.rbegin(); member != line.rend(); ++member) {
        tieTo(**member, current);
        current = *member;
    }
}

void Hierarchy::tieTo(const ClassRecord& record, const ClassRecord* super)
{
    Lineage& lineage = m_lineages[&record];
    if (!super) {
        lineage.kind = hasSuper(record) ? SuperKind::Missing : SuperKind::None;
        lineage.isKnown = record.super == noSuper;
        return;
    }
    const Lineage& above = m_lineages[super];
    lineage.super = super;
    lineage.kind = above.kind == SuperKind::Circular ? SuperKind::Circular : SuperKind::Known;
    lineage.isKnown = above.isKnown && super->isComplete;
    lineage.invokableOffset = above.invokableOffset + super->invokables.size();
    lineage.propertyOffset = above.propertyOffset + super->properties.size();
}

const InvokableRecord* Hierarchy::inheritedInvokable(const ClassRecord& record,
                                                     std::size_t index) const
{
    const Lineage* lineage = &of(record);
    for (int i = 0; i < highestAncestor && lineage->super; ++i) {
        const ClassRecord& super = *lineage->super;
        lineage = &of(super);
        if (index >= lineage->invokableOffset)
            return &super.invokables[index - lineage->invokableOffset];
    }
    return nullptr;
}

const InvokableRecord* Hierarchy::changeEventRecord(const ClassRecord& record,
                                                    const PropertyRecord& property) const
{
    int position = property.changeEvent;
    if (position >= 0) {
        auto own = static_cast<std::size_t>(position);
        return own < record.invokables.size() ? &record.invokables[own] : nullptr;
    }
    const Lineage& lineage = of(record);
    auto below = static_cast<std::size_t>(-static_cast<long long>(position));
    if (position == -1 || !lineage.isKnown || below > lineage.invokableOffset)
        return nullptr;
    return inheritedInvokable(record, lineage.invokableOffset - below);
}

std::optional<std::string> Hierarchy::changeEvent(const ClassRecord& record,
                                                  const PropertyRecord& property) const
{
    if (property.changeEvent == -1)
        return std::nullopt;
    const InvokableRecord* event = changeEventRecord(record, property);
    if (event)
        return shownReference(event->name);
    return property.changeEvent < 0 ? "an inherited event" : "an invokable that is not there";
}
} // namespace dump
