#include "../object/baseprivate.h"

// Whatever a pattern means is in the lists of both ends. That of the subscriber, if one is meant,
// is the one to search: it is short, or has an index.

namespace
{
/// Ends one subscription after the other, as far as the pattern means it.
class EndingMeant
{
public:
    EndingMeant(const ZTSubscriptionPattern& pattern, ZTLetGo& ended)
        : m_pattern(pattern), m_ended(ended)
    {}
    void operator()(ZTSubscriptionPrivate& record)
    {
        if (!m_pattern.means(record))
            return;
        ZTEventEnds::end(record, m_ended);
        m_any = true;
    }
    [[nodiscard]] bool any() const { return m_any; }

private:
    const ZTSubscriptionPattern& m_pattern;
    ZTLetGo& m_ended;
    bool m_any = false;
};

void endIndexed(const ZTReceivedIndex& index, int eventIndex, const ZTSubscriptionPattern& pattern,
                EndingMeant& endMeant)
{
    using zt::detail::HandlerIdentity;
    ZTReceivedIndex::Key key{pattern.sender, eventIndex};
    if (!pattern.hasHandler())
        return index.forEachOfEvent(key, endMeant);
    key.handler = {HandlerIdentity::ByWord, pattern.wordOfHandler()};
    index.forEachOfHandler(key, endMeant);
    key.handler = {HandlerIdentity::ByAsking};
    index.forEachOfHandler(key, endMeant);
}

void endAmongReceived(const ZTSubscriptionPattern& pattern, EndingMeant& endMeant)
{
    const ZTReceivedIndex* index = pattern.subscriber->extras.receivedIndex();
    if (index && pattern.event)
        return endIndexed(*index, pattern.eventIndex, pattern, endMeant);
    if (index) {
        pattern.sender->events.eventSlots.forEach(
            [&](const ZTEventSlot& slot) { endIndexed(*index, slot.index, pattern, endMeant); });
        return;
    }
    ZTSubscriptionPrivate* next = nullptr;
    for (auto* record = pattern.subscriber->events.senders; record; record = next) {
        next = record->next;
        endMeant(*record);
    }
}

/// Ends what anybody has.
bool endAmongSent(const ZTSubscriptionPattern& pattern, ZTLetGo& ended)
{
    const ZTEventSlots& slots = pattern.sender->events.eventSlots;
    if (pattern.event) {
        ZTEventSlot* slot = slots.find(pattern.eventIndex);
        return slot && slot->endMatching(pattern, ended);
    }
    bool any = false;
    slots.forEach([&](ZTEventSlot& slot) { any |= slot.endMatching(pattern, ended); });
    return any;
}
} // namespace

bool ZTEventEnds::endMatching(const ZTSubscriptionPattern& pattern, ZTLetGo& ended)
{
    if (!pattern.subscriber)
        return endAmongSent(pattern, ended);
    EndingMeant endMeant(pattern, ended);
    endAmongReceived(pattern, endMeant);
    return endMeant.any();
}

bool ZTBase::unsubscribe(const ZTBase* subscriber) const
{
    return unsubscribe(this, nullptr, subscriber, nullptr);
}

bool ZTBase::unsubscribe(const ZTSubscription& subscription)
{
    ZTLetGo ended;
    auto record = subscription.m_record.lock();
    if (!record || !record->isActive())
        return false;
    if (isInvokable(record->handler)) {
        const ZTSubscriptionPattern alike{record->sender,
                                          record->subscriber,
                                          record->event,
                                          record->eventIndex,
                                          &invokableOf(record->handler),
                                          nullptr};
        return ZTEventEnds::endMatching(alike, ended);
    }
    ZTEventEnds::end(*record, ended);
    return true;
}

void ZTScopedSubscription::reset() noexcept
{
    ZTLetGo ended;
    ZTSubscription subscription = release();
    auto record = subscription.m_record.lock();
    if (record && record->isActive())
        ZTEventEnds::end(*record, ended);
}

namespace
{
bool isMovedFrom(const ZTBase* object) { return object && !ZTBasePrivate::of(object); }

bool endByPattern(const ZTBase* sender, const ZTMetaInvokable* event, const ZTBase* subscriber,
                  const ZTMetaInvokable* invokable, const zt::detail::HandlerKey* key)
{
    const ZTSubscriptionPattern pattern{ZTBasePrivate::of(sender),
                                        ZTBasePrivate::of(subscriber),
                                        event,
                                        event ? event->index() : -1,
                                        invokable,
                                        key};
    if (!pattern.sender || isMovedFrom(subscriber) || (event && !event->isEvent()) ||
        (pattern.hasHandler() && !subscriber))
        return false;
    ZTLetGo ended;
    return ZTEventEnds::endMatching(pattern, ended);
}
} // namespace

bool ZTBase::unsubscribe(const ZTBase* sender, const ZTMetaInvokable* event,
                         const ZTBase* subscriber, const ZTMetaInvokable* handler)
{
    return endByPattern(sender, event, subscriber, handler, nullptr);
}

bool ZTBase::unsubscribeImpl(const ZTBase* sender, const ZTMetaInvokable* event,
                             const ZTBase* subscriber, void* key)
{
    return endByPattern(sender, event, subscriber, nullptr,
                        static_cast<const zt::detail::HandlerKey*>(key));
}
