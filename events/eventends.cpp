#include "eventends.h"

#include "delivery.h"
#include "eventslot.h"

#include <zintar/eventblocker.h>

ZTEventEnds::ZTEventEnds() = default;

ZTEventEnds::~ZTEventEnds() = default;

bool ZTEventEnds::areNone() const
{
    return !senders && !eventSlots && !sentEventBlockers && !receivedEventBlockers && !activeEvents;
}

ZTEventSlot* ZTEventEnds::findSlot(int index) const
{
    auto position = static_cast<std::size_t>(index);
    return eventSlots && position < eventSlots->size() ? (*eventSlots)[position].get() : nullptr;
}

ZTEventSlot* ZTEventEnds::heardSlot(int index) const
{
    if (!eventSlots || sentEventBlockers)
        return nullptr;
    ZTEventSlot* slot = findSlot(index);
    return slot && slot->listed > 0 ? slot : nullptr;
}

ZTEventSlot& ZTEventEnds::eventSlot(int index)
{
    auto position = static_cast<std::size_t>(index);
    if (!eventSlots)
        eventSlots = std::make_unique<std::vector<std::unique_ptr<ZTEventSlot>>>();
    if (position >= eventSlots->size())
        eventSlots->resize(position + 1);
    auto& slot = (*eventSlots)[position];
    if (!slot)
        slot = std::make_unique<ZTEventSlot>();
    return *slot;
}

void ZTEventEnds::endSent(ZTLetGo& ended)
{
    if (!eventSlots)
        return;
    for (const auto& slot : *eventSlots)
        if (slot)
            slot->endAll(ended);
    eventSlots.reset();
}

void ZTEventEnds::addReceived(ZTSubscriptionPrivate& record)
{
    record.next = senders;
    if (record.next)
        record.next->previous = &record;
    senders = &record;
    ++senderCount;
}

void ZTEventEnds::removeReceived(ZTSubscriptionPrivate& record)
{
    (record.previous ? record.previous->next : senders) = record.next;
    if (record.next)
        record.next->previous = record.previous;
    record.previous = nullptr;
    record.next = nullptr;
    --senderCount;
}

void ZTEventEnds::leaveDeliveries()
{
    while (activeEvents)
        activeEvents = activeEvents->receiverDied();
}
