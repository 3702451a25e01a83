#include "queuecore.h"

#include "../object/baseprivate.h"

#include <algorithm>
#include <utility>

ZTQueueCore::ZTQueueCore(ZTEventQueue::Options options)
    : m_capacity(options.capacity),
      m_overflow(options.overflow),
      m_now(std::move(options.now)),
      m_wake(options.wake ? std::make_shared<const std::function<void()>>(std::move(options.wake))
                          : nullptr),
      m_thread(std::this_thread::get_id())
{}

ZTQueueCore::Time ZTQueueCore::now() const { return m_now ? m_now() : ZTEventQueue::Clock::now(); }

void ZTQueueCore::append(ZTQueuedEvent& event)
{
    event.sequence = ++m_lastSequence;
    m_ready.add(event);
    ++m_readyCount;
}

void ZTQueueCore::appendTimed(ZTQueuedEvent& event, Time time)
{
    event.timed = m_timed.emplace(time, &event);
    event.isTimed = true;
}

/// Out of the queue, into the hands of the caller.
ZTQueuedEvent::Owner ZTQueueCore::takeOut(ZTQueuedEvent& event)
{
    if (event.isTimed) {
        m_timed.erase(event.timed);
        event.isTimed = false;
    } else {
        event.unlink();
        --m_readyCount;
        if (m_overflow == ZTOverflow::Wait)
            m_room.notify_one();
    }
    ZTQueuedSubscription& subscription = *event.subscription;
    --subscription.waitingCount;
    if (subscription.waiting == &event)
        subscription.waiting = nullptr;
    return ZTQueuedEvent::Owner(&event);
}

/// Gives a new event the place of the one of its subscription that waits, which is left over.
ZTQueuedEvent::Owner ZTQueueCore::replaceWaiting(ZTQueuedEvent::Owner& event)
{
    ZTQueuedSubscription& subscription = *event->subscription;
    ZTQueuedEvent& old = *subscription.waiting;
    ZTQueuedEvent& replacing = *event.release();
    if (old.isTimed) {
        replacing.timed = old.timed;
        replacing.timed->second = &replacing;
        replacing.isTimed = true;
        old.isTimed = false;
    } else {
        replacing.sequence = old.sequence;
        m_ready.insertBefore(replacing, old);
        old.unlink();
    }
    subscription.waiting = &replacing;
    return ZTQueuedEvent::Owner(&old);
}

/// Puts an event of a subscription that is thinned out in its place.
void ZTQueueCore::pace(ZTQueuedEvent::Owner& event, Time time)
{
    ZTQueuedSubscription& subscription = *event->subscription;
    using zt::detail::Pace;
    if (subscription.pace == Pace::Debounced) {
        appendTimed(*event, time + subscription.interval);
    } else if (subscription.pace == Pace::Throttled && time < subscription.nextTime) {
        appendTimed(*event, subscription.nextTime);
    } else {
        append(*event);
        subscription.nextTime = time + subscription.interval;
    }
    subscription.waiting = event.get();
}

/// @return false where the new event is the one to be dropped
bool ZTQueueCore::makeRoom(Lock& lock, const ZTQueuedSubscription& subscription,
                           ZTQueuedEvent::Owner& dropped)
{
    if (!isFull())
        return true;
    if (m_overflow == ZTOverflow::Wait) {
        // Who delivers would wait for itself.
        if (m_thread != std::this_thread::get_id())
            m_room.wait(lock, [&] { return !isFull() || subscription.isEnded(); });
        return true;
    }
    ++m_droppedCount;
    if (m_overflow == ZTOverflow::RefuseNewest)
        return false;
    dropped = takeOut(*m_ready.first());
    return true;
}

void ZTQueueCore::push(ZTQueuedEvent::Owner event)
{
    using zt::detail::Pace;
    ZTQueuedSubscription& subscription = *event->subscription;
    const bool isTimed =
        subscription.pace == Pace::Throttled || subscription.pace == Pace::Debounced;
    const Time time = isTimed ? now() : Time();
    ZTQueuedEvent::Owner dropped; // behind the lock
    std::shared_ptr<const std::function<void()>> wake;
    {
        Lock lock(m_mutex);
        if (subscription.waiting) {
            if (subscription.pace != Pace::Debounced) {
                dropped = replaceWaiting(event);
                return;
            }
            dropped = takeOut(*subscription.waiting);
        }
        if (subscription.pace != Pace::Debounced && !makeRoom(lock, subscription, dropped))
            return;
        if (m_isClosed || subscription.isEnded())
            return;
        const bool wasEmpty = m_ready.isEmpty();
        const auto* firstTimed = m_timed.empty() ? nullptr : m_timed.begin()->second;
        if (subscription.pace == Pace::All)
            append(*event);
        else
            pace(event, time);
        ++subscription.waitingCount;
        const ZTQueuedEvent* added = event.release();
        const bool isNews = added->isTimed ? m_timed.begin()->second != firstTimed : wasEmpty;
        if (isNews && m_waitingThreads > 0)
            m_arrived.notify_one();
        if (isNews)
            wake = m_wake;
    }
    if (wake)
        (*wake)();
}

void ZTQueueCore::pushAt(ZTQueuedEvent::Owner event, Time time)
{
    std::shared_ptr<const std::function<void()>> wake;
    {
        const Lock lock(m_mutex);
        if (m_isClosed)
            return;
        appendTimed(*event, time);
        ++event->subscription->waitingCount;
        if (m_timed.begin()->second == event.release()) {
            m_arrived.notify_one();
            wake = m_wake;
        }
    }
    if (wake)
        (*wake)();
}

