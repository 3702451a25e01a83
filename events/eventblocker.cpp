#include <zintar/eventblocker.h>

#include "../object/baseprivate.h"

#include <utility>

ZTEventBlocker::ZTEventBlocker(ZTBase* blocked, bool blocksSent)
    : object(blocked), blockSent(blocksSent)
{
    enter();
}

ZTEventBlocker& ZTEventBlocker::operator=(const ZTEventBlocker& other)
{
    if (this != &other) {
        leave();
        object = other.object;
        blockSent = other.blockSent;
        enter();
    }
    return *this;
}

ZTEventBlocker::~ZTEventBlocker() { leave(); }

namespace
{
ZTEventBlocker*& blockersOf(ZTBasePrivate& record, bool sent)
{
    return sent ? record.sentEventBlockers : record.receivedEventBlockers;
}
} // namespace

void ZTEventBlocker::enter()
{
    ZTBasePrivate* record = ZTBasePrivate::of(object);
    if (record)
        next = std::exchange(blockersOf(*record, blockSent), this);
    else
        object = nullptr; // moved from: it will not tell when it dies
}

void ZTEventBlocker::leave()
{
    ZTBasePrivate* record = ZTBasePrivate::of(object);
    if (!record)
        return;
    ZTEventBlocker** link = &blockersOf(*record, blockSent);
    while (*link != this)
        link = &(*link)->next;
    *link = next;
}

void ZTBasePrivate::clearBlockers()
{
    for (bool sent : {true, false})
        while (ZTEventBlocker*& first = blockersOf(*this, sent)) {
            first->object = nullptr;
            first = first->next;
        }
}

bool ZTBase::isBlockingSentEvents() const { return priv && priv->sentEventBlockers; }

bool ZTBase::isBlockingReceivedEvents() const { return priv && priv->receivedEventBlockers; }
