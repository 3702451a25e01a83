#include "eventends.h"

#include "../object/baseprivate.h"

ZTSubscription ZTEventEnds::addSubscription(std::shared_ptr<ZTSubscriptionPrivate> record)
{
    ZTSubscription subscription(record);
    ZTBasePrivate& sender = *record->sender;
    ZTEventSlot& slot = sender.events.eventSlots.findOrMake(record->eventIndex);
    // What the slot knows of its handlers is about the class that this one fits.
    (void)slot.eventOf(*sender.object);
    slot.add(record);
    if (ZTBasePrivate* subscriber = record->subscriber)
        subscriber->events.addReceived(*record);
    return subscription;
}

void ZTEventEnds::addReceived(ZTSubscriptionPrivate& record)
{
    record.next = senders;
    if (record.next)
        record.next->previous = &record;
    senders = &record;
}

void ZTEventEnds::removeReceived(ZTSubscriptionPrivate& record)
{
    (record.previous ? record.previous->next : senders) = record.next;
    if (record.next)
        record.next->previous = record.previous;
    record.previous = nullptr;
    record.next = nullptr;
}
