#include "../object/baseprivate.h"

namespace
{
void endSubscription(ZTSubscriptionPrivate& record, ZTLetGo& ended)
{
    ZTEventSlot& slot = *record.sender->events.eventSlots.find(record.eventIndex);
    slot.end(record, ended);
    slot.compact();
}

/// Whether the list of a subscriber is shorter to walk than the slots of a sender.
bool hasFewReceived(const ZTBasePrivate& subscriber)
{
    int left = 16;
    for (auto* record = subscriber.events.senders; record && left > 0; record = record->next)
        --left;
    return left > 0;
}

/// Ends what the pattern means, by the list of its subscriber.
bool endAmongReceived(const ZTSubscriptionPattern& pattern, ZTLetGo& ended)
{
    bool any = false;
    ZTSubscriptionPrivate* next = nullptr;
    for (auto* record = pattern.subscriber->events.senders; record; record = next) {
        next = record->next;
        if (!pattern.means(*record))
            continue;
        endSubscription(*record, ended);
        any = true;
    }
    return any;
}
} // namespace

bool ZTEventEnds::endMatching(const ZTSubscriptionPattern& pattern, ZTLetGo& ended)
{
    if (eventSlots.areNone())
        return false;
    // Whatever matches is in the lists of both ends.
    if (pattern.subscriber && hasFewReceived(*pattern.subscriber))
        return endAmongReceived(pattern, ended);
    if (pattern.event) {
        ZTEventSlot* slot = eventSlots.find(pattern.eventIndex);
        return slot && slot->endMatching(pattern, ended);
    }
    bool any = false;
    eventSlots.forEach([&](ZTEventSlot& slot) { any |= slot.endMatching(pattern, ended); });
    return any;
}

bool ZTBase::unsubscribe(const ZTBase* subscriber) const
{
    return unsubscribe(this, nullptr, subscriber, nullptr);
}

bool ZTBase::unsubscribe(const ZTSubscription& subscription)
{
    ZTLetGo ended;
    auto record = subscription.m_record.lock();
    if (!record || !record->isActive())
        return false;
    if (isInvokable(record->handler)) {
        const ZTSubscriptionPattern alike{record->sender,
                                          record->subscriber,
                                          record->event,
                                          record->eventIndex,
                                          &invokableOf(record->handler),
                                          nullptr};
        return record->sender->events.endMatching(alike, ended);
    }
    endSubscription(*record, ended);
    return true;
}

void ZTScopedSubscription::reset() noexcept
{
    ZTLetGo ended;
    ZTSubscription subscription = release();
    auto record = subscription.m_record.lock();
    if (record && record->isActive())
        endSubscription(*record, ended);
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
    return pattern.sender->events.endMatching(pattern, ended);
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

void ZTEventEnds::endReceived(ZTLetGo& ended)
{
    while (senders)
        endSubscription(*senders, ended);
}

void ZTEventEnds::endSent(ZTLetGo& ended)
{
    eventSlots.forEach([&](ZTEventSlot& slot) { slot.endAll(ended); });
    eventSlots.clear();
}
