#pragma once

#include "../object/baseprivate.h"
#include "subscriptionprivate.h"

#include <zintar/detail/lent.h>

#include <memory>
#include <optional>
#include <vector>

// The rules of re-entrancy. A handler may destroy the sender, its own or any other receiver, may
// unsubscribe and subscribe anything, raise any event again, move either object, and throw.
//
// 1. Receivers are called in the order of their subscribing.
// 2. What is unsubscribed, or whose receiver has died, is not called any more, at once. Its entry
//    becomes empty; positions do not change while a delivery of the slot runs.
// 3. What is subscribed while the slot is being delivered goes behind the end that the outermost
//    delivery has fixed, and takes part from the next send on that is not within that delivery. A
//    nested send of the same event walks the same range.
// 4. A delivery whose sender has died ends after the running handler, and touches nothing of the
//    sender. It knows by being on the slot's stack of deliveries, which the sender's end tells.
// 5. Each delivery to a receiver stands on the receiver's stack of active events while the handler
//    runs, and is taken off if the receiver is still there, also when the subscription has ended,
//    and also when the handler throws.
// 6. A receiver whose destruction has reached `ZTBase`, or that a move has cut down to one of its
//    base classes, is still subscribed, but member functions of its class are not called on what
//    is left of it.
// 7. A handler and what it captured may be deleted when the subscription ends; code of the host
//    that runs then may come back here. So entries are taken out first and let go last.
// 8. Ending a subscription costs the same however many the slot has: its record knows its
//    position. Empty entries are compacted when they outnumber the others, and no delivery runs.

class ZTDelivery;

/// A subscription in a slot, with what a delivery looks at beside it: the records of the
/// subscriptions lie scattered.
struct ZTSlotEntry {
    std::shared_ptr<ZTSubscriptionPrivate> record;
    ZTBasePrivate* subscriber = nullptr;
    /// The handler, if it is called with the addresses of the event's values.
    zt::detail::ZTHandlerBase* typedHandler = nullptr;
};

/// The subscribers of one event of one sender.
struct ZTEventSlot {
    void add(std::shared_ptr<ZTSubscriptionPrivate> record);
    /// Takes the entry out; the caller lets the record go when nothing is left to do here.
    [[nodiscard]] std::shared_ptr<ZTSubscriptionPrivate> take(const ZTSubscriptionPrivate& record);
    void compactIfIdle();
    /// The event by the class that the sender has now; null if there is none with that index.
    const ZTMetaInvokable* eventOf(const ZTBase& sender, int index)
    {
        const ZTMetaClass* senderClass = sender.metaClass();
        if (senderClass != m_class) [[unlikely]] {
            m_event = senderClass->invokable(static_cast<unsigned int>(index));
            m_class = senderClass;
        }
        return m_event;
    }
    /// Whether all subscriptions were made to that very event.
    [[nodiscard]] bool isOf(const ZTMetaInvokable& event) const
    {
        return m_subscribed == &event && !m_isMixed;
    }

    /// In the order of delivery; empty where a subscription has ended.
    std::vector<ZTSlotEntry> subscriptions;
    /// How many entries are not empty.
    std::size_t listed = 0;
    /// The innermost delivery that walks this slot; null when it is idle.
    ZTDelivery* dispatching = nullptr;

private:
    // The last answer of `eventOf`.
    const ZTMetaClass* m_class = nullptr;
    const ZTMetaInvokable* m_event = nullptr;
    /// The event of the first subscription, and whether there was ever one to another event.
    const ZTMetaInvokable* m_subscribed = nullptr;
    bool m_isMixed = false;
};

/// A walk over a slot: on the stack of the slot's deliveries, and while it calls a handler, on the
/// stack of the receiver's active events.
class ZTDelivery
{
public:
    ZTDelivery(ZTBasePrivate& sender, ZTEventSlot& slot, int index, const ZTMetaInvokable& event);
    ZTDelivery(const ZTDelivery&) = delete;
    ZTDelivery& operator=(const ZTDelivery&) = delete;
    ~ZTDelivery()
    {
        leaveReceiver(); // when a handler has thrown
        if (!m_sender)
            return;
        m_slot.dispatching = m_outer;
        if (m_slot.listed < m_slot.subscriptions.size())
            m_slot.compactIfIdle();
    }

    void enterReceiver(ZTBasePrivate& receiver)
    {
        m_receiver = &receiver;
        m_below = receiver.activeEvents;
        receiver.activeEvents = this;
    }
    void leaveReceiver()
    {
        if (m_receiver)
            m_receiver->activeEvents = m_below;
        m_receiver = nullptr;
    }

    /// Null once the sender has died; the slot is gone then.
    [[nodiscard]] ZTBasePrivate* sender() const { return m_sender; }
    [[nodiscard]] std::size_t end() const { return m_end; }
    [[nodiscard]] int index() const { return m_index; }
    [[nodiscard]] const ZTMetaInvokable* event() const { return &m_event; }

    // Each gives the next one on the stack.
    ZTDelivery* senderDied()
    {
        m_sender = nullptr;
        return m_outer;
    }
    ZTDelivery* receiverDied()
    {
        m_receiver = nullptr;
        return m_below;
    }

private:
    ZTBasePrivate* m_sender;
    ZTEventSlot& m_slot;
    int m_index;
    const ZTMetaInvokable& m_event;
    ZTDelivery* m_outer;
    std::size_t m_end;
    ZTBasePrivate* m_receiver = nullptr;
    ZTDelivery* m_below = nullptr;
};

/// The values of an event on their way: as variants, or as the addresses of typed values. Each
/// form is made from the other when the first receiver asks for it.
struct ZTEventValues {
    explicit ZTEventValues(const ZTArgumentArray& array) : m_array(&array) {}
    /// The values are those of the event `declared`.
    ZTEventValues(const ZTMetaInvokable* declared, void** addresses)
        : m_declared(declared), m_addresses(addresses)
    {}

    /// Keeps typed values from being taken for those of `event`, another one at the same index:
    /// the object has got another class since it was declared.
    void fitTo(const ZTMetaInvokable& event)
    {
        if (m_declared && m_declared != &event) [[unlikely]]
            fitToOther(event);
    }
    const ZTArgumentArray& array();
    void** addresses(const ZTMetaInvokable& event)
    {
        return m_addresses ? m_addresses : makeAddresses(event);
    }

private:
    void fitToOther(const ZTMetaInvokable& event);
    void** makeAddresses(const ZTMetaInvokable& event);
    void collectAddresses(const ZTMetaInvokable& event);

    const ZTArgumentArray* m_array = nullptr;
    const ZTMetaInvokable* m_declared = nullptr;
    void** m_addresses = nullptr;
    std::optional<zt::detail::LentArguments> m_lent;
    void* m_collected[zt::detail::maxParamCount];
};
