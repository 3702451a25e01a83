#pragma once

#include "../events/eventends.h"
#include "extras.h"
#include "hostcode.h"
#include "treenode.h"

#include <zintar/base.h>
#include <zintar/detail/blocks.h>

#include <string_view>

/// The record that holds all of an object's state, in parts that each belong to one subject. A move
/// of the object hands the record over, so whatever names the record and not the object needs no
/// care then.
///
/// What runs on this thread and must know whether the record is still there is in one of the lists
/// of the thread: a `ZTLifeWatch` or a `ZTDelivery`. The destruction tells them.
struct ZTBasePrivate final : zt::detail::InBlocks, ZTTreeNode {
    using ZTTreeNode::ZTTreeNode;

    /// The record of an object; null for null and for a moved-from object.
    static ZTBasePrivate* of(const ZTBase* object) { return object ? object->priv : nullptr; }

    // Lifetime: lifetime.cpp.
    /// From the object that has the record now.
    void moveTo(ZTBase* newObject);
    /// Ends a record, which may be null, with all that the object was; see `~ZTBase`.
    static void end(ZTBasePrivate* record) noexcept;
    void takeApart() noexcept;
    void takeRestApart(ZTLetGo& ended) noexcept;
    /// Whoever watches the record reads null from here on.
    void tellWatches() noexcept;
    void vanish() noexcept;
    /// Whether nothing refers to the object and it has nothing that has to be ended.
    bool isAlone() const;
    /// The object becomes what the other one was.
    static void replace(ZTBase* object, ZTBase& other);
    /// Whether the object's record can still be handed over.
    static bool hasRecordToGive(const ZTBase& object);

    /// Sees to the slots of subscriptions through queues that have come or gone meanwhile.
    void takeQueueNews() const
    {
        ZTQueueEnds* ends = extras.leaveEventsAlone() ? nullptr : extras.queueEnds();
        if (ends && ends->hasNews.load(std::memory_order_relaxed)) [[unlikely]]
            takeNewsOf(*ends); // events/queuedsubscription.cpp
    }
    /// The slot of an event that somebody hears; null when a send would reach nobody.
    [[nodiscard]] ZTEventSlot* heardSlot(int index) const;
    [[nodiscard]] bool isBlockingSent() const;
    /// The same of one event.
    [[nodiscard]] bool isBlockingSent(int eventIndex) const;
    [[nodiscard]] bool isBlockingReceived() const;
    [[nodiscard]] ZTDynamicProperty* findDynamicProperty(std::string_view name) const;

    ZTEventEnds events;
    ZTExtras extras;

private:
    static void takeNewsOf(ZTQueueEnds& ends);
};

inline bool ZTBasePrivate::isBlockingSent() const
{
    return !extras.leaveEventsAlone() && extras.blockers().blockSent();
}

inline bool ZTBasePrivate::isBlockingSent(int eventIndex) const
{
    return !extras.leaveEventsAlone() && extras.blockers().blockSent(eventIndex);
}

inline bool ZTBasePrivate::isBlockingReceived() const
{
    return !extras.leaveEventsAlone() && extras.blockers().blockReceived();
}

inline ZTEventSlot* ZTBasePrivate::heardSlot(int index) const
{
    takeQueueNews();
    ZTEventSlot* slot = events.eventSlots.find(index);
    return slot && slot->listed > 0 && !isBlockingSent(index) ? slot : nullptr;
}

inline ZTDynamicProperty* ZTBasePrivate::findDynamicProperty(std::string_view name) const
{
    const ZTExtras::Parts* parts = extras.parts();
    return parts ? parts->dynamicProperties.find(name) : nullptr;
}
