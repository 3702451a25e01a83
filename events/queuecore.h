#pragma once

#include "../object/hostcode.h"
#include "queuedevent.h"

#include <zintar/eventqueue.h>

#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>

/// What a queue is, for those who may outlive it: its subscriptions, which senders still have.
class ZTQueueCore : public std::enable_shared_from_this<ZTQueueCore>
{
public:
    using Time = ZTEventQueue::Clock::time_point;

    explicit ZTQueueCore(ZTEventQueue::Options options);
    ZTQueueCore(const ZTQueueCore&) = delete;
    ZTQueueCore& operator=(const ZTQueueCore&) = delete;

    static const std::shared_ptr<ZTQueueCore>& of(const ZTEventQueue& queue)
    {
        return queue.m_core;
    }

    // On any thread.
    void push(ZTQueuedEvent event);
    void pushAt(ZTQueuedEvent event, Time time);
    [[nodiscard]] Time now() const;
    /// Sees to the end of a handler: leaves it in `ended` on the thread that delivers.
    void letGo(zt::detail::KeptHandler* handler, ZTLetGo& ended);
    [[nodiscard]] std::size_t waitingCount() const;
    [[nodiscard]] std::size_t droppedCount() const;
    [[nodiscard]] std::optional<Time> nextTime() const;

    // On the thread that delivers.
    std::size_t deliver(std::size_t most);
    bool wait(std::chrono::nanoseconds timeout);
    /// The queue has died. Its subscriptions have ended.
    void close();

    /// Under the lock of the subscriptions.
    zt::detail::Ring<ZTQueuedSubscription, ZTQueueRing> subscriptions;

private:
    using Lock = std::unique_lock<std::mutex>;
    using Event = std::optional<ZTQueuedEvent>;
    using Wake = std::shared_ptr<const std::function<void()>>;
    class Delivering;

    // Under the lock.
    /// Whether an event of that subscription would reach nobody. Behind the end of the queue no
    /// thread may look at what waits.
    [[nodiscard]] bool isInVain(const ZTQueuedSubscription& subscription) const
    {
        return m_isClosed || subscription.isEnded();
    }
    ZTQueuedEvent& append(ZTQueuedEvent&& event);
    void addPaced(ZTQueuedEvent&& event, Time time);
    [[nodiscard]] Event takeWaiting(ZTQueuedSubscription& subscription);
    [[nodiscard]] Event takeReady();
    bool makeRoom(Lock& lock, const ZTQueuedSubscription& subscription, Event& dropped);
    void makeReady(Time now);
    void dropGaps();
    [[nodiscard]] bool isFull() const
    {
        return m_capacity > 0 && m_readyCount >= m_capacity && !m_isClosed;
    }

    std::uint64_t begin();
    [[nodiscard]] Event takeFirst(std::uint64_t last);
    void takeMore();
    static bool run(ZTQueuedEvent& event);
    void finish();
    /// Only the thread that delivers changes the count.
    void setTakenCount() { m_takenCount.store(m_taken.size(), std::memory_order_relaxed); }

    const std::size_t m_capacity;
    const ZTOverflow m_overflow;
    const std::function<Time()> m_now;

    mutable std::mutex m_mutex;
    std::condition_variable m_arrived;
    std::condition_variable m_room;
    /// Shared with whoever calls it just now.
    Wake m_wake;
    /// In the order of delivery. The first one is no gap.
    std::deque<ZTQueuedEvent> m_ready;
    std::multimap<Time, ZTQueuedEvent> m_timed;
    std::size_t m_readyCount = 0; ///< without gaps
    std::size_t m_pacedCount = 0; ///< of these, how many are thinned out
    std::size_t m_droppedCount = 0;
    std::uint64_t m_lastSequence = 0;
    unsigned int m_waitingThreads = 0;
    bool m_isClosed = false;
    std::thread::id m_thread;
    /// Handlers that have ended on other threads.
    ZTLetGo m_ended;

    // For the thread that delivers, the count apart.
    /// What is next to be delivered, out of the hands of the threads that raise.
    std::deque<ZTQueuedEvent> m_taken;
    std::atomic<std::size_t> m_takenCount = 0;
    /// What was raised up to then has been taken.
    std::uint64_t m_takenUpTo = 0;
};
