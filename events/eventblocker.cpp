#include <zintar/eventblocker.h>

#include "../object/baseprivate.h"

ZTEventBlocker::ZTEventBlocker(ZTBase* object, bool blocksSent)
    : record(ZTBasePrivate::of(object)), blockSent(blocksSent)
{
    enter();
}

ZTEventBlocker& ZTEventBlocker::operator=(const ZTEventBlocker& other)
{
    if (this != &other) {
        leave();
        record = other.record;
        blockSent = other.blockSent;
        enter();
    }
    return *this;
}

ZTEventBlocker::~ZTEventBlocker() { leave(); }

void ZTEventBlocker::enter()
{
    if (record)
        record->extras.changeBlockers([this](ZTEventBlockers& blockers) { blockers.add(*this); });
}

void ZTEventBlocker::leave()
{
    if (record)
        record->extras.changeBlockers(
            [this](ZTEventBlockers& blockers) { blockers.remove(*this); });
}

void ZTEventBlockers::add(ZTEventBlocker& blocker)
{
    ZTEventBlocker* second = m_first ? m_first : &blocker;
    blocker.next = second;
    blocker.previous = m_first ? m_first->previous : &blocker;
    blocker.previous->next = &blocker;
    second->previous = &blocker;
    // Now it is the last, or the first: where the ring begins is all that tells the two apart.
    if (!m_first || !blocker.blockSent)
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
