#pragma once

#include <zintar/fwd.h>

#include <cstddef>
#include <cstdint>
#include <vector>

/// How far the beginning or the end of an object has come.
enum class ZTLifeStage : unsigned char {
    Beginning, ///< the constructor or an assignment of `ZTBase` goes on; see `ZTBeginning`
    Alive,
    Dying,   ///< the destruction has reached `ZTBase`: of what the object was, only that is left
    TornDown ///< the record is being destroyed and cannot be handed over
};

/// An object as a node of the tree: the part of its record that others name it by.
///
/// 1. `object` is the object that has the record now.
/// 2. An object stands at most once in one `children` vector, that of its `parent`. The entries are
///    in ascending order of `rank`; those that are null, while the parent is dying, stand in front.
struct ZTTreeNode {
    explicit ZTTreeNode(ZTBase* owner) : object(owner) {}
    ZTTreeNode(const ZTTreeNode&) = delete;
    ZTTreeNode& operator=(const ZTTreeNode&) = delete;

    /// The node of an object that has a record.
    static ZTTreeNode& of(const ZTBase* object);

    void setParent(ZTBase* newParent);
    /// Takes the object out of its parent's children, without a word to anybody.
    bool leaveChildren();
    void deleteChildren();
    bool descendsFrom(const ZTTreeNode* ancestor) const;
    /// Another object takes the place of the one that has the node now.
    void standFor(ZTBase* newObject);

    // For `setParent` of a child.
    /// Room for what is about to join, or has yet to come; may throw and changes nothing then.
    void reserveChild();
    /// The room is there.
    void addChild(ZTTreeNode& child);

    ZTBase* object;
    ZTTreeNode* parent = nullptr;
    std::vector<ZTBase*> children;
    std::uint32_t rank = 0;
    /// How many objects are about to become children, for which there is room already. Each has a
    /// `setParent` on the stack of the thread, so the bits are enough.
    std::uint32_t expectedChildren : 24 = 0;
    ZTLifeStage stage : 2 = ZTLifeStage::Alive;
    /// The object is between two parents; see `setParent`.
    bool isMoving : 1 = false;
    /// The object is out of its parent's list already, and the parent is still to be told.
    bool hasLeftParent : 1 = false;

private:
    /// Where the object stands among its parent's children; their number if it does not.
    [[nodiscard]] std::size_t placeAmongChildren() const;
};
