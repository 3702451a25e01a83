#include "eventends.h"

#include "../object/baseprivate.h"
#include "delivery.h"
#include "queuedsubscription.h"

namespace
{
/// So many subscriptions of one subscriber can be looked at one by one.
constexpr int few = 16;

bool hasFewReceived(const ZTBasePrivate& subscriber)
{
    int left = few;
    for (auto* record = subscriber.events.senders; record && left > 0; record = record->next)
        --left;
    return left > 0;
}

/// Makes sure that the subscriptions of a subscriber can be found when there is one more.
void reserveReceived(ZTBasePrivate& subscriber)
{
    if (ZTReceivedIndex* index = subscriber.extras.receivedIndex())
        index->reserve();
    else if (!hasFewReceived(subscriber))
        subscriber.extras.needParts().receivedIndex =
            std::make_unique<ZTReceivedIndex>(ZTReceivedList{subscriber.events.senders});
}
} // namespace

ZTSubscription ZTEventEnds::add(std::shared_ptr<ZTSubscriptionPrivate> record)
{
    ZTLetGo ended;
    ZTSubscription subscription(record);
    ZTBasePrivate* subscriber = record->subscriber;
    ZTBasePrivate& sender = *record->sender;
    sender.takeQueueNews();
    if (subscriber)
        reserveReceived(*subscriber);
    ZTEventSlot& slot = sender.events.eventSlots.findOrMake(record->eventIndex);
    // What the slot knows of its handlers is about the class that this one fits.
    (void)slot.eventOf(*sender.object);
    slot.endUnbound(ended);
    slot.add(record);
    if (!subscriber)
        return subscription;
    ZTReceivedList list{subscriber->events.senders};
    if (ZTReceivedIndex* index = subscriber->extras.receivedIndex())
        index->insert(list, *record);
    else
        list.insertFirst(*record);
    return subscription;
}

void ZTEventEnds::leaveSubscriber(ZTSubscriptionPrivate& record)
{
    if (!record.subscriber)
        return;
    ZTReceivedList list{record.subscriber->events.senders};
    if (ZTReceivedIndex* index = record.subscriber->extras.receivedIndex())
        index->remove(list, record);
    else
        list.remove(record);
}

void ZTEventEnds::end(ZTSubscriptionPrivate& record, ZTLetGo& ended)
{
    if (record.kind == ZTSubscriptionPrivate::Kind::Queued) [[unlikely]]
        (void)ZTQueuedSubscription::end(record, ended);
    else
        leaveSlot(record, ended);
}

void ZTEventEnds::leaveSlot(ZTSubscriptionPrivate& record, ZTLetGo& ended)
{
    ZTEventSlot& slot = *record.sender->events.eventSlots.find(record.eventIndex);
    slot.end(record, ended);
    slot.compact();
}

void ZTEventEnds::block(ZTSubscriptionPrivate& record)
{
    if (ZTQueuedSubscription* queued = ZTQueuedSubscription::of(record))
        return queued->addBlocker();
    if (!record.isActive())
        return;
    ++record.blockers;
    record.sender->events.eventSlots.find(record.eventIndex)->noteBlockers(record);
}

void ZTEventEnds::unblock(ZTSubscriptionPrivate& record)
{
    if (ZTQueuedSubscription* queued = ZTQueuedSubscription::of(record))
        return queued->removeBlocker();
    if (!record.isActive())
        return;
    --record.blockers;
    record.sender->events.eventSlots.find(record.eventIndex)->noteBlockers(record);
}

void ZTEventEnds::endReceived(ZTBasePrivate& subscriber, ZTLetGo& ended)
{
    if (ZTExtras::Parts* parts = subscriber.extras.parts())
        parts->receivedIndex.reset(); // nobody searches any more
    ZTQueuedSubscription::endReceived(subscriber, ended);
    while (subscriber.events.senders)
        end(*subscriber.events.senders, ended);
}

void ZTEventEnds::endSent(ZTLetGo& ended)
{
    eventSlots.forEach([&](ZTEventSlot& slot) { slot.endAll(ended); });
    eventSlots.clear();
}

void ZTEventEnds::leaveDeliveries(const ZTBasePrivate& receiver) noexcept
{
    ZTDelivery::forget(receiver);
}
