#include "eventslot.h"

#include "../reflection/parameters.h"
#include "delivery.h"
#include "specialsubscription.h"

#include <utility>

using zt::detail::HandlerView;

namespace
{
decltype(ZTSlotEntry::typedCall) typedCallOf(const ZTSubscriptionPrivate& record)
{
    const bool isCalledSo = record.isCalled && !record.handler.kind->takesArray &&
                            record.kind == ZTSubscriptionPrivate::Kind::Plain;
    return isCalledSo ? record.handler.kind->call : nullptr;
}

/// One that goes through a queue has only left its slot: what else is of it is for the queue.
void endRecord(ZTSubscriptionPrivate& record, ZTLetGo& ended)
{
    if (ZTSpecialSubscription* special = specialOf(record))
        ended.add(special->condition.release());
    if (record.kind == ZTSubscriptionPrivate::Kind::Queued)
        return;
    ZTEventEnds::leaveSubscriber(record);
    record.active.store(false, std::memory_order_release);
    ended.add(keptOf(record.handler));
    const auto last = std::move(record.self); // it may be gone behind this
}
} // namespace

void ZTEventSlot::add(std::shared_ptr<ZTSubscriptionPrivate> record)
{
    ZTSubscriptionPrivate& added = *record;
    added.position = static_cast<std::uint32_t>(subscriptions.size());
    subscriptions.push_back({&added, {added.subscriber}, typedCallOf(added), added.handler.word});
    if (!added.self) // one that goes through a queue owns itself already
        added.self = std::move(record);
    ++listed;
}

void ZTEventSlot::endUnbound(ZTLetGo& ended)
{
    if (subscriptions.size() < subscriptions.capacity() || dispatching > 0)
        return;
    for (const ZTSlotEntry& entry : subscriptions) {
        const ZTSpecialSubscription* special =
            entry.record && !entry.typedCall ? specialOf(*entry.record) : nullptr;
        if (special && special->kind == ZTSubscriptionPrivate::Kind::Special && !special->isBound())
            end(*entry.record, ended);
    }
    compact();
}

void ZTEventSlot::end(ZTSubscriptionPrivate& record, ZTLetGo& ended)
{
    subscriptions[record.position] = {};
    endRecord(record, ended);
    --listed;
}

void ZTEventSlot::noteBlockers(ZTSubscriptionPrivate& record)
{
    record.isCalled = record.takesEvent && record.blockers == 0;
    subscriptions[record.position].typedCall = typedCallOf(record);
}

bool ZTEventSlot::endMatching(const ZTSubscriptionPattern& pattern, ZTLetGo& ended)
{
    const std::size_t before = listed;
    for (std::size_t i = 0; i < subscriptions.size(); ++i)
        if (ZTSubscriptionPrivate* record = subscriptions[i].record)
            if (pattern.means(*record))
                end(*record, ended);
    const bool any = listed < before;
    compact();
    return any;
}

void ZTEventSlot::endAll(ZTLetGo& ended)
{
    ZTDelivery::forEachOf(*this, [](ZTDelivery& delivery) {
        delivery.m_end = 0;
        delivery.m_sender = nullptr;
    });
    for (ZTSlotEntry& entry : subscriptions)
        if (entry.record)
            endRecord(*entry.record, ended);
}

void ZTEventSlot::compact()
{
    if (emptyCount() <= std::size_t{listed} + dispatching)
        return;
    std::size_t kept = 0;
    for (ZTSlotEntry& entry : subscriptions) {
        if (entry.record)
            entry.record->position = static_cast<std::uint32_t>(kept++);
        else
            entry.keptBefore = kept;
    }
    auto moved = [&](std::size_t position) {
        if (position >= subscriptions.size())
            return kept;
        const ZTSlotEntry& entry = subscriptions[position];
        return entry.record ? std::size_t{entry.record->position} : entry.keptBefore;
    };
    ZTDelivery::forEachOf(*this, [&](ZTDelivery& delivery) {
        delivery.m_next = moved(delivery.m_next);
        delivery.m_end = moved(delivery.m_end);
    });
    for (ZTSlotEntry& entry : subscriptions) {
        ZTSlotEntry* place = entry.record ? &subscriptions[entry.record->position] : &entry;
        if (place != &entry)
            *place = std::exchange(entry, {});
    }
    subscriptions.resize(kept);
}

[[gnu::cold]] const ZTMetaInvokable* ZTEventSlot::eventOtherwise(const ZTMetaClass& senderClass)
{
    using zt::detail::areMonitored;
    const unsigned int now = descriptorsEndedNow();
    if (&senderClass != m_class || (now & ~areMonitored) != m_descriptorsEnded)
        askAnew(senderClass);
    return now & areMonitored ? nullptr : m_event;
}

void ZTEventSlot::askAnew(const ZTMetaClass& senderClass)
{
    m_descriptorsEnded = descriptorsEndedNow() & ~zt::detail::areMonitored;
    m_class = &senderClass;
    m_event = senderClass.invokable(static_cast<unsigned int>(index));
    bool isAnswerNew = false;
    for (ZTSlotEntry& entry : subscriptions) {
        if (!entry.record)
            continue;
        const bool takes =
            m_event && zt::detail::takesLeadingOf(HandlerView{entry.record->handler}, *m_event);
        isAnswerNew = isAnswerNew || takes != entry.record->takesEvent;
        entry.record->takesEvent = takes;
        noteBlockers(*entry.record);
    }
    // Where each handler takes what it took, a delivery goes on as if nobody had asked.
    if (isAnswerNew)
        ZTDelivery::forEachOf(*this, [](ZTDelivery& delivery) {
            delivery.m_isCurrent = false;
            delivery.m_typed = nullptr;
        });
}
