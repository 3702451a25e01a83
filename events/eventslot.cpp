#include "eventslot.h"

#include <utility>

void ZTEventSlot::add(std::shared_ptr<ZTSubscriptionPrivate> record)
{
    if (!m_subscribed)
        m_subscribed = record->event;
    m_isMixed = m_isMixed || m_subscribed != record->event;
    record->position = subscriptions.size();
    ZTBasePrivate* subscriber = record->subscriber;
    zt::detail::ZTHandlerBase* handler = record->ownedHandler();
    bool isTyped = handler && handler->description && !handler->description->takesArray;
    subscriptions.push_back({std::move(record), subscriber, isTyped ? handler : nullptr});
    ++listed;
}

std::shared_ptr<ZTSubscriptionPrivate> ZTEventSlot::take(const ZTSubscriptionPrivate& record)
{
    auto taken = std::exchange(subscriptions[record.position], {}).record;
    taken->active = false;
    --listed;
    compactIfIdle();
    return taken;
}

void ZTEventSlot::compactIfIdle()
{
    if (dispatching)
        return;
    while (!subscriptions.empty() && !subscriptions.back().record)
        subscriptions.pop_back();
    if (subscriptions.size() - listed <= listed)
        return;
    std::size_t kept = 0;
    for (auto& entry : subscriptions) {
        if (!entry.record)
            continue;
        entry.record->position = kept;
        if (&subscriptions[kept] != &entry)
            subscriptions[kept] = std::move(entry);
        ++kept;
    }
    subscriptions.resize(kept);
}

ZTDelivery::ZTDelivery(ZTBasePrivate& sender, ZTEventSlot& slot, int index,
                       const ZTMetaInvokable& event)
    : m_sender(&sender),
      m_slot(slot),
      m_index(index),
      m_event(event),
      m_outer(slot.dispatching),
      m_end(m_outer ? m_outer->m_end : slot.subscriptions.size())
{
    slot.dispatching = this;
}
