#include <zintar/eventblocker.h>

#include "../object/baseprivate.h"

#include <utility>

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
ZTEventBlocker*& blockersOf(ZTBasePrivate& record, bool sent)
{
    return sent ? record.sentEventBlockers : record.receivedEventBlockers;
}
} // namespace

void ZTEventBlocker::enter()
{
    if (record)
        next = std::exchange(blockersOf(*record, blockSent), this);
}

void ZTEventBlocker::leave()
{
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
            first->record = nullptr;
            first = first->next;
        }
}

bool ZTBase::isBlockingSentEvents() const { return priv && priv->sentEventBlockers; }

bool ZTBase::isBlockingReceivedEvents() const { return priv && priv->receivedEventBlockers; }
