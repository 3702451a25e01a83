#pragma once

#include "queueends.h"
#include "specialsubscription.h"

#include <zintar/subscription.h>

#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>

// The rules of subscriptions through queues. Sender and receiver may belong to two threads; the
// queue belongs to the thread that delivers, as the receivers of its handlers do. Any thread may
// subscribe, unsubscribe and post, as long as what it names lives meanwhile.
//
// 1. Raising copies the values and pushes them. Of the receiver it touches nothing, and of the
//    subscription what the sender's slot has. Options that ask (when, once) are asked then.
// 2. Delivery is in the order of raising, as the lock of the queue has it.
// 3. Who begins or ends a subscription does so in the rings of its sender, its receiver and its
//    queue at once, under one lock. What the sender's slots have to learn of it is left as news.
// 4. Whoever ends a subscription cancels what waits of it, and so do the deaths of the receiver and
//    of the queue. The sender's death does not: what it has said, it has said. The subscription is
//    drained then, and ends with the last value that waits.
// 5. A handler is called and destroyed on the thread that delivers: at once where that ends the
//    subscription, or else at the next delivery. A condition belongs to the thread of the sender.
// 6. A blocker of the sender acts when the event is raised, one of the receiver when it is
//    delivered, one of the subscription at both.
// 7. A handler that throws has had its turn. What waits behind it stays where it is.
// 8. The lock of the subscriptions comes before that of a queue. Under neither runs code of the
//    host: events that are dropped are destroyed behind them.

struct ZTEventValues;
class ZTQueueCore;
class ZTQueuedEvent;

/// One subscription through a queue, or one callable that was posted.
struct ZTQueuedSubscription final : ZTSpecialSubscription,
                                    zt::detail::RingLink<ZTSentRing>,
                                    zt::detail::RingLink<ZTReceivedRing>,
                                    zt::detail::RingLink<ZTQueueRing>,
                                    zt::detail::RingLink<ZTNewsRing> {
    using Time = std::chrono::steady_clock::time_point;

    ZTQueuedSubscription(zt::detail::SubscriptionOptions& options,
                         std::shared_ptr<ZTQueueCore> through, ZTBasePrivate* receiverRecord);

    /// Null for one that does not go through a queue.
    static ZTQueuedSubscription* of(ZTSubscriptionPrivate& record)
    {
        return record.kind == Kind::Queued ? static_cast<ZTQueuedSubscription*>(&record) : nullptr;
    }

    // Beginning.
    /// May throw, and changes nothing then. The handler is owned from then on.
    static ZTSubscription add(ZTBasePrivate& sender, const ZTMetaInvokable& event,
                              ZTBasePrivate* receiver, zt::detail::OwnedHandler& handler,
                              zt::detail::SubscriptionOptions& options);
    /// The same for a callable to be called once, which no event precedes.
    static ZTQueuedSubscription& addPost(std::shared_ptr<ZTQueueCore> queue,
                                         ZTBasePrivate* receiver,
                                         zt::detail::OwnedHandler& handler);

    /// Sees to the slots of a sender, on its thread.
    static void takeNews(ZTQueueEnds& sender);
    /// Pushes the values of an event. The subscription may be gone behind this.
    void enqueue(const ZTMetaInvokable& raised, ZTEventValues& values);
    // An event of the subscription keeps it.
    void addEvent() noexcept { m_events.fetch_add(oneEvent, std::memory_order_relaxed); }
    /// The subscription may be gone behind this.
    void removeEvent() noexcept
    {
        std::size_t events = m_events.load(std::memory_order_acquire);
        while (!(events & isLeaving))
            if (m_events.compare_exchange_weak(events, events - oneEvent,
                                               std::memory_order_acq_rel))
                return;
        removeLeaving();
    }

    // Ending. What may be destroyed on this thread is left in `ended`.
    /// Tells whether there was anything to end.
    static bool end(ZTSubscriptionPrivate& record, ZTLetGo& ended);
    static bool endMatching(const ZTSubscriptionPattern& pattern, ZTLetGo& ended);
    static void endReceived(ZTBasePrivate& receiver, ZTLetGo& ended);
    /// The slots of a sender that dies are gone already.
    static void leaveSender(ZTQueueEnds& sender, ZTLetGo& ended);
    static void endOfQueue(ZTQueueCore& queue, ZTLetGo& ended);

    [[nodiscard]] bool isEnded() const { return state.load(std::memory_order_acquire) == Ended; }
    // A blocker of the subscription acts when the event is raised and when it is delivered.
    void addBlocker() { m_blockers.fetch_add(1, std::memory_order_relaxed); }
    void removeBlocker() { m_blockers.fetch_sub(1, std::memory_order_relaxed); }
    [[nodiscard]] bool isBlocked() const { return m_blockers.load(std::memory_order_relaxed) > 0; }
    /// Whether any waits or is being delivered.
    [[nodiscard]] bool hasEvents() const
    {
        return m_events.load(std::memory_order_acquire) >= oneEvent;
    }

    enum State : unsigned char { Living, Drained, Ended };
    /// Where the sender has it.
    enum class Place : unsigned char { Nowhere, Arriving, InSlot, Leaving };

    const std::shared_ptr<ZTQueueCore> queue;
    /// Read on its own thread alone, as long as the subscription has not ended.
    ZTBasePrivate* const receiver;
    /// Those of the sender, as long as it lives.
    ZTQueueEnds* senderEnds = nullptr;
    std::atomic<State> state = Living;
    Place place = Place::Nowhere;
    const zt::detail::Pace pace;
    /// Whether the descriptor of the event is one that never ends.
    bool isEventForEver = false;

    const std::chrono::nanoseconds interval;

    // Under the lock of the queue.
    /// The one that waits, where there is at most one, and its time, where that has not come.
    ZTQueuedEvent* waiting = nullptr;
    std::optional<Time> waitingTime;
    /// When the next one may be delivered.
    Time nextTime{};

private:
    /// Ends a drained one, and lets go of one that has ended, with its last event.
    void removeLeaving() noexcept;
    void setState(State newState) noexcept;
    void letGoOfSelf() noexcept;
    static void endLocked(ZTQueuedSubscription& subscription, ZTLetGo& ended);
    static void drainLocked(ZTQueuedSubscription& subscription);
    void enterSlot();
    bool tryToEnterSlot();

    std::atomic<unsigned int> m_blockers = 0;
    /// How many events there are, times `oneEvent`. The last bit is set, under the lock, once the
    /// subscription is not living any more: from then on the count falls under the lock alone, so
    /// that who takes the last event out does not meet who lets go of the subscription.
    std::atomic<std::size_t> m_events = 0;
    static constexpr std::size_t isLeaving = 1;
    static constexpr std::size_t oneEvent = 2;
};
