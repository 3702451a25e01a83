#pragma once

#include "../events/eventends.h"
#include "dynamicproperties.h"
#include "hostcode.h"
#include "references.h"
#include "treenode.h"

#include <zintar/base.h>
#include <zintar/detail/blocks.h>

/// The record that holds all of an object's state, in parts that each belong to one subject. A move
/// of the object hands the record over, so whatever names the record and not the object needs no
/// care then.
///
/// What runs on this thread and must know whether the record is still there is on one of its
/// stacks: `watches`, the active events, or the deliveries of a slot. The destruction tells them.
struct ZTBasePrivate final : zt::detail::InBlocks, ZTTreeNode {
    using ZTTreeNode::ZTTreeNode;

    /// The record of an object; null for null and for a moved-from object.
    static ZTBasePrivate* of(const ZTBase* object) { return object ? object->priv : nullptr; }

    // Lifetime: lifetime.cpp.
    /// From the object that has the record now.
    void moveTo(ZTBase* newObject);
    /// Ends a record, which may be null, with all that the object was; see `~ZTBase`.
    static void end(ZTBasePrivate* record) noexcept;
    /// Whether nothing refers to the object and it has nothing that has to be ended.
    bool isAlone() const;
    /// The object becomes what the other one was.
    static void replace(ZTBase* object, ZTBase& other);
    /// Whether the object's record can still be handed over.
    static bool hasRecordToGive(const ZTBase& object);

    ZTEventEnds events;
    ZTReferences references;
    ZTDynamicProperties dynamicProperties;
    ZTLifeWatch* watches = nullptr;
};
