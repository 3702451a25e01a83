#include <zintar/eventblocker.h>

#include "../object/baseprivate.h"
#include "ownevent.h"

ZTEventBlocker::ZTEventBlocker(ZTBase* object, bool blockSent)
    : record(ZTBasePrivate::of(object)), kind(blockSent ? Kind::Sent : Kind::Received)
{
    enter();
}

ZTEventBlocker::ZTEventBlocker(ZTBase* sender, EventGiven given) : kind(Kind::Event)
{
    const ZTMetaInvokable* event = given.event;
    if (!sender || !event || !event->isEvent() || !zt::detail::isEventOf(*event, *sender))
        return;
    record = ZTBasePrivate::of(sender);
    eventIndex = event->index();
    enter();
}

ZTEventBlocker::ZTEventBlocker(const ZTSubscription& subscription)
    : kind(Kind::Subscription), subscribed(subscription.m_record)
{
    enter();
}

ZTEventBlocker::ZTEventBlocker(const ZTScopedSubscription& subscription)
    : ZTEventBlocker(subscription.m_subscription)
{}

ZTEventBlocker& ZTEventBlocker::operator=(const ZTEventBlocker& other)
{
    if (this != &other) {
        leave();
        record = other.record;
        kind = other.kind;
        eventIndex = other.eventIndex;
        subscribed = other.subscribed;
        enter();
    }
    return *this;
}

ZTEventBlocker::~ZTEventBlocker() { leave(); }

void ZTEventBlocker::enter()
{
    if (const auto one = subscribed.lock())
        ZTEventEnds::block(*one);
    if (record)
        record->extras.changeBlockers([this](ZTEventBlockers& blockers) { blockers.add(*this); });
}

void ZTEventBlocker::leave()
{
    if (const auto one = subscribed.lock())
        ZTEventEnds::unblock(*one);
    if (record)
        record->extras.changeBlockers(
            [this](ZTEventBlockers& blockers) { blockers.remove(*this); });
}

void ZTEventBlockers::add(ZTEventBlocker& blocker)
{
    // The last one of those that stay in front of it; null when it becomes the first.
    ZTEventBlocker* before =
        m_first && blocker.kind != ZTEventBlocker::Kind::Received ? m_first->previous : nullptr;
    while (before && before->kind > blocker.kind)
        before = before == m_first ? nullptr : before->previous;
    ZTEventBlocker* behind = before ? before->next : m_first ? m_first : &blocker;
    blocker.previous = m_first ? behind->previous : &blocker;
    blocker.next = behind;
    blocker.previous->next = &blocker;
    behind->previous = &blocker;
    if (!before)
        m_first = &blocker;
}

void ZTEventBlockers::remove(ZTEventBlocker& blocker)
{
    blocker.previous->next = blocker.next;
    blocker.next->previous = blocker.previous;
    if (m_first == &blocker)
        m_first = blocker.next == &blocker ? nullptr : blocker.next;
}

void ZTEventBlockers::clear()
{
    for (; m_first; remove(*m_first))
        m_first->record = nullptr;
}

bool ZTBase::isBlockingSentEvents() const { return priv && priv->isBlockingSent(); }

bool ZTBase::isBlockingReceivedEvents() const { return priv && priv->isBlockingReceived(); }
