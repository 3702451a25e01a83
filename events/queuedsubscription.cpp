#include "queuedsubscription.h"

#include "../object/baseprivate.h"
#include "../reflection/parameters.h"
#include "queuecore.h"

#include <zintar/staticmetaclass.h>

#include <new>
#include <utility>

namespace
{
/// Under which the rings of all subscriptions through queues change.
constinit std::mutex changing;
using Lock = std::lock_guard<std::mutex>;

ZTQueueEnds& needQueueEnds(ZTBasePrivate& object)
{
    ZTExtras::Parts& parts = object.extras.needParts();
    const Lock lock(changing);
    ZTQueueEnds* ends = parts.queueEnds.load(std::memory_order_relaxed);
    if (!ends) {
        ends = new ZTQueueEnds;
        parts.queueEnds.store(ends, std::memory_order_release);
        object.extras.noteForEvents();
    }
    return *ends;
}

/// Leaves word for the sender. The place tells which.
void addNews(ZTQueueEnds& sender, ZTQueuedSubscription& subscription)
{
    sender.news.add(subscription);
    sender.hasNews.store(true, std::memory_order_relaxed);
}

using NewsLink = zt::detail::RingLink<ZTNewsRing>;
using SentLink = zt::detail::RingLink<ZTSentRing>;
using ReceivedLink = zt::detail::RingLink<ZTReceivedRing>;
using QueueLink = zt::detail::RingLink<ZTQueueRing>;
} // namespace

ZTQueuedSubscription::ZTQueuedSubscription(zt::detail::SubscriptionOptions& options,
                                           std::shared_ptr<ZTQueueCore> through,
                                           ZTBasePrivate* receiverRecord)
    : ZTSpecialSubscription(options, Kind::Queued),
      queue(std::move(through)),
      receiver(receiverRecord),
      pace(options.pace),
      interval(options.nanoseconds)
{}

ZTSubscription ZTQueuedSubscription::add(ZTBasePrivate& sender, const ZTMetaInvokable& event,
                                         ZTBasePrivate* receiver, zt::detail::OwnedHandler& handler,
                                         zt::detail::SubscriptionOptions& options)
{
    ZTQueueEnds& sent = needQueueEnds(sender);
    ZTQueueEnds* received = receiver ? &needQueueEnds(*receiver) : nullptr;
    using Allocator = zt::detail::BlockAllocator<ZTQueuedSubscription>;
    const auto made = std::allocate_shared<ZTQueuedSubscription>(
        Allocator(), options, ZTQueueCore::of(*options.queue), receiver);
    made->sender = &sender;
    made->event = &event;
    made->eventIndex = event.index();
    made->handler = handler.get();
    made->senderEnds = &sent;
    made->isEventForEver = dynamic_cast<const ZTStaticMetaInvokable*>(&event) != nullptr;

    const Lock lock(changing);
    if (options.isUnique) {
        ZTSubscriptionPattern alike;
        alike.invokable = isInvokable(made->handler) ? &invokableOf(made->handler) : nullptr;
        alike.key = options.key ? &*options.key : nullptr;
        ZTQueuedSubscription* equal = nullptr;
        sent.sent.forEach([&](ZTQueuedSubscription& one) {
            if (one.event == &event && one.receiver == receiver && one.queue == made->queue &&
                alike.meansHandler(one.handler))
                equal = &one;
        });
        if (equal)
            return ZTEventEnds::handleOf(equal->self);
    }
    handler.release();
    made->active.store(true, std::memory_order_release);
    made->self = made;
    made->place = Place::Arriving;
    sent.sent.add(*made);
    addNews(sent, *made);
    if (received)
        received->received.add(*made);
    made->queue->subscriptions.add(*made);
    return ZTEventEnds::handleOf(made);
}

ZTQueuedSubscription& ZTQueuedSubscription::addPost(std::shared_ptr<ZTQueueCore> queue,
                                                    ZTBasePrivate* receiver,
                                                    zt::detail::OwnedHandler& handler)
{
    ZTQueueEnds* received = receiver ? &needQueueEnds(*receiver) : nullptr;
    zt::detail::SubscriptionOptions options;
    options.isOnce = true;
    using Allocator = zt::detail::BlockAllocator<ZTQueuedSubscription>;
    const auto made = std::allocate_shared<ZTQueuedSubscription>(Allocator(), options,
                                                                 std::move(queue), receiver);
    made->handler = handler.release();
    made->self = made;
    made->setState(Drained);
    const Lock lock(changing);
    if (received)
        received->received.add(*made);
    made->queue->subscriptions.add(*made);
    return *made;
}

void ZTQueuedSubscription::enqueue(const ZTMetaInvokable& raised, ZTEventValues& values)
{
    ZTQueuedEvent queued(*this, raised, values);
    if (isOnce) {
        const Lock lock(changing);
        if (!isActive())
            return;
        drainLocked(*this);
    }
    queue->push(std::move(queued));
}

/// It takes nothing any more, and ends with what waits.
void ZTQueuedSubscription::drainLocked(ZTQueuedSubscription& subscription)
{
    subscription.active.store(false, std::memory_order_release);
    subscription.setState(Drained);
    subscription.SentLink::unlink();
    if (subscription.place == Place::InSlot) {
        subscription.place = Place::Leaving;
        addNews(*subscription.senderEnds, subscription);
    }
}

