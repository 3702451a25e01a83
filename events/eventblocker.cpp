#include <zintar/eventblocker.h>

#include "../object/baseprivate.h"

#include <algorithm>

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
std::vector<ZTEventBlocker*>& blockersOf(ZTBasePrivate& record, bool sent)
{
    return sent ? record.sentEventBlockers : record.receivedEventBlockers;
}
} // namespace

void ZTEventBlocker::enter()
{
    if (ZTBasePrivate* record = ZTBasePrivate::of(object))
        blockersOf(*record, blockSent).push_back(this);
    else
        object = nullptr; // moved from: it will not tell when it dies
}

void ZTEventBlocker::leave()
{
    if (ZTBasePrivate* record = ZTBasePrivate::of(object))
        std::erase(blockersOf(*record, blockSent), this);
}

void ZTBasePrivate::clearBlockers()
{
    for (bool sent : {true, false}) {
        auto& blockers = blockersOf(*this, sent);
        for (ZTEventBlocker* blocker : blockers)
            blocker->object = nullptr;
        blockers.clear();
    }
}

bool ZTBase::isBlockingSentEvents() const { return priv && !priv->sentEventBlockers.empty(); }

bool ZTBase::isBlockingReceivedEvents() const
{
    return priv && !priv->receivedEventBlockers.empty();
}
