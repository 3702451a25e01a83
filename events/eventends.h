#pragma once

#include <zintar/fwd.h>

#include <memory>
#include <vector>

class ZTDelivery;

/// The ends that an object has of events: those that it sends, and those that it hears.
///
/// 1. A subscription stands in a slot of its sender's `eventSlots`, and if it has a subscriber, in
///    the list that begins at the subscriber's `senders`.
/// 2. While a handler runs that was called for the object, the delivery stands on `activeEvents`,
///    unless the object has died.
/// 3. Each blocker stands in one of the two lists of its object.
struct ZTEventEnds {
    ZTEventEnds();
    ZTEventEnds(const ZTEventEnds&) = delete;
    ZTEventEnds& operator=(const ZTEventEnds&) = delete;
    ~ZTEventEnds();

    [[nodiscard]] bool areNone() const;
    /// Whether somebody has ever subscribed to the object.
    [[nodiscard]] bool areSent() const { return eventSlots != nullptr; }

    /// Adds a subscription to the ends of both its objects. May throw, and changes nothing then.
    static ZTSubscription addSubscription(std::shared_ptr<ZTSubscriptionPrivate> record);

    // The sender's side.
    ZTEventSlot& eventSlot(int index);
    /// Null where nobody ever subscribed.
    [[nodiscard]] ZTEventSlot* findSlot(int index) const;
    /// The slot of an event that somebody hears; null when a send would reach nobody.
    [[nodiscard]] ZTEventSlot* heardSlot(int index) const;
    /// Ends what the pattern means, and tells whether there was any.
    bool endMatching(const ZTSubscriptionPrivate& pattern, ZTLetGo& ended);
    void endSent(ZTLetGo& ended);

    // The receiver's side.
    void addReceived(ZTSubscriptionPrivate& record);
    void removeReceived(ZTSubscriptionPrivate& record);
    void endReceived(ZTLetGo& ended);
    /// Tells the deliveries that the object has died.
    void leaveDeliveries();

    /// The blockers block nothing any more.
    void clearBlockers();

    /// The top of the deliveries in progress to this object.
    ZTDelivery* activeEvents = nullptr;
    // The heads of two lists.
    ZTEventBlocker* receivedEventBlockers = nullptr;
    ZTEventBlocker* sentEventBlockers = nullptr;
    /// The subscriptions in which this object is the subscriber, through which it finds its
    /// senders: the head of a list that runs through the records, and its length.
    ZTSubscriptionPrivate* senders = nullptr;
    unsigned int senderCount = 0;
    /// By class-wide index; null where nobody ever subscribed, as a whole and one by one.
    std::unique_ptr<std::vector<std::unique_ptr<ZTEventSlot>>> eventSlots;
};
