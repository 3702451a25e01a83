#include "../object/baseprivate.h"
#include "eventslot.h"

namespace
{
/// Up to here a subscriber's list is shorter to walk than the slots of a sender.
constexpr unsigned int fewReceived = 16;

void endSubscription(ZTSubscriptionPrivate& record, ZTLetGo& ended)
{
    ZTEventSlot& slot = *record.sender->events.findSlot(record.eventIndex);
    slot.end(record, ended);
    slot.compact();
}

/// Ends what the pattern means, by the list of its subscriber.
bool endAmongReceived(const ZTSubscriptionPrivate& pattern, ZTLetGo& ended)
{
    bool any = false;
    ZTSubscriptionPrivate* next = nullptr;
    for (auto* record = pattern.subscriber->events.senders; record; record = next) {
        next = record->next;
        if (!record->matches(pattern))
            continue;
        endSubscription(*record, ended);
        any = true;
    }
    return any;
}
} // namespace

bool ZTEventEnds::endMatching(const ZTSubscriptionPrivate& pattern, ZTLetGo& ended)
{
    if (!eventSlots)
        return false;
    // Whatever matches is in the lists of both ends.
    if (pattern.subscriber && pattern.subscriber->events.senderCount <= fewReceived)
        return endAmongReceived(pattern, ended);
    if (pattern.event) {
        ZTEventSlot* slot = findSlot(pattern.eventIndex);
        return slot && slot->endMatching(pattern, ended);
    }
    bool any = false;
    for (const auto& slot : *eventSlots)
        any |= slot && slot->endMatching(pattern, ended);
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
    // A handler that is owned is this subscription's alone: nothing else can match.
    if (!record->ownedHandler())
        return record->sender->events.endMatching(*record, ended);
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

bool removeByPattern(const ZTBase* sender, const ZTMetaInvokable* event, const ZTBase* subscriber,
                     ZTSubscriptionPrivate::Handler handler, bool hasHandler)
{
    if (!ZTBasePrivate::of(sender) || isMovedFrom(subscriber) || (event && !event->isEvent()) ||
        (hasHandler && !subscriber))
        return false;
    ZTLetGo ended;
    ZTSubscriptionPrivate pattern;
    pattern.sender = ZTBasePrivate::of(sender);
    pattern.event = event;
    pattern.eventIndex = event ? event->index() : -1;
    pattern.subscriber = ZTBasePrivate::of(subscriber);
    pattern.handler = handler;
    return pattern.sender->events.endMatching(pattern, ended);
}
} // namespace

bool ZTBase::unsubscribe(const ZTBase* sender, const ZTMetaInvokable* event,
                         const ZTBase* subscriber, const ZTMetaInvokable* handler)
{
    return removeByPattern(sender, event, subscriber, handler, handler != nullptr);
}

bool ZTBase::unsubscribeImpl(const ZTBase* sender, const ZTMetaInvokable* event,
                             const ZTBase* subscriber, void* key)
{
    return removeByPattern(sender, event, subscriber, key, key != nullptr);
}

void ZTEventEnds::endReceived(ZTLetGo& ended)
{
    while (senders)
        endSubscription(*senders, ended);
}
