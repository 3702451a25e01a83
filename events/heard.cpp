#include "../object/baseprivate.h"
#include "ownevent.h"
#include "queuedsubscription.h"

#include <algorithm>

namespace
{
/// Whether a send would call the handler of the subscription.
bool isHearing(const ZTSlotEntry& entry)
{
    if (!entry.record || !entry.record->isActive() || entry.record->blockers > 0 ||
        (entry.subscriber && entry.subscriber->isBlockingReceived()))
        return false;
    const ZTQueuedSubscription* queued = ZTQueuedSubscription::of(*entry.record);
    return !queued || !queued->isBlocked();
}

/// Null when a send would reach nobody.
const ZTEventSlot* heardSlotOf(const ZTBase& sender, const ZTMetaInvokable* event)
{
    const ZTBasePrivate* record = ZTBasePrivate::of(&sender);
    if (record)
        record->takeQueueNews();
    const bool isAnyHeard = record && !record->events.eventSlots.areNone();
    if (!isAnyHeard || !event || !event->isEvent() || !zt::detail::isEventOf(*event, sender))
        return nullptr;
    return record->heardSlot(event->index());
}
} // namespace

bool ZTBase::isHeard(const ZTMetaInvokable* event) const
{
    const ZTEventSlot* slot = heardSlotOf(*this, event);
    return slot && std::any_of(slot->subscriptions.begin(), slot->subscriptions.end(), isHearing);
}

int ZTBase::listenerCount(const ZTMetaInvokable* event) const
{
    const ZTEventSlot* slot = heardSlotOf(*this, event);
    return slot ? static_cast<int>(std::count_if(slot->subscriptions.begin(),
                                                 slot->subscriptions.end(), isHearing))
                : 0;
}
