#pragma once

#include "../reflection/descriptorlives.h"
#include "subscriptionrecord.h"

#include <zintar/base.h>
#include <zintar/detail/blocks.h>

#include <cstddef>
#include <cstdint>
#include <memory>
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
//    sender; the sender's end tells it.
// 5. Each delivery names its receiver while the handler runs, also when the subscription has ended,
//    until the receiver has died. It stands among the active events of its thread, which the
//    receiver's end tells, and leaves them also when the handler throws.
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
// 10. A blocked subscription keeps its place and is passed over. What is asked of it on the way of
//    a delivery is what is asked anyway: its entry has no function to call, and its record counts
//    as one that does not take the values.

class ZTDelivery;

/// A subscription in a slot, with what a delivery looks at beside it: the records of the
/// subscriptions lie scattered.
struct ZTSlotEntry {
    ZTSubscriptionPrivate* record = nullptr;
    union {
        ZTBasePrivate* subscriber = nullptr;
        /// Of an empty entry, while such are taken out: how many that are not stand in front of it.
        std::size_t keptBefore;
    };
    /// Calls the handler, if that is called with the addresses of the event's values and takes
    /// them; otherwise null.
    decltype(zt::detail::HandlerKind::call) typedCall = nullptr;
    std::uintptr_t word = 0;
};

/// The subscribers of one event of one sender.
struct ZTEventSlot : zt::detail::InBlocks {
    explicit ZTEventSlot(int eventIndex) : index(eventIndex) {}

    /// May throw, and changes nothing then.
    void add(std::shared_ptr<ZTSubscriptionPrivate> record);
    /// Ends what is not bound to anything living any more, if the next one to be added needs more
    /// room than there is.
    void endUnbound(ZTLetGo& ended);
    /// Takes the subscription out of the slot and out of its subscriber's list, and its handler
    /// along.
    void end(ZTSubscriptionPrivate& record, ZTLetGo& ended);
    /// Ends all that the pattern means, and tells whether there were any.
    bool endMatching(const ZTSubscriptionPattern& pattern, ZTLetGo& ended);
    /// Ends everything together with the sender: deliveries, subscriptions.
    void endAll(ZTLetGo& ended);
    /// To be called when a subscription has got or lost a blocker.
    void noteBlockers(ZTSubscriptionPrivate& record);
    /// To be called when subscriptions have ended.
    void compact();
    [[nodiscard]] std::size_t emptyCount() const { return subscriptions.size() - listed; }

    /// The event by the class that the sender has now; null if there is none with that index, and
    /// also while deliveries are monitored.
    const ZTMetaInvokable* eventOf(const ZTBase& sender)
    {
        const ZTMetaClass* senderClass = sender.metaClass();
        if (senderClass != m_class || m_descriptorsEnded != descriptorsEndedNow()) [[unlikely]]
            return eventOtherwise(*senderClass);
        return m_event;
    }
    /// The same as it was when `eventOf` was asked last, whoever monitors.
    [[nodiscard]] const ZTMetaInvokable* lastEvent() const { return m_event; }

    /// In the order of delivery; empty where a subscription has ended.
    std::vector<ZTSlotEntry> subscriptions;
    /// How many entries are not empty.
    std::uint32_t listed = 0;
    /// How many deliveries walk this slot.
    std::uint32_t dispatching = 0;
    /// The class-wide index of the event.
    const int index;

private:
    [[nodiscard]] static unsigned int descriptorsEndedNow()
    {
        return zt::detail::descriptorsEnded.load(std::memory_order_relaxed);
    }
    const ZTMetaInvokable* eventOtherwise(const ZTMetaClass& senderClass);
    void askAnew(const ZTMetaClass& senderClass);

    // The last answer, and what it was about. Of the number without the bit, so that it is another
    // one as long as that is set.
    unsigned int m_descriptorsEnded = 0;
    const ZTMetaClass* m_class = nullptr;
    const ZTMetaInvokable* m_event = nullptr;
};
