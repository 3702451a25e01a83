#pragma once

#include "eventslots.h"

#include <zintar/fwd.h>

/// The ends that an object has of events: those that it sends, and those that it hears.
///
/// A subscription stands in a slot of its sender's `eventSlots`, and if it has a subscriber, in the
/// list that begins at the subscriber's `senders`.
struct ZTEventEnds {
    [[nodiscard]] bool areNone() const { return !senders && eventSlots.areNone(); }

    [[nodiscard]] static ZTSubscription
    handleOf(const std::shared_ptr<ZTSubscriptionPrivate>& record)
    {
        return ZTSubscription(record);
    }
    /// Adds a subscription to the ends of both its objects. May throw, and changes nothing then.
    static ZTSubscription add(std::shared_ptr<ZTSubscriptionPrivate> record);
    /// Takes a subscription out of the list of its subscriber.
    static void leaveSubscriber(ZTSubscriptionPrivate& record);

    /// Somebody else keeps the record meanwhile, unless it is a plain one.
    static void end(ZTSubscriptionPrivate& record, ZTLetGo& ended);
    static void leaveSlot(ZTSubscriptionPrivate& record, ZTLetGo& ended);
    /// The first subscription that the pattern means; null if there is none: unsubscribe.cpp.
    static ZTSubscriptionPrivate* findMeant(const ZTSubscriptionPattern& pattern);
    /// Ends what the pattern means, and tells whether there was any: unsubscribe.cpp.
    static bool endMatching(const ZTSubscriptionPattern& pattern, ZTLetGo& ended);

    // A blocker of a subscription comes and goes. One that has ended is left as it is.
    static void block(ZTSubscriptionPrivate& record);
    static void unblock(ZTSubscriptionPrivate& record);

    // The sender's side.
    void endSent(ZTLetGo& ended);

    // The receiver's side.
    static void endReceived(ZTBasePrivate& subscriber, ZTLetGo& ended);
    /// Tells the deliveries that call a handler of the object that it has died.
    static void leaveDeliveries(const ZTBasePrivate& receiver) noexcept;

    /// The subscriptions in which this object is the subscriber, through which it finds its
    /// senders: the head of a list that runs through the records.
    ZTSubscriptionPrivate* senders = nullptr;
    ZTEventSlots eventSlots;
};
