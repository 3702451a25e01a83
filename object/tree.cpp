#include "baseprivate.h"

#include <zintar/log.h>

#include <algorithm>
#include <limits>
#include <utility>

namespace
{
/// Marks a record as between two parents.
class Moving
{
public:
    explicit Moving(const ZTLifeWatch& moved) : m_moved(moved) { moved.record()->isMoving = true; }
    Moving(const Moving&) = delete;
    Moving& operator=(const Moving&) = delete;
    ~Moving()
    {
        if (m_moved)
            m_moved.record()->isMoving = false;
    }

private:
    const ZTLifeWatch& m_moved;
};

/// Keeps room among the children of an object for one that is about to join, whatever handlers add
/// meanwhile.
class ZTJoining
{
public:
    explicit ZTJoining(ZTBase* parent) : m_parent(parent)
    {
        if (m_parent) {
            m_parent.record()->reserveChild();
            ++m_parent.record()->expectedChildren;
        }
    }
    ZTJoining(const ZTJoining&) = delete;
    ZTJoining& operator=(const ZTJoining&) = delete;
    ~ZTJoining()
    {
        if (m_parent)
            --m_parent.record()->expectedChildren;
    }
    /// Null when there is none, or when it has died.
    [[nodiscard]] ZTTreeNode* parent() const { return m_parent.record(); }

private:
    ZTLifeWatch m_parent;
};
} // namespace

ZTTreeNode& ZTTreeNode::of(const ZTBase* object) { return *ZTBasePrivate::of(object); }

void ZTTreeNode::setParent(ZTBase* newParent)
{
    if (newParent == object) {
        ztLog("Zintar Error: Cannot parent an ZTBase object under itself.", ZTLogType::Error);
        return;
    }
    // Within `childRemoved` of this very move: the outer call's parent stands.
    if (isMoving)
        return;
    // Nobody would take it out of the new parent's list again.
    if (newParent && stage >= ZTLifeStage::TornDown)
        return;

    ZTJoining joining(newParent);
    ZTLifeWatch self(static_cast<ZTBasePrivate*>(this));
    bool wasListed = hasLeftParent || leaveChildren();
    hasLeftParent = false;
    ZTTreeNode* oldParent = std::exchange(parent, nullptr);
    if (oldParent && wasListed) {
        Moving moving(self);
        oldParent->object->childRemoved(object);
        if (!self)
            return;
    }
    if (ZTTreeNode* joined = joining.parent()) {
        joined->addChild(*this);
        joined->object->childAdded(object);
    }
}

void ZTTreeNode::reserveChild()
{
    const std::size_t needed = children.size() + expectedChildren + 1;
    if (needed > children.capacity())
        children.reserve(std::max(needed, 2 * children.capacity()));
}

void ZTTreeNode::addChild(ZTTreeNode& child)
{
    const ZTTreeNode* last = children.empty() || !children.back() ? nullptr : &of(children.back());
    if (last && last->rank == std::numeric_limits<std::uint32_t>::max()) {
        std::uint32_t next = 0;
        for (ZTBase* sibling : children)
            if (sibling)
                of(sibling).rank = next++;
    }
    child.rank = last ? last->rank + 1 : 0;
    child.parent = this;
    children.push_back(child.object);
}

std::size_t ZTTreeNode::placeAmongChildren() const
{
    if (!parent)
        return 0;
    const auto& siblings = parent->children;
    auto isBefore = [this](const ZTBase* sibling) { return !sibling || of(sibling).rank < rank; };
    auto found = std::partition_point(siblings.begin(), siblings.end(), isBefore);
    bool isListed = found != siblings.end() && *found == object;
    return isListed ? static_cast<std::size_t>(found - siblings.begin()) : siblings.size();
}

bool ZTTreeNode::leaveChildren()
{
    const std::size_t place = placeAmongChildren();
    if (!parent || place == parent->children.size())
        return false;
    parent->children.erase(parent->children.begin() + static_cast<std::ptrdiff_t>(place));
    return true;
}

void ZTTreeNode::standFor(ZTBase* newObject)
{
    const std::size_t place = placeAmongChildren(); // as long as the entry has a record
    if (parent && place < parent->children.size())
        parent->children[place] = newObject;
    object = newObject;
}

/// Handlers may delete a sibling, detach it or add one meanwhile. The vector keeps its length: an
/// entry is cleared when its child's turn comes, so that nobody finds a dead object there.
void ZTTreeNode::deleteChildren()
{
    for (std::size_t i = 0; i < children.size(); ++i) {
        ZTBase* child = children[i];
        if (!child)
            continue;
        children[i] = nullptr;
        of(child).parent = nullptr;
        // Otherwise somebody is making or ending it right now, and goes on with it.
        if (of(child).stage == ZTLifeStage::Alive)
            delete child;
    }
}

/// Objects can be above each other in a circle. So a second walk follows at half the speed, which
/// the first one meets in a circle.
bool ZTTreeNode::descendsFrom(const ZTTreeNode* ancestor) const
{
    const ZTTreeNode* slow = this;
    bool slowMoves = false;
    for (const ZTTreeNode* above = parent; above && above != slow; above = above->parent) {
        if (above == ancestor)
            return true;
        if (slowMoves)
            slow = slow->parent;
        slowMoves = !slowMoves;
    }
    return false;
}
