#include "queuecore.h"

#include "../object/baseprivate.h"

#include <algorithm>
#include <utility>

using zt::detail::Pace;

namespace
{
bool isPaced(const ZTQueuedEvent& event) { return event.subscription()->pace != Pace::All; }

void endNow(ZTQueuedSubscription& subscription)
{
    ZTLetGo ended;
    (void)ZTQueuedSubscription::end(subscription, ended);
}
} // namespace

ZTQueueCore::ZTQueueCore(ZTEventQueue::Options options)
    : m_capacity(options.capacity),
      m_overflow(options.overflow),
      m_now(std::move(options.now)),
      m_wake(options.wake ? std::make_shared<const std::function<void()>>(std::move(options.wake))
                          : nullptr),
      m_thread(std::this_thread::get_id())
{}

ZTQueueCore::Time ZTQueueCore::now() const { return m_now ? m_now() : ZTEventQueue::Clock::now(); }

ZTQueuedEvent& ZTQueueCore::append(ZTQueuedEvent&& event)
{
    const bool isOneOfPace = isPaced(event);
    ZTQueuedEvent& added = m_ready.emplace_back(std::move(event));
    added.sequence = ++m_lastSequence;
    ++m_readyCount;
    m_pacedCount += isOneOfPace;
    return added;
}

/// Puts an event of a subscription that is thinned out in its place.
void ZTQueueCore::addPaced(ZTQueuedEvent&& event, Time time)
{
    ZTQueuedSubscription& subscription = *event.subscription();
    const bool isDebounced = subscription.pace == Pace::Debounced;
    if (isDebounced || (subscription.pace == Pace::Throttled && time < subscription.nextTime)) {
        const Time due = isDebounced ? time + subscription.interval : subscription.nextTime;
        subscription.waiting = &m_timed.emplace(due, std::move(event))->second;
        subscription.waitingTime = due;
    } else {
        subscription.waiting = &append(std::move(event));
        subscription.waitingTime.reset();
        subscription.nextTime = time + subscription.interval;
    }
}

/// The event of the subscription that waits. Where it was ready it leaves a gap.
ZTQueueCore::Event ZTQueueCore::takeWaiting(ZTQueuedSubscription& subscription)
{
    ZTQueuedEvent* waiting = std::exchange(subscription.waiting, nullptr);
    Event taken(std::move(*waiting));
    if (subscription.waitingTime) {
        auto [timed, end] = m_timed.equal_range(*subscription.waitingTime);
        m_timed.erase(std::find_if(timed, end, [&](auto& one) { return &one.second == waiting; }));
    } else {
        --m_readyCount;
        --m_pacedCount;
        dropGaps();
    }
    return taken;
}

void ZTQueueCore::dropGaps()
{
    while (!m_ready.empty() && !m_ready.front().subscription())
        m_ready.pop_front();
}

/// The first one that is ready; there is one.
ZTQueueCore::Event ZTQueueCore::takeReady()
{
    Event taken(std::move(m_ready.front()));
    m_ready.pop_front();
    taken->subscription()->waiting = nullptr;
    --m_readyCount;
    m_pacedCount -= isPaced(*taken);
    dropGaps();
    if (m_overflow == ZTOverflow::Wait)
        m_room.notify_one();
    return taken;
}

/// @return false where the new event is the one to be dropped
bool ZTQueueCore::makeRoom(Lock& lock, const ZTQueuedSubscription& subscription, Event& dropped)
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
    dropped = takeReady();
    return true;
}

void ZTQueueCore::push(ZTQueuedEvent event)
{
    ZTQueuedSubscription& subscription = *event.subscription();
    const Pace pace = subscription.pace;
    const Time time = pace == Pace::Throttled || pace == Pace::Debounced ? now() : Time();
    Event dropped; // behind the lock
    Wake wake;
    {
        Lock lock(m_mutex);
        if (isInVain(subscription))
            return;
        if (subscription.waiting && pace != Pace::Debounced) {
            event.sequence = subscription.waiting->sequence;
            dropped.emplace(std::exchange(*subscription.waiting, std::move(event)));
            return;
        }
        if (subscription.waiting)
            dropped = takeWaiting(subscription);
        if (pace != Pace::Debounced && !makeRoom(lock, subscription, dropped))
            return;
        if (isInVain(subscription)) // by now
            return;
        const bool wasEmpty = m_ready.empty();
        const auto* firstTimed = m_timed.empty() ? nullptr : &m_timed.begin()->second;
        if (pace == Pace::All)
            append(std::move(event));
        else
            addPaced(std::move(event), time);
        const auto* nowTimed = m_timed.empty() ? nullptr : &m_timed.begin()->second;
        if (wasEmpty != m_ready.empty() || firstTimed != nowTimed) {
            wake = m_wake;
            if (m_waitingThreads > 0)
                m_arrived.notify_one();
        }
    }
    if (wake)
        (*wake)();
}

