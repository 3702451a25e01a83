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

namespace
{
void giveAllBack(ZTEventBlock* block) noexcept
{
    while (block)
        ZTEventBlock::giveBack(std::exchange(block, block->next));
}
} // namespace

ZTQueueCore::~ZTQueueCore()
{
    giveAllBack(m_spare);
    giveAllBack(m_delivered);
}

ZTQueueCore::Time ZTQueueCore::now() const { return m_now ? m_now() : ZTEventQueue::Clock::now(); }

namespace
{
bool isPaced(const ZTQueuedEvent& event)
{
    return event.subscription.pace != zt::detail::Pace::All;
}
} // namespace

void ZTQueueCore::append(ZTQueuedEvent& event)
{
    event.sequence = ++m_lastSequence;
    m_ready.add(event);
    ++m_readyCount;
    m_pacedCount += isPaced(event);
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
        m_pacedCount -= isPaced(event);
        if (m_overflow == ZTOverflow::Wait)
            m_room.notify_one();
    }
    ZTQueuedSubscription& subscription = event.subscription;
    if (subscription.waiting == &event)
        subscription.waiting = nullptr;
    return ZTQueuedEvent::Owner(&event);
}

/// Gives a new event the place of the one of its subscription that waits, which is left over.
ZTQueuedEvent::Owner ZTQueueCore::replaceWaiting(ZTQueuedEvent::Owner& event)
{
    ZTQueuedSubscription& subscription = event->subscription;
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
    ZTQueuedSubscription& subscription = event->subscription;
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
    ZTQueuedSubscription& subscription = event->subscription;
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
        if (m_spare && !subscription.spare)
            subscription.spare = std::exchange(m_spare, m_spare->next);
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
    if (!m_ready.isEmpty() || m_takenCount.load(std::memory_order_relaxed) > 0)
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
        event.subscription.nextTime = time + event.subscription.interval;
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
    Lock lock(m_mutex);
    m_thread = std::this_thread::get_id();
    if (!m_spare)
        m_spare = std::exchange(m_delivered, nullptr);
    if (!m_timed.empty()) {
        lock.unlock();
        const Time time = now();
        lock.lock();
        makeReady(time);
    }
    takeMore();
    return m_lastSequence;
}

/// Takes all that has come out of the hands of the threads that raise, unless they have something
/// to do with it still: a bound counts what waits, and the value of a subscription that is thinned
/// out may change up to its turn.
void ZTQueueCore::takeMore()
{
    if (m_capacity > 0 || m_pacedCount > 0)
        return;
    m_taken.take(m_ready);
    countTaken(static_cast<std::ptrdiff_t>(std::exchange(m_readyCount, 0)));
    m_takenUpTo = m_lastSequence;
}

ZTQueuedEvent::Owner ZTQueueCore::takeFirst(std::uint64_t last)
{
    if (m_taken.isEmpty()) {
        if (m_takenUpTo >= last)
            return nullptr;
        const Lock lock(m_mutex);
        ZTQueuedEvent* first = m_ready.first();
        return first && first->sequence <= last ? takeOut(*first) : nullptr;
    }
    ZTQueuedEvent* first = m_taken.first();
    if (first->sequence > last)
        return nullptr;
    first->unlink();
    countTaken(-1);
    return ZTQueuedEvent::Owner(first);
}

namespace
{
void endNow(ZTQueuedSubscription& subscription)
{
    ZTLetGo ended;
    (void)ZTQueuedSubscription::end(subscription, ended);
}
} // namespace

/// @return whether the handler was called
bool ZTQueueCore::run(ZTQueuedEvent& event)
{
    ZTQueuedSubscription& subscription = event.subscription;
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
    std::shared_ptr<const std::function<void()>> wake;
    {
        const Lock lock(m_mutex);
        ended.take(m_ended);
        if (!m_ready.isEmpty() || !m_taken.isEmpty())
            wake = m_wake;
    }
    if (wake)
        (*wake)();
}

/// For the threads that raise, when they have used up what they have.
void ZTQueueCore::keepMemory(ZTEventBlock* block)
{
    constexpr std::size_t most = 1000;
    if (!m_delivered)
        m_deliveredCount = 0;
    if (!block || m_deliveredCount == most)
        return ZTEventBlock::giveBack(block);
    block->next = std::exchange(m_delivered, block);
    ++m_deliveredCount;
}

std::size_t ZTQueueCore::deliver(std::size_t most)
{
    const auto kept = shared_from_this();
    const Delivering delivering(*this);
    const std::uint64_t last = begin();
    std::size_t count = 0;
    while (count < most) {
        ZTQueuedEvent::Owner event = takeFirst(last);
        if (!event)
            break;
        if (run(*event))
            ++count;
        keepMemory(ZTQueuedEvent::destroy(event.release()));
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
        if (!m_ready.isEmpty() || !m_taken.isEmpty())
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
    while (ZTQueuedEvent* first = m_taken.first()) {
        first->unlink();
        countTaken(-1);
        const ZTQueuedEvent::Owner left(first);
    }
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
