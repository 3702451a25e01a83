#include "eventslot.h"

#include "../reflection/parameters.h"
#include "delivery.h"

#include <new>
#include <utility>

using zt::detail::HandlerView;

namespace
{
/// Up to here a look at each entry costs less than an index.
constexpr std::size_t fewEntries = 64;

decltype(ZTSlotEntry::typedCall) typedCallOf(const ZTSubscriptionPrivate& record)
{
    return record.takesEvent && !record.handler.kind->takesArray ? record.handler.kind->call
                                                                 : nullptr;
}

void endRecord(ZTSubscriptionPrivate& record, ZTLetGo& ended)
{
    if (record.subscriber)
        record.subscriber->events.removeReceived(record);
    record.active.store(false, std::memory_order_release);
    ended.add(keptOf(record.handler));
}
} // namespace

void ZTEventSlot::add(std::shared_ptr<ZTSubscriptionPrivate> record)
{
    ZTSubscriptionPrivate& added = *record;
    added.position = static_cast<std::uint32_t>(subscriptions.size());
    subscriptions.push_back(
        {std::move(record), {added.subscriber}, typedCallOf(added), added.handler.word});
    ++listed;
    if (!m_index)
        return;
    try {
        m_index->add(subscriptions.back());
    } catch (const std::bad_alloc&) { // it is made again when somebody searches
        m_index.reset();
    }
}

void ZTEventSlot::end(ZTSubscriptionPrivate& record, ZTLetGo& ended)
{
    ZTSlotEntry& entry = subscriptions[record.position];
    if (m_index)
        m_index->remove(entry);
    endRecord(record, ended);
    entry = {};
    --listed;
    ++empty;
}

bool ZTEventSlot::endMatching(const ZTSubscriptionPattern& pattern, ZTLetGo& ended)
{
    const std::size_t before = listed;
    if (pattern.subscriber && listed > fewEntries && makeIndex()) {
        endIndexed(pattern, ended);
    } else {
        for (std::size_t i = 0; i < subscriptions.size(); ++i)
            if (ZTSubscriptionPrivate* record = subscriptions[i].record.get())
                if (pattern.means(*record))
                    end(*record, ended);
    }
    const bool any = listed < before;
    compact();
    return any;
}

void ZTEventSlot::endIndexed(const ZTSubscriptionPattern& pattern, ZTLetGo& ended)
{
    for (bool isComparable : {true, false}) {
        if (!isComparable && pattern.hasHandler())
            return;
        std::size_t next = ZTSlotIndex::none;
        for (auto i = m_index->first(pattern.subscriber, isComparable); i != ZTSlotIndex::none;
             i = next) {
            next = m_index->after(i);
            ZTSubscriptionPrivate& record = *subscriptions[i].record;
            if (pattern.means(record))
                end(record, ended);
        }
    }
}

/// False where there is no memory for it.
bool ZTEventSlot::makeIndex()
{
    if (m_index && m_index->isCrowded())
        m_index.reset();
    if (m_index)
        return true;
    try {
        m_index = std::make_unique<ZTSlotIndex>(subscriptions);
    } catch (const std::bad_alloc&) {
    }
    return m_index != nullptr;
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
    if (empty <= std::size_t{listed} + dispatching)
        return;
    m_index.reset();
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
    empty = 0;
}

void ZTEventSlot::askAnew(const ZTMetaClass& senderClass)
{
    m_descriptorsEnded = descriptorsEndedNow();
    m_class = &senderClass;
    m_event = senderClass.invokable(static_cast<unsigned int>(index));
    ZTDelivery::forEachOf(*this, [](ZTDelivery& delivery) {
        delivery.m_isCurrent = false;
        delivery.m_typed = nullptr;
    });
    for (ZTSlotEntry& entry : subscriptions) {
        if (!entry.record)
            continue;
        entry.record->takesEvent =
            m_event && zt::detail::takesLeadingOf(HandlerView{entry.record->handler}, *m_event);
        entry.typedCall = typedCallOf(*entry.record);
    }
}
