#include <zintar/eventqueue.h>

#include "../object/baseprivate.h"
#include "queuecore.h"

#include <limits>

ZTEventQueue::ZTEventQueue() : ZTEventQueue(Options()) {}

ZTEventQueue::ZTEventQueue(Options options)
    : m_core(std::make_shared<ZTQueueCore>(std::move(options)))
{}

ZTEventQueue::~ZTEventQueue()
{
    ZTLetGo ended;
    ZTQueuedSubscription::endOfQueue(*m_core, ended);
    m_core->close();
}

std::size_t ZTEventQueue::deliver() { return deliver(std::numeric_limits<std::size_t>::max()); }

std::size_t ZTEventQueue::deliver(std::size_t most) { return m_core->deliver(most); }

bool ZTEventQueue::wait(std::chrono::nanoseconds timeout) { return m_core->wait(timeout); }

std::size_t ZTEventQueue::waitingCount() const { return m_core->waitingCount(); }

std::size_t ZTEventQueue::droppedCount() const { return m_core->droppedCount(); }

std::optional<ZTEventQueue::Clock::time_point> ZTEventQueue::nextTime() const
{
    return m_core->nextTime();
}

void ZTEventQueue::postHandler(const ZTBase* receiver, std::chrono::nanoseconds delay,
                               zt::detail::Handler handler)
{
    zt::detail::OwnedHandler owned(handler);
    ZTBasePrivate* record = ZTBasePrivate::of(receiver);
    if (!handler || (receiver && !record))
        return;
    ZTQueuedEvent post(ZTQueuedSubscription::addPost(m_core, record, owned));
    if (delay > std::chrono::nanoseconds(0))
        m_core->pushAt(std::move(post), m_core->now() + delay);
    else
        m_core->push(std::move(post));
}