void ZTQueueCore::pushAt(ZTQueuedEvent event, Time time)
{
    Wake wake;
    {
        const Lock lock(m_mutex);
        if (isInVain(*event.subscription()))
            return;
        const auto added = m_timed.emplace(time, std::move(event));
        if (added == m_timed.begin()) {
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

std::size_t ZTQueueCore::waitingCount() const
{
    const Lock lock(m_mutex);
    return m_readyCount + m_timed.size() + m_takenCount.load(std::memory_order_relaxed);
}

std::size_t ZTQueueCore::droppedCount() const
{
    const Lock lock(m_mutex);
    return m_droppedCount;
}

std::optional<ZTQueueCore::Time> ZTQueueCore::nextTime() const
{
    const Lock lock(m_mutex);
    if (m_readyCount > 0 || m_takenCount.load(std::memory_order_relaxed) > 0)
        return Time::min();
    if (!m_timed.empty())
        return m_timed.begin()->first;
    return {};
}

/// Moves what is due behind what waits.
void ZTQueueCore::makeReady(Time time)
{
    while (!m_timed.empty() && m_timed.begin()->first <= time) {
        const auto due = m_timed.begin();
        ZTQueuedSubscription& subscription = *due->second.subscription();
        ZTQueuedEvent& ready = append(std::move(due->second));
        subscription.waiting = subscription.pace == Pace::All ? nullptr : &ready;
        subscription.waitingTime.reset();
        subscription.nextTime = time + subscription.interval;
        m_timed.erase(due);
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
    Lock lock(m_mutex);
    m_thread = std::this_thread::get_id();
    if (!m_timed.empty()) {
        lock.unlock();
        const Time time = now();
        lock.lock();
        makeReady(time);
    }
    takeMore();
    return m_lastSequence;
}

/// Takes all that is ready out of the hands of the threads that raise, unless they have something
/// to do with it still: a bound counts what waits, and the value of a subscription that is thinned
/// out may change up to its turn.
void ZTQueueCore::takeMore()
{
    if (m_capacity > 0 || m_pacedCount > 0 || !m_taken.empty())
        return;
    m_taken.swap(m_ready);
    m_readyCount = 0;
    m_takenUpTo = m_lastSequence;
    setTakenCount();
}

ZTQueueCore::Event ZTQueueCore::takeFirst(std::uint64_t last)
{
    if (m_taken.empty() && m_takenUpTo < last) {
        const Lock lock(m_mutex);
        takeMore();
        if (m_taken.empty())
            return !m_ready.empty() && m_ready.front().sequence <= last ? takeReady() : Event();
    }
    Event taken;
    while (!taken && !m_taken.empty() && m_taken.front().sequence <= last) {
        if (m_taken.front().subscription()) // no gap
            taken.emplace(std::move(m_taken.front()));
        m_taken.pop_front();
    }
    setTakenCount();
    return taken;
}

/// @return whether the handler was called
bool ZTQueueCore::run(ZTQueuedEvent& event)
{
    ZTQueuedSubscription& subscription = *event.subscription();
    if (subscription.isEnded())
        return false;
    if (!subscription.isBound()) {
        endNow(subscription);
        return false;
    }
    if (subscription.isBlocked() ||
        (subscription.receiver && subscription.receiver->isBlockingReceived()))
        return false;
    const zt::detail::KeptCall running(subscription.handler);
    if (subscription.isOnce)
        endNow(subscription);
    event.call();
    return true;
}

void ZTQueueCore::finish()
{
    ZTLetGo ended;
    Wake wake;
    {
        const Lock lock(m_mutex);
        ended.take(m_ended);
        if (m_readyCount > 0 || !m_taken.empty())
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
        Event event = takeFirst(last);
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
        if (m_readyCount > 0 || !m_taken.empty())
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
    Wake wake;
    ZTLetGo ended;
    {
        const Lock lock(m_mutex);
        m_isClosed = true;
        wake = std::move(m_wake);
        ended.take(m_ended);
        m_readyCount = m_pacedCount = 0;
        m_room.notify_all();
    }
    // No other thread looks at what waits from here on.
    m_taken.clear();
    m_ready.clear();
    m_timed.clear();
    setTakenCount();
}
