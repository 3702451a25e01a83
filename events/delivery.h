#pragma once

#include "../object/baseprivate.h"
#include "eventslot.h"

#include <cstddef>

struct ZTEventValues;

/// A walk over a slot: on the stack of the slot's deliveries, and while it calls a handler, on the
/// stack of the receiver's active events.
class ZTDelivery
{
public:
    /// Calls the handlers of a slot. False when the class of the sender does not have the event.
    static bool run(ZTBasePrivate& sender, ZTEventSlot& slot, int index, ZTEventValues& values);

    ZTDelivery(ZTBasePrivate& sender, ZTEventSlot& slot, int index, const ZTMetaInvokable& event);
    ZTDelivery(const ZTDelivery&) = delete;
    ZTDelivery& operator=(const ZTDelivery&) = delete;
    ~ZTDelivery()
    {
        leaveReceiver(); // when a handler has thrown
        if (!m_sender)
            return;
        m_slot.dispatching = m_outer;
        --m_slot.deliveries;
        if (!m_outer && m_slot.listed < m_slot.subscriptions.size())
            m_slot.compact();
    }

    /// The next entry, which may be empty; null at the end, and when the sender has died.
    const ZTSlotEntry* next() { return m_next < m_end ? &m_slot.subscriptions[m_next++] : nullptr; }
    /// Whether what the slot knows of its handlers is about this delivery's event.
    [[nodiscard]] bool isCurrent() const { return m_isCurrent; }

    void enterReceiver(ZTBasePrivate& receiver)
    {
        m_receiver = &receiver;
        m_below = receiver.events.activeEvents;
        receiver.events.activeEvents = this;
    }
    void leaveReceiver()
    {
        if (m_receiver)
            m_receiver->events.activeEvents = m_below;
        m_receiver = nullptr;
    }

    /// Null once the sender has died; the slot is gone then.
    [[nodiscard]] ZTBasePrivate* sender() const { return m_sender; }
    [[nodiscard]] int index() const { return m_index; }
    [[nodiscard]] const ZTMetaInvokable* event() const { return &m_event; }

    // Each gives the next one on the stack.
    ZTDelivery* senderDied()
    {
        m_sender = nullptr;
        m_end = 0;
        return m_outer;
    }
    ZTDelivery* receiverDied()
    {
        m_receiver = nullptr;
        return m_below;
    }

private:
    friend struct ZTEventSlot;

    ZTBasePrivate* m_sender;
    ZTEventSlot& m_slot;
    int m_index;
    bool m_isCurrent = true;
    const ZTMetaInvokable& m_event;
    ZTDelivery* m_outer;
    std::size_t m_next = 0;
    std::size_t m_end;
    ZTBasePrivate* m_receiver = nullptr;
    ZTDelivery* m_below = nullptr;
};
