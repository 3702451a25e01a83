#pragma once

#include "../object/baseprivate.h"
#include "../reflection/descriptorlives.h"
#include "slotindex.h"
#include "subscriptionprivate.h"

#include <zintar/detail/lent.h>

#include <cstddef>
#include <memory>
#include <optional>
#include <vector>

// The rules of re-entrancy. A handler may destroy the sender, its own or any other receiver, may
// unsubscribe and subscribe anything, raise any event again, move either object, and throw.
//
// 1. Receivers are called in the order of their subscribing.
// 2. What is unsubscribed, or whose receiver has died, is not called any more, at once: its entry
//    becomes empty.
// 3. What is subscribed while the slot is being delivered goes behind the end that the outermost
//    delivery has fixed, and takes part from the next send on that is not within that delivery. A
//    nested send of the same event walks the same range.
// 4. A delivery whose sender has died ends after the running handler, and touches nothing of the
//    sender. It knows by being on the slot's stack of deliveries, which the sender's end tells.
// 5. Each delivery to a receiver stands on the receiver's stack of active events while the handler
//    runs, and is taken off if the receiver is still there, also when the subscription has ended,
//    and also when the handler throws.
// 6. A receiver whose destruction has gone past the class of a member function, or that a move has
//    cut down to one of its base classes, is still subscribed, but the member function is not
//    called on what is left of it.
// 7. A handler and what it captured may be deleted when the subscription ends; code of the host
//    that runs then may come back here. So entries are taken out first and let go last.
// 8. Ending a subscription costs the same however many the slot has: its record knows its
//    position. Empty entries are taken out when they outnumber the others, and the running
//    deliveries are told where they stand then.
// 9. A handler is called with values of the types that it takes. Whether it takes those of the
//    event is asked when it is subscribed, and anew when the sender has another class, or when
//    there may be other descriptors at the addresses of those that were asked about.

class ZTDelivery;

/// A subscription in a slot, with what a delivery looks at beside it: the records of the
/// subscriptions lie scattered.
struct ZTSlotEntry {
    std::shared_ptr<ZTSubscriptionPrivate> record;
    union {
        ZTBasePrivate* subscriber = nullptr;
        /// Of an empty entry, while such are taken out: how many that are not stand in front of it.
        std::size_t keptBefore;
    };
    /// The handler, if it is called with the addresses of the event's values and takes them.
    zt::detail::ZTHandlerBase* typedHandler = nullptr;
};

/// The subscribers of one event of one sender.
struct ZTEventSlot {
    /// May throw, and changes nothing then.
    void add(std::shared_ptr<ZTSubscriptionPrivate> record);
    /// Takes the subscription out of the slot and out of its subscriber's list, and its handler
    /// along.
    void end(ZTSubscriptionPrivate& record, ZTLetGo& ended);
    /// Ends all that the pattern means, and tells whether there were any.
    bool endMatching(const ZTSubscriptionPrivate& pattern, ZTLetGo& ended);
    /// Ends everything together with the sender: deliveries, subscriptions.
    void endAll(ZTLetGo& ended);
    /// To be called when subscriptions have ended.
    void compact();

    /// The event by the class that the sender has now; null if there is none with that index.
    const ZTMetaInvokable* eventOf(const ZTBase& sender, int index)
    {
        const ZTMetaClass* senderClass = sender.metaClass();
        if (senderClass != m_class || m_descriptorsEnded != descriptorsEndedNow()) [[unlikely]]
            askAnew(*senderClass, index);
        return m_event;
    }

    /// In the order of delivery; empty where a subscription has ended.
    std::vector<ZTSlotEntry> subscriptions;
    /// How many entries are not empty.
    std::size_t listed = 0;
    /// The innermost delivery that walks this slot; null when it is idle.
    ZTDelivery* dispatching = nullptr;
    /// How many deliveries walk it.
    std::size_t deliveries = 0;

private:
    [[nodiscard]] static unsigned int descriptorsEndedNow()
    {
        return zt::detail::descriptorsEnded.load(std::memory_order_relaxed);
    }
    void askAnew(const ZTMetaClass& senderClass, int index);
    void endIndexed(const ZTSubscriptionPrivate& pattern, ZTLetGo& ended);
    bool makeIndex();

    // The last answer of `eventOf`.
    const ZTMetaClass* m_class = nullptr;
    const ZTMetaInvokable* m_event = nullptr;
    unsigned int m_descriptorsEnded = 0;
    /// Null as long as nobody had to search among many.
    std::unique_ptr<ZTSlotIndex> m_index;
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

/// The values of an event on their way: as variants, or as the addresses of typed values.
///
/// Typed values are copies, which nobody changes. An array is the sender's: a handler may change
/// it, so its addresses are taken for each call.
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
    /// Whether they are what a handler with these parameters takes.
    template <class Handler>
    [[nodiscard]] bool areTakenBy(const Handler& handler) const;

    const ZTArgumentArray& array();
    /// Ten addresses, of which those of the handler's parameters are set.
    void** addresses(const zt::detail::ZTHandlerBase& handler)
    {
        return m_addresses ? m_addresses : collectAddresses(handler);
    }

private:
    void fitToOther(const ZTMetaInvokable& event);
    void** collectAddresses(const zt::detail::ZTHandlerBase& handler);

    const ZTArgumentArray* m_array = nullptr;
    const ZTMetaInvokable* m_declared = nullptr;
    void** m_addresses = nullptr;
    std::optional<zt::detail::LentArguments> m_lent;
    void* m_collected[zt::detail::maxParamCount];
};
