#include "eventslot.h"

#include "../reflection/parameters.h"
#include "delivery.h"

#include <new>
#include <utility>

using zt::detail::ZTHandlerBase;

namespace
{
/// Up to here a look at each entry costs less than an index.
constexpr std::size_t fewEntries = 64;

bool takesValuesOf(const ZTSubscriptionPrivate& subscription, const ZTMetaInvokable& event)
{
    if (const ZTHandlerBase* handler = subscription.ownedHandler())
        return zt::detail::takesLeadingOf(*handler, event);
    return zt::detail::takesLeadingOf(*std::get<const ZTMetaInvokable*>(subscription.handler),
                                      event);
}

/// The handler, if it takes the addresses of the event's values.
ZTHandlerBase* typedHandlerOf(const ZTSubscriptionPrivate& subscription)
{
    ZTHandlerBase* handler = subscription.ownedHandler();
    bool isTyped = handler && handler->description && !handler->description->takesArray;
    return isTyped && subscription.takesEvent ? handler : nullptr;
}

void endRecord(ZTSubscriptionPrivate& record, ZTLetGo& ended)
{
    if (record.subscriber)
        record.subscriber->events.removeReceived(record);
    record.active.store(false, std::memory_order_release);
    ended.add(record.ownedHandler());
}
} // namespace

void ZTEventSlot::add(std::shared_ptr<ZTSubscriptionPrivate> record)
{
    ZTSubscriptionPrivate& added = *record;
    added.position = subscriptions.size();
    subscriptions.push_back({std::move(record), {added.subscriber}, typedHandlerOf(added)});
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
}

bool ZTEventSlot::endMatching(const ZTSubscriptionPrivate& pattern, ZTLetGo& ended)
{
    const std::size_t before = listed;
    if (pattern.subscriber && listed > fewEntries && makeIndex()) {
        endIndexed(pattern, ended);
    } else {
        for (std::size_t i = 0; i < subscriptions.size(); ++i)
            if (ZTSubscriptionPrivate* record = subscriptions[i].record.get())
                if (record->matches(pattern))
                    end(*record, ended);
    }
    const bool any = listed < before;
    compact();
    return any;
}

void ZTEventSlot::endIndexed(const ZTSubscriptionPrivate& pattern, ZTLetGo& ended)
{
    auto* key = std::get_if<void*>(&pattern.handler);
    for (bool isComparable : {true, false}) {
        if (!isComparable && key && *key)
            return;
        std::size_t next = ZTSlotIndex::none;
        for (auto i = m_index->first(pattern.subscriber, isComparable); i != ZTSlotIndex::none;
             i = next) {
            next = m_index->after(i);
            ZTSubscriptionPrivate& record = *subscriptions[i].record;
            if (record.matches(pattern))
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
    while (dispatching)
        dispatching = dispatching->senderDied();
    for (ZTSlotEntry& entry : subscriptions)
        if (entry.record)
            endRecord(*entry.record, ended);
}

void ZTEventSlot::compact()
{
    if (subscriptions.size() - listed <= listed + deliveries)
        return;
    m_index.reset();
    std::size_t kept = 0;
    for (ZTSlotEntry& entry : subscriptions) {
        if (entry.record)
            entry.record->position = kept++;
        else
            entry.keptBefore = kept;
    }
    auto moved = [&](std::size_t position) {
        if (position >= subscriptions.size())
            return kept;
        const ZTSlotEntry& entry = subscriptions[position];
        return entry.record ? entry.record->position : entry.keptBefore;
    };
    for (ZTDelivery* delivery = dispatching; delivery; delivery = delivery->m_outer) {
        delivery->m_next = moved(delivery->m_next);
        delivery->m_end = moved(delivery->m_end);
    }
    for (ZTSlotEntry& entry : subscriptions) {
        ZTSlotEntry* place = entry.record ? &subscriptions[entry.record->position] : &entry;
        if (place != &entry)
            *place = std::exchange(entry, {});
    }
    subscriptions.resize(kept);
}

void ZTEventSlot::askAnew(const ZTMetaClass& senderClass, int index)
{
    m_descriptorsEnded = descriptorsEndedNow();
    m_class = &senderClass;
    m_event = senderClass.invokable(static_cast<unsigned int>(index));
    for (ZTDelivery* delivery = dispatching; delivery; delivery = delivery->m_outer)
        delivery->m_isCurrent = false;
    for (ZTSlotEntry& entry : subscriptions) {
        if (!entry.record)
            continue;
        entry.record->takesEvent = m_event && takesValuesOf(*entry.record, *m_event);
        entry.typedHandler = typedHandlerOf(*entry.record);
    }
}
