#include "baseprivate.h"

#include <zintar/log.h>

#include <algorithm>
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
        if (m_moved.record())
            m_moved.record()->isMoving = false;
    }

private:
    const ZTLifeWatch& m_moved;
};
} // namespace

void ZTBasePrivate::setParent(ZTBase* newParent)
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

    ZTLifeWatch self(this);
    ZTLifeWatch target(of(newParent));
    bool wasListed = hasLeftParent || leaveChildren();
    hasLeftParent = false;
    ZTBasePrivate* oldParent = std::exchange(parent, nullptr);
    if (oldParent && wasListed) {
        Moving moving(self);
        oldParent->object->childRemoved(object);
        if (!self.record())
            return;
    }
    parent =
        target.record() && target.record()->stage < ZTLifeStage::Ending ? target.record() : nullptr;
    if (parent) {
        parent->children.push_back(object);
        parent->object->childAdded(object);
    }
}

bool ZTBasePrivate::leaveChildren()
{
    if (!parent)
        return false;
    auto& siblings = parent->children;
    auto found = std::find(siblings.begin(), siblings.end(), object);
    if (found == siblings.end())
        return false;
    siblings.erase(found);
    return true;
}

/// Handlers may delete a sibling, detach it or add one meanwhile. The vector keeps its length: an
/// entry is cleared when its child's turn comes, so that nobody finds a dead object there.
void ZTBasePrivate::deleteChildren()
{
    for (std::size_t i = 0; i < children.size(); ++i) {
        ZTBase* child = children[i];
        if (!child)
            continue;
        children[i] = nullptr;
        of(child)->parent = nullptr;
        // Otherwise somebody is making or ending it right now, and goes on with it.
        if (of(child)->stage == ZTLifeStage::Alive)
            delete child;
    }
}

/// Objects can be above each other in a circle. So a second walk follows at half the speed, which
/// the first one meets in a circle.
bool ZTBasePrivate::descendsFrom(const ZTBasePrivate* ancestor) const
{
    const ZTBasePrivate* slow = this;
    bool slowMoves = false;
    for (const ZTBasePrivate* above = parent; above && above != slow; above = above->parent) {
        if (above == ancestor)
            return true;
        if (slowMoves)
            slow = slow->parent;
        slowMoves = !slowMoves;
    }
    return false;
}
