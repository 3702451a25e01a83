#include "../object/baseprivate.h"
#include "queuedsubscription.h"

// Whatever a pattern means is in the lists of both ends. That of the subscriber, if one is meant,
// is the one to search: it is short, or has an index.

namespace
{
template <class Action>
void forEachIndexed(const ZTReceivedIndex& index, int eventIndex,
                    const ZTSubscriptionPattern& pattern, Action& action)
{
    using zt::detail::HandlerIdentity;
    ZTReceivedIndex::Key key{pattern.sender, eventIndex};
    if (!pattern.hasHandler())
        return index.forEachOfEvent(key, action);
    key.handler = {HandlerIdentity::ByWord, pattern.wordOfHandler()};
    index.forEachOfHandler(key, action);
    key.handler = {HandlerIdentity::ByAsking};
    index.forEachOfHandler(key, action);
}

/// Calls `action` with each subscription of the subscriber that the pattern may mean. It may end
/// the one that it is given.
template <class Action>
void forEachReceived(const ZTSubscriptionPattern& pattern, Action& action)
{
    const ZTReceivedIndex* index = pattern.subscriber->extras.receivedIndex();
    if (index && pattern.event)
        return forEachIndexed(*index, pattern.eventIndex, pattern, action);
    if (index) {
        pattern.sender->events.eventSlots.forEach(
            [&](const ZTEventSlot& slot) { forEachIndexed(*index, slot.index, pattern, action); });
        return;
    }
    ZTSubscriptionPrivate* next = nullptr;
    for (auto* record = pattern.subscriber->events.senders; record; record = next) {
        next = record->next;
        action(*record);
    }
}

/// Ends what anybody has.
bool endAmongSent(const ZTSubscriptionPattern& pattern, ZTLetGo& ended)
{
    const ZTEventSlots& slots = pattern.sender->events.eventSlots;
    if (pattern.event) {
        ZTEventSlot* slot = slots.find(pattern.eventIndex);
        return slot && slot->endMatching(pattern, ended);
    }
    bool any = false;
    slots.forEach([&](ZTEventSlot& slot) { any |= slot.endMatching(pattern, ended); });
    return any;
}
} // namespace

bool ZTEventEnds::endMatching(const ZTSubscriptionPattern& pattern, ZTLetGo& ended)
{
    if (!pattern.subscriber)
        return endAmongSent(pattern, ended);
    bool any = false;
    auto endMeant = [&](ZTSubscriptionPrivate& record) {
        if (!pattern.means(record))
            return;
        end(record, ended);
        any = true;
    };
    forEachReceived(pattern, endMeant);
    return any;
}

ZTSubscriptionPrivate* ZTEventEnds::findMeant(const ZTSubscriptionPattern& pattern)
{
    ZTSubscriptionPrivate* found = nullptr;
    auto find = [&](ZTSubscriptionPrivate& record) {
        if (!found && pattern.means(record))
            found = &record;
    };
    if (pattern.subscriber) {
        forEachReceived(pattern, find);
        return found;
    }
    if (const ZTEventSlot* slot = pattern.sender->events.eventSlots.find(pattern.eventIndex))
        for (const ZTSlotEntry& entry : slot->subscriptions)
            if (entry.record && !entry.record->subscriber)
                find(*entry.record);
    return found;
}

bool ZTBase::unsubscribe(const ZTBase* subscriber) const
{
    return unsubscribe(this, nullptr, subscriber, nullptr);
}

bool ZTBase::unsubscribe(const ZTSubscription& subscription)
{
    ZTLetGo ended;
    auto record = subscription.m_record.lock();
    if (record && record->kind == ZTSubscriptionPrivate::Kind::Queued)
        return ZTQueuedSubscription::end(*record, ended);
    if (!record || !record->isActive())
        return false;
    if (isInvokable(record->handler)) {
        const ZTSubscriptionPattern alike{record->sender,
                                          record->subscriber,
                                          record->event,
                                          record->eventIndex,
                                          &invokableOf(record->handler),
                                          nullptr};
        return ZTEventEnds::endMatching(alike, ended);
    }
    ZTEventEnds::end(*record, ended);
    return true;
}

void ZTScopedSubscription::reset() noexcept
{
    ZTLetGo ended;
    ZTSubscription subscription = release();
    auto record = subscription.m_record.lock();
    if (!record)
        return;
    // What has been raised already is not to be delivered either.
    if (record->isActive() || record->kind == ZTSubscriptionPrivate::Kind::Queued)
        ZTEventEnds::end(*record, ended);
}

namespace
{
bool isMovedFrom(const ZTBase* object) { return object && !ZTBasePrivate::of(object); }

bool endByPattern(const ZTBase* sender, const ZTMetaInvokable* event, const ZTBase* subscriber,
                  const ZTMetaInvokable* invokable, const zt::detail::HandlerKey* key)
{
    const ZTSubscriptionPattern pattern{ZTBasePrivate::of(sender),
                                        ZTBasePrivate::of(subscriber),
                                        event,
                                        event ? event->index() : -1,
                                        invokable,
                                        key};
    if (!pattern.sender || isMovedFrom(subscriber) || (event && !event->isEvent()) ||
        (pattern.hasHandler() && !subscriber))
        return false;
    ZTLetGo ended;
    const bool any = ZTEventEnds::endMatching(pattern, ended);
    return ZTQueuedSubscription::endMatching(pattern, ended) || any;
}
} // namespace

bool ZTBase::unsubscribe(const ZTBase* sender, const ZTMetaInvokable* event,
                         const ZTBase* subscriber, const ZTMetaInvokable* handler)
{
    return endByPattern(sender, event, subscriber, handler, nullptr);
}

bool ZTBase::unsubscribeImpl(const ZTBase* sender, const ZTMetaInvokable* event,
                             const ZTBase* subscriber, void* key)
{
    return endByPattern(sender, event, subscriber, nullptr,
                        static_cast<const zt::detail::HandlerKey*>(key));
}