/// Whoever calls this keeps the subscription.
void ZTQueuedSubscription::endLocked(ZTQueuedSubscription& subscription, ZTLetGo& ended)
{
    subscription.active.store(false, std::memory_order_release);
    subscription.setState(Ended);
    subscription.SentLink::unlink();
    subscription.ReceivedLink::unlink();
    subscription.QueueLink::unlink();
    subscription.queue->letGo(keptOf(subscription.handler), ended);
    if (subscription.place == Place::Arriving) {
        subscription.NewsLink::unlink();
        subscription.place = Place::Nowhere;
        ended.add(subscription.condition.release()); // nobody asks it yet
    } else if (subscription.place == Place::InSlot) {
        subscription.place = Place::Leaving;
        addNews(*subscription.senderEnds, subscription);
    }
    subscription.letGoOfSelf();
}

void ZTQueuedSubscription::letGoOfSelf() noexcept
{
    if (isEnded() && place == Place::Nowhere && !hasEvents())
        const auto last = std::move(self); // it may be gone behind this
}

void ZTQueuedSubscription::setState(State newState) noexcept
{
    state.store(newState, std::memory_order_release);
    m_events.fetch_or(isLeaving, std::memory_order_acq_rel);
}

void ZTQueuedSubscription::removeLeaving() noexcept
{
    ZTLetGo ended;
    const Lock lock(changing);
    m_events.fetch_sub(oneEvent, std::memory_order_acq_rel);
    if (state.load(std::memory_order_relaxed) == Drained && !hasEvents())
        endLocked(*this, ended);
    else
        letGoOfSelf();
}

bool ZTQueuedSubscription::end(ZTSubscriptionPrivate& record, ZTLetGo& ended)
{
    auto& subscription = static_cast<ZTQueuedSubscription&>(record);
    const Lock lock(changing);
    const bool wasActive = subscription.isActive();
    if (!subscription.isEnded())
        endLocked(subscription, ended);
    return wasActive;
}

bool ZTQueuedSubscription::endMatching(const ZTSubscriptionPattern& pattern, ZTLetGo& ended)
{
    ZTQueueEnds* ends = pattern.sender->extras.queueEnds();
    if (!ends)
        return false;
    bool any = false;
    const Lock lock(changing);
    ends->sent.forEach([&](ZTQueuedSubscription& one) {
        const bool isMeant = (!pattern.subscriber || pattern.subscriber == one.receiver) &&
                             (!pattern.event || pattern.event == one.event) &&
                             pattern.meansHandler(one.handler);
        if (!isMeant)
            return;
        const auto kept = one.self;
        endLocked(one, ended);
        any = true;
    });
    return any;
}

void ZTQueuedSubscription::endReceived(ZTBasePrivate& receiver, ZTLetGo& ended)
{
    ZTQueueEnds* ends = receiver.extras.queueEnds();
    if (!ends)
        return;
    const Lock lock(changing);
    ends->received.forEach([&](ZTQueuedSubscription& one) {
        const auto kept = one.self;
        endLocked(one, ended);
    });
}

void ZTQueuedSubscription::endOfQueue(ZTQueueCore& queue, ZTLetGo& ended)
{
    const Lock lock(changing);
    queue.subscriptions.forEach([&](ZTQueuedSubscription& one) {
        const auto kept = one.self;
        endLocked(one, ended);
    });
}

void ZTQueuedSubscription::leaveSender(ZTQueueEnds& sender, ZTLetGo& ended)
{
    const Lock lock(changing);
    // No slot has any of them any more, so nothing is news.
    sender.news.forEach([&](ZTQueuedSubscription& one) {
        one.NewsLink::unlink();
        one.place = Place::Nowhere;
        one.letGoOfSelf();
    });
    sender.sent.forEach([&](ZTQueuedSubscription& one) {
        const auto kept = one.self;
        one.place = Place::Nowhere;
        ended.add(one.condition.release());
        drainLocked(one);
        if (!one.hasEvents())
            endLocked(one, ended);
    });
}

void ZTQueuedSubscription::enterSlot()
{
    ZTEventSlot& slot = sender->events.eventSlots.findOrMake(eventIndex);
    (void)slot.eventOf(*sender->object);
    const ZTMetaInvokable* present = slot.lastEvent();
    takesEvent = present && zt::detail::takesLeadingOf(zt::detail::HandlerView{handler}, *present);
    isCalled = takesEvent;
    slot.add(self);
}

void ZTQueuedSubscription::takeNews(ZTQueueEnds& sender)
{
    ZTLetGo ended;
    while (true) {
        std::shared_ptr<ZTSubscriptionPrivate> kept;
        ZTQueuedSubscription* next = nullptr;
        bool isArriving = false;
        {
            const Lock lock(changing);
            next = sender.news.first();
            if (!next) {
                sender.hasNews.store(false, std::memory_order_relaxed);
                return;
            }
            kept = next->self;
            next->NewsLink::unlink();
            isArriving = next->place == Place::Arriving;
            next->place = isArriving ? Place::InSlot : Place::Nowhere;
        }
        // Whoever ends it meanwhile leaves word again.
        if (isArriving) {
            if (next->tryToEnterSlot())
                continue;
            return;
        }
        ZTEventEnds::leaveSlot(*next, ended);
        const Lock lock(changing);
        next->letGoOfSelf();
    }
}

/// Without memory it has to wait for the next time.
bool ZTQueuedSubscription::tryToEnterSlot()
try {
    enterSlot();
    return true;
} catch (const std::bad_alloc&) {
    const Lock lock(changing);
    if (place == Place::Leaving) {
        NewsLink::unlink();
        place = Place::Nowhere;
        letGoOfSelf();
    } else {
        place = Place::Arriving;
        addNews(*senderEnds, *this);
    }
    return false;
}

void ZTBasePrivate::takeNewsOf(ZTQueueEnds& ends) { ZTQueuedSubscription::takeNews(ends); }
