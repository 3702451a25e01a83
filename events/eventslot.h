#pragma once

#include "../object/baseprivate.h"
#include "subscriptionprivate.h"

#include <memory>
#include <vector>

// The rules of re-entrancy. A handler may destroy the sender, its own or any other receiver, may
// unsubscribe and subscribe anything, raise any event again, move either object, and throw.
//
// 1. Receivers are called in the order of their subscribing.
// 2. What is unsubscribed, or whose receiver has died, is not called any more, at once. Its entry
//    becomes null; positions do not change while a delivery of the slot runs.
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
//    position. Null entries are compacted when they outnumber the others, and no delivery runs.

class ZTDelivery;

/// The subscribers of one event of one sender.
struct ZTEventSlot {
    void add(std::shared_ptr<ZTSubscriptionPrivate> record);
    /// Takes the entry out; the caller lets the record go when nothing is left to do here.
    [[nodiscard]] std::shared_ptr<ZTSubscriptionPrivate> take(const ZTSubscriptionPrivate& record);
    void compactIfIdle();

    /// In the order of delivery; null where a subscription has ended.
    std::vector<std::shared_ptr<ZTSubscriptionPrivate>> subscriptions;
    /// How many entries are not null.
    std::size_t listed = 0;
    /// The innermost delivery that walks this slot; null when it is idle.
    ZTDelivery* dispatching = nullptr;
};

/// A walk over a slot, on the stack of the slot's deliveries.
class ZTDelivery
{
public:
    ZTDelivery(ZTBasePrivate& sender, ZTEventSlot& slot)
        : m_sender(&sender),
          m_slot(slot),
          m_outer(slot.dispatching),
          m_end(m_outer ? m_outer->m_end : slot.subscriptions.size())
    {
        slot.dispatching = this;
    }
    ZTDelivery(const ZTDelivery&) = delete;
    ZTDelivery& operator=(const ZTDelivery&) = delete;
    ~ZTDelivery()
    {
        if (!m_sender)
            return;
        m_slot.dispatching = m_outer;
        m_slot.compactIfIdle();
    }

    /// Null once the sender has died; the slot is gone then.
    [[nodiscard]] ZTBasePrivate* sender() const { return m_sender; }
    [[nodiscard]] std::size_t end() const { return m_end; }
    ZTDelivery* senderDied()
    {
        m_sender = nullptr;
        return m_outer;
    }

private:
    ZTBasePrivate* m_sender;
    ZTEventSlot& m_slot;
    ZTDelivery* m_outer;
    std::size_t m_end;
};

/// A delivery to one receiver, on the stack of the receiver.
struct ZTActiveEvent {
    ZTActiveEvent(int eventIndex, const ZTMetaInvokable* descriptor, const ZTDelivery& from,
                  ZTBasePrivate* to)
        : index(eventIndex), event(descriptor), delivery(from), receiver(to)
    {
        if (receiver) {
            below = receiver->activeEvents;
            receiver->activeEvents = this;
        }
    }
    ZTActiveEvent(const ZTActiveEvent&) = delete;
    ZTActiveEvent& operator=(const ZTActiveEvent&) = delete;
    ~ZTActiveEvent()
    {
        if (receiver)
            receiver->activeEvents = below;
    }

    [[nodiscard]] ZTBase* sender() const
    {
        return delivery.sender() ? delivery.sender()->object : nullptr;
    }
    ZTActiveEvent* receiverDied()
    {
        receiver = nullptr;
        return below;
    }

    int index;
    const ZTMetaInvokable* event;
    const ZTDelivery& delivery;
    ZTBasePrivate* receiver;
    ZTActiveEvent* below = nullptr;
};

/// The values of an event on their way: as variants, or as the addresses of typed values. Each
/// form is made from the other when the first receiver asks for it.
struct ZTEventValues {
    explicit ZTEventValues(const ZTArgumentArray& array) : m_array(&array) {}
    /// The values are those of the event `declared`.
    ZTEventValues(const ZTMetaInvokable& declared, void** addresses, zt::detail::PackFunction pack)
        : m_declared(&declared), m_addresses(addresses), m_pack(pack)
    {}

    /// Keeps typed values from being taken for those of `event`, another one at the same index:
    /// the object has got another class since it was declared.
    void fitTo(const ZTMetaInvokable& event);
    const ZTArgumentArray& array();
    void** addresses(const ZTMetaInvokable& event);

private:
    void collectAddresses(const ZTMetaInvokable& event);

    const ZTArgumentArray* m_array = nullptr;
    const ZTMetaInvokable* m_declared = nullptr;
    void** m_addresses = nullptr;
    zt::detail::PackFunction m_pack = nullptr;
    std::unique_ptr<ZTArgumentArray> m_packed;
    void* m_collected[zt::detail::maxParamCount] = {};
};
