#include "population.h"

#include "mistake.h"

#include <algorithm>

namespace scene
{
namespace
{
/// A tree is walked, and in the end deleted, by functions that call themselves: a file is not to
/// exhaust the stack.
constexpr std::size_t deepestTree = 60;
} // namespace

void Population::add(const std::string& name, const ZTMetaClass& metaClass,
                     const std::string& parent, const std::string& place)
{
    refuseDepth(depthOf(parent) + 1, place);
    auto [known, isNew] = m_members.try_emplace(name, Member{&metaClass, parent, place, {}});
    if (!isNew)
        throw Mistake(place, "the name \"" + name + "\" is taken by " + known->second.place);
}

const ZTMetaClass& Population::classOf(const std::string& name, const std::string& place) const
{
    auto found = m_members.find(name);
    if (found == m_members.end())
        throw Mistake(place, "there is no object \"" + name + "\"");
    const std::string& deletedAt = found->second.deletedAt;
    if (!deletedAt.empty())
        throw Mistake(place, "\"" + name + "\" is gone, deleted by " + deletedAt);
    return *found->second.metaClass;
}

void Population::move(const std::string& name, const std::string& parent, const std::string& place)
{
    if (name == parent)
        throw Mistake(place, "\"" + name + "\" cannot move under itself");
    if (isWithin(parent, name))
        throw Mistake(place,
                      "\"" + name + "\" cannot move under \"" + parent + "\", which is below it");
    refuseDepth(depthOf(parent) + heightOf(name), place);
    m_members.at(name).parent = parent;
}

void Population::remove(const std::string& name, const std::string& place)
{
    for (auto& [other, member] : m_members)
        if (member.deletedAt.empty() && isWithin(other, name))
            member.deletedAt = place;
}

bool Population::isWithin(const std::string& name, const std::string& ancestor) const
{
    for (const std::string* at = &name; !at->empty(); at = &m_members.at(*at).parent)
        if (*at == ancestor)
            return true;
    return false;
}

std::size_t Population::depthOf(const std::string& name) const
{
    std::size_t depth = 0;
    for (const std::string* at = &name; !at->empty(); at = &m_members.at(*at).parent)
        ++depth;
    return depth;
}

std::size_t Population::heightOf(const std::string& name) const
{
    std::size_t deepest = depthOf(name);
    std::size_t top = deepest;
    for (const auto& [other, member] : m_members)
        if (member.deletedAt.empty() && isWithin(other, name))
            deepest = std::max(deepest, depthOf(other));
    return deepest - top + 1;
}

void Population::refuseDepth(std::size_t depth, const std::string& place) const
{
    if (depth > deepestTree)
        throw Mistake(place, "the tree would be more than " + std::to_string(deepestTree) +
                                 " objects deep");
}
} // namespace scene
