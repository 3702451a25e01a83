#pragma once

#include "../object/hostcode.h"
#include "queuedevent.h"

#include <zintar/eventqueue.h>

#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
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
    ~ZTQueueCore();
    ZTQueueCore(const ZTQueueCore&) = delete;
    ZTQueueCore& operator=(const ZTQueueCore&) = delete;

    static const std::shared_ptr<ZTQueueCore>& of(const ZTEventQueue& queue)
    {
        return queue.m_core;
    }

    // On any thread.
    void push(ZTQueuedEvent::Owner event);
    void pushAt(ZTQueuedEvent::Owner event, Time time);
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
    class Delivering;

    // Under the lock.
    void append(ZTQueuedEvent& event);
    void appendTimed(ZTQueuedEvent& event, Time time);
    [[nodiscard]] ZTQueuedEvent::Owner takeOut(ZTQueuedEvent& event);
    [[nodiscard]] ZTQueuedEvent::Owner replaceWaiting(ZTQueuedEvent::Owner& event);
    bool makeRoom(Lock& lock, const ZTQueuedSubscription& subscription,
                  ZTQueuedEvent::Owner& dropped);
    void makeReady(Time now);
    void pace(ZTQueuedEvent::Owner& event, Time now);

    [[nodiscard]] bool isFull() const
    {
        return m_capacity > 0 && m_readyCount >= m_capacity && !m_isClosed;
    }
    void takeMore();
    std::uint64_t begin();
    [[nodiscard]] ZTQueuedEvent::Owner takeFirst(std::uint64_t last);
    /// Only the thread that delivers changes the count.
    void countTaken(std::ptrdiff_t change)
    {
        const std::size_t count = m_takenCount.load(std::memory_order_relaxed);
        m_takenCount.store(count + static_cast<std::size_t>(change), std::memory_order_relaxed);
    }
    static bool run(ZTQueuedEvent& event);
    void keepMemory(ZTEventBlock* block);
    void finish();

    const std::size_t m_capacity;
    const ZTOverflow m_overflow;
    const std::function<Time()> m_now;

    mutable std::mutex m_mutex;
    std::condition_variable m_arrived;
    std::condition_variable m_room;
    /// Shared with whoever calls it just now.
    std::shared_ptr<const std::function<void()>> m_wake;
    zt::detail::Ring<ZTQueuedEvent, ZTReadyRing> m_ready;
    ZTQueuedEvent::Timed m_timed;
    ZTEventBlock* m_spare = nullptr; ///< memory of events that have been delivered
    std::size_t m_readyCount = 0;
    std::size_t m_pacedCount = 0; ///< of those that are ready, how many are thinned out
    std::size_t m_droppedCount = 0;
    std::uint64_t m_lastSequence = 0;
    unsigned int m_waitingThreads = 0;
    bool m_isClosed = false;
    std::thread::id m_thread;
    /// Handlers that have ended on other threads.
    ZTLetGo m_ended;

    // For the thread that delivers, the count apart.
    zt::detail::Ring<ZTQueuedEvent, ZTReadyRing> m_taken;
    std::atomic<std::size_t> m_takenCount = 0;
    ZTEventBlock* m_delivered = nullptr; ///< memory of events that were taken
    std::size_t m_deliveredCount = 0;
    /// What was raised up to then is taken.
    std::uint64_t m_takenUpTo = 0;
};
