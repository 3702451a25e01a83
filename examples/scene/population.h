#pragma once

#include <zintar/metaclass.h>

#include <cstddef>
#include <map>
#include <string>

namespace scene
{
/// Who is in the tree, by name: follows in thought what the actions of a file do, so that a
/// mistake in the last of them is found before the first is carried out.
///
/// Names are unique in the whole scene, so that a name stays good when its object moves.
class Population
{
public:
    // What cannot be is a `Mistake` at the place in the file from which it was asked.

    /// @param parent  empty for the root
    void add(const std::string& name, const ZTMetaClass& metaClass, const std::string& parent,
             const std::string& place);
    const ZTMetaClass& classOf(const std::string& name, const std::string& place) const;
    void move(const std::string& name, const std::string& parent, const std::string& place);
    /// The object and everything below it.
    void remove(const std::string& name, const std::string& place);

private:
    struct Member {
        const ZTMetaClass* metaClass = nullptr;
        std::string parent; ///< empty for the root
        std::string place;
        std::string deletedAt; ///< empty as long as it lives
    };
    bool isWithin(const std::string& name, const std::string& ancestor) const;
    std::size_t depthOf(const std::string& name) const;
    /// How many levels the object and what is below it take.
    std::size_t heightOf(const std::string& name) const;
    void refuseDepth(std::size_t depth, const std::string& place) const;

    std::map<std::string, Member> m_members;
};
} // namespace scene
