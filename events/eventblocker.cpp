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

namespace
{
ZTEventBlocker*& blockersOf(ZTEventEnds& ends, bool sent)
{
    return sent ? ends.sentEventBlockers : ends.receivedEventBlockers;
}
} // namespace

void ZTEventBlocker::enter()
{
    if (!record)
        return;
    link = &blockersOf(record->events, blockSent);
    next = *link;
    *link = this;
    if (next)
        next->link = &next;
}

void ZTEventBlocker::leave()
{
    if (!record)
        return;
    *link = next;
    if (next)
        next->link = link;
}

void ZTEventEnds::clearBlockers()
{
    for (bool sent : {true, false}) {
        ZTEventBlocker*& first = blockersOf(*this, sent);
        for (; first; first = first->next)
            first->record = nullptr;
    }
}

bool ZTBase::isBlockingSentEvents() const { return priv && priv->events.sentEventBlockers; }

bool ZTBase::isBlockingReceivedEvents() const { return priv && priv->events.receivedEventBlockers; }