void ZTQueueCore::letGo(zt::detail::KeptHandler* handler, ZTLetGo& ended)
{
    const Lock lock(m_mutex);
    (m_thread == std::this_thread::get_id() ? ended : m_ended).add(handler);
    if (m_overflow == ZTOverflow::Wait)
        m_room.notify_all(); // whoever waits for room may have nothing to push any more
}

bool ZTQueueCore::isNoneWaiting(const ZTQueuedSubscription& subscription) const
{
    const Lock lock(m_mutex);
    return subscription.waitingCount == 0;
}

std::size_t ZTQueueCore::waitingCount() const
{
    const Lock lock(m_mutex);
    return m_readyCount + m_timed.size();
}

std::size_t ZTQueueCore::droppedCount() const
{
    const Lock lock(m_mutex);
    return m_droppedCount;
}

std::optional<ZTQueueCore::Time> ZTQueueCore::nextTime() const
{
    const Lock lock(m_mutex);
    if (!m_ready.isEmpty())
        return Time::min();
    if (!m_timed.empty())
        return m_timed.begin()->first;
    return {};
}

/// Moves what is due behind what waits.
void ZTQueueCore::makeReady(Time time)
{
    while (!m_timed.empty() && m_timed.begin()->first <= time) {
        ZTQueuedEvent& event = *m_timed.begin()->second;
        m_timed.erase(m_timed.begin());
        event.isTimed = false;
        event.subscription->nextTime = time + event.subscription->interval;
        append(event);
    }
}

/// Sees to the end of a delivery, also where a handler has thrown.
class ZTQueueCore::Delivering
{
public:
    explicit Delivering(ZTQueueCore& core) : m_core(core) {}
    Delivering(const Delivering&) = delete;
    Delivering& operator=(const Delivering&) = delete;
    ~Delivering() { m_core.finish(); }

private:
    ZTQueueCore& m_core;
};

/// @return the last event that takes part
std::uint64_t ZTQueueCore::begin()
{
    const bool isTimed = [this] {
        const Lock lock(m_mutex);
        m_thread = std::this_thread::get_id();
        return !m_timed.empty();
    }();
    const Time time = isTimed ? now() : Time();
    const Lock lock(m_mutex);
    if (isTimed)
        makeReady(time);
    return m_lastSequence;
}

ZTQueuedEvent::Owner ZTQueueCore::takeFirst(std::uint64_t last)
{
    const Lock lock(m_mutex);
    ZTQueuedEvent* first = m_ready.first();
    return first && first->sequence <= last ? takeOut(*first) : nullptr;
}

/// @return whether the handler was called
bool ZTQueueCore::run(ZTQueuedEvent& event)
{
    ZTQueuedSubscription& subscription = *event.subscription;
    if (subscription.isEnded())
        return false;
    ZTLetGo ended;
    if (!subscription.isBound()) {
        (void)ZTQueuedSubscription::end(subscription, ended);
        return false;
    }
    if (subscription.receiver && subscription.receiver->isBlockingReceived())
        return false;
    const zt::detail::KeptCall running(subscription.handler);
    if (subscription.isOnce) {
        ZTLetGo endedBefore;
        (void)ZTQueuedSubscription::end(subscription, endedBefore);
    }
    event.call();
    return true;
}

void ZTQueueCore::finish()
{
    ZTLetGo ended;
    std::shared_ptr<const std::function<void()>> wake;
    {
        const Lock lock(m_mutex);
        ended.take(m_ended);
        if (!m_ready.isEmpty())
            wake = m_wake;
    }
    if (wake)
        (*wake)();
}

std::size_t ZTQueueCore::deliver(std::size_t most)
{
    const auto kept = shared_from_this();
    const Delivering delivering(*this);
    const std::uint64_t last = begin();
    std::size_t count = 0;
    while (count < most) {
        const ZTQueuedEvent::Owner event = takeFirst(last);
        if (!event)
            break;
        if (run(*event))
            ++count;
    }
    return count;
}

bool ZTQueueCore::wait(std::chrono::nanoseconds timeout)
{
    // A clock has an end.
    const auto longest = std::chrono::nanoseconds(std::chrono::hours(24 * 365));
    const auto end = ZTEventQueue::Clock::now() + std::min(timeout, longest);
    while (true) {
        const Time time = now();
        Lock lock(m_mutex);
        makeReady(time);
        if (!m_ready.isEmpty())
            return true;
        auto left = end - ZTEventQueue::Clock::now();
        if (left <= std::chrono::nanoseconds(0))
            return false;
        if (!m_timed.empty())
            left = std::min<decltype(left)>(left, m_timed.begin()->first - time);
        ++m_waitingThreads;
        m_arrived.wait_for(lock, left);
        --m_waitingThreads;
    }
}

void ZTQueueCore::close()
{
    std::shared_ptr<const std::function<void()>> wake; // behind the lock
    ZTLetGo ended;
    {
        const Lock lock(m_mutex);
        m_isClosed = true;
        wake = std::move(m_wake);
        ended.take(m_ended);
        m_room.notify_all();
    }
    // Nothing comes any more.
    while (true) {
        ZTQueuedEvent::Owner left;
        const Lock lock(m_mutex);
        ZTQueuedEvent* first = m_ready.first();
        if (!first && !m_timed.empty())
            first = m_timed.begin()->second;
        if (!first)
            return;
        left = takeOut(*first);
    }
}
