#include "eventslot.h"

#include <zintar/log.h>

#include <algorithm>
#include <string>
#include <utility>

using zt::detail::ZTHandlerBase;

// Subscribing.

namespace
{
/// A handler as the checks see it: an invokable, or what the host's templates made.
struct HandlerView {
    const ZTMetaInvokable* invokable = nullptr;
    const ZTHandlerBase* handler = nullptr;

    [[nodiscard]] unsigned int parameterCount() const
    {
        return handler ? handler->parameterCount() : invokable->parameterCount();
    }
    [[nodiscard]] const ZTMetaType& parameterMetaType(unsigned int index) const
    {
        return handler ? handler->parameterMetaType(index) : invokable->parameterMetaType(index);
    }
    [[nodiscard]] std::string title() const
    {
        return handler ? "handler type " + std::string(handler->typeName())
                       : "handler " + std::string(invokable->name());
    }
};

bool fail(const ZTMetaInvokable& event, const std::string& reason)
{
    ztLog("Zintar: Subscription failed with event " + std::string(event.name()) + " and " + reason,
          ZTLogType::Warning);
    return false;
}

std::string quoted(const ZTMetaType& type) { return "\"" + type.name() + "\""; }

/// How many values an event hands over: those that an argument array can carry.
unsigned int suppliedCount(const ZTMetaInvokable& event)
{
    return std::min(event.parameterCount(), ZTMetaInvokable::MaxParamCount);
}

bool failForCount(const ZTMetaInvokable& event, const HandlerView& handler)
{
    return fail(event, handler.title() + ". Handler requires more parameters than event supplies");
}

bool checkParameters(const ZTMetaInvokable& event, const HandlerView& handler)
{
    if (handler.parameterCount() > suppliedCount(event))
        return failForCount(event, handler);
    for (unsigned int i = 0; i < handler.parameterCount(); ++i) {
        const ZTMetaType& taken = handler.parameterMetaType(i);
        const ZTMetaType& supplied = event.parameterMetaType(i);
        if (taken && (&taken == &supplied || taken == supplied))
            continue;
        std::string place = " at position " + std::to_string(i) + ". Event parameter type ";
        if (handler.handler && !taken)
            return fail(event, handler.title() + ". Parameter type not registered" + place +
                                   quoted(supplied) + ".");
        return fail(event, handler.title() + ". Parameter type mismatch" + place +
                               quoted(supplied) + ", handler type " + quoted(taken) + ".");
    }
    return true;
}

/// An event of another class has an index that means something else to this sender, or nothing.
bool checkClass(const ZTBase& sender, const ZTMetaInvokable& event, const HandlerView& handler)
{
    const ZTMetaInvokable* own = sender.metaClass()->invokable(event.index());
    if (own == &event)
        return true;
    bool equal = own && own->isEvent() && own->name() == event.name() &&
                 own->parameterCount() == event.parameterCount();
    for (unsigned int i = 0; equal && i < event.parameterCount(); ++i)
        equal = own->parameterMetaType(i) == event.parameterMetaType(i);
    return equal || fail(event, handler.title() + ". The class " +
                                    std::string(sender.metaClass()->typeName()) +
                                    " of the sender does not have the event");
}

bool canBeSubscribedTo(const ZTBase* sender, const ZTMetaInvokable* event)
{
    return ZTBasePrivate::of(sender) && event && event->isEvent();
}

bool isMovedFrom(const ZTBase* object) { return object && !ZTBasePrivate::of(object); }

std::shared_ptr<ZTSubscriptionPrivate>
makeRecord(const ZTBase* sender, const ZTMetaInvokable& event, const ZTBase* subscriber)
{
    using Allocator = zt::detail::BlockAllocator<ZTSubscriptionPrivate>;
    auto record = std::allocate_shared<ZTSubscriptionPrivate>(Allocator());
    record->sender = ZTBasePrivate::of(sender);
    record->subscriber = ZTBasePrivate::of(subscriber);
    record->event = &event;
    record->active = true;
    record->eventIndex = event.index();
    return record;
}
} // namespace

ZTSubscription ZTBase::subscribe(const ZTBase* sender, const ZTMetaInvokable* event,
                                 const ZTBase* subscriber, const ZTMetaInvokable* handler)
{
    if (!canBeSubscribedTo(sender, event) || isMovedFrom(subscriber) || !handler)
        return {};
    HandlerView view{handler, nullptr};
    if (!subscriber) {
        failForCount(*event, view);
        return {};
    }
    if (!checkParameters(*event, view) || !checkClass(*sender, *event, view))
        return {};
    auto record = makeRecord(sender, *event, subscriber);
    record->handler = handler;
    return sender->priv->addSubscription(std::move(record));
}

ZTSubscription ZTBase::subscribeImpl(const ZTBase* sender, const ZTMetaInvokable* event,
                                     const ZTBase* subscriber, ZTHandlerBase* handler)
{
    std::unique_ptr<ZTHandlerBase> owned(handler);
    if (!canBeSubscribedTo(sender, event) || isMovedFrom(subscriber) || !handler)
        return {};
    HandlerView view{nullptr, handler};
    if (!subscriber && handler->isMemberFunction()) {
        fail(*event, "handler. The handler is a member function, but the subscriber was null");
        return {};
    }
    if (!checkParameters(*event, view) || !checkClass(*sender, *event, view))
        return {};
    auto record = makeRecord(sender, *event, subscriber);
    record->handler = handler;
    ZTSubscription subscription = sender->priv->addSubscription(std::move(record));
    (void)owned.release();
    return subscription;
}

ZTSubscription ZTBase::subscribeFor(const ZTBase* receiver, const ZTBase* sender,
                                    const ZTMetaInvokable* event, ZTHandlerBase* handler)
{
    // Without a subscriber a callable would outlive what it captured.
    if (receiver || !handler || handler->isMemberFunction())
        return subscribeImpl(sender, event, receiver, handler);
    std::unique_ptr<ZTHandlerBase> owned(handler);
    if (canBeSubscribedTo(sender, event))
        fail(*event,
             "handler. The handler was given with a subscriber, but the subscriber was null");
    return {};
}

ZTSubscription ZTBasePrivate::addSubscription(std::shared_ptr<ZTSubscriptionPrivate> record)
{
    ZTSubscription subscription(record);
    ZTEventSlot& slot = eventSlot(record->eventIndex);
    // What the slot knows of its handlers is about the class that this one fits.
    (void)slot.eventOf(*object, record->eventIndex);
    slot.add(record);
    if (ZTBasePrivate* subscriber = record->subscriber) {
        record->next = subscriber->senders;
        if (record->next)
            record->next->previous = record.get();
        subscriber->senders = record.get();
        ++subscriber->senderCount;
    }
    return subscription;
}

namespace zt::detail
{
void warnUnknownEvent(const ZTMetaClass& metaClass)
{
    ztLog("Zintar: Subscription failed. The member function is not an event of class " +
              std::string(metaClass.typeName()),
          ZTLogType::Warning);
}
} // namespace zt::detail

// Unsubscribing.

namespace
{
/// Up to here a subscriber's list is shorter to walk than the slots of a sender.
constexpr unsigned int fewReceived = 16;

void endSubscription(ZTSubscriptionPrivate& record, ZTLetGo& ended)
{
    ZTEventSlot& slot = *record.sender->findSlot(record.eventIndex);
    slot.end(record, ended);
    slot.compact();
}

/// Ends what the pattern means, by the list of its subscriber.
bool endAmongReceived(const ZTSubscriptionPrivate& pattern, ZTLetGo& ended)
{
    bool any = false;
    ZTSubscriptionPrivate* next = nullptr;
    for (auto* record = pattern.subscriber->senders; record; record = next) {
        next = record->next;
        if (!record->matches(pattern))
            continue;
        endSubscription(*record, ended);
        any = true;
    }
    return any;
}
} // namespace

bool ZTBasePrivate::removeSubscriptions(const ZTSubscriptionPrivate& pattern, ZTLetGo& ended)
{
    if (!eventSlots)
        return false;
    // Whatever matches is in the lists of both ends.
    if (pattern.subscriber && pattern.subscriber->senderCount <= fewReceived)
        return endAmongReceived(pattern, ended);
    if (pattern.event) {
        ZTEventSlot* slot = findSlot(pattern.eventIndex);
        return slot && slot->endMatching(pattern, ended);
    }
    bool any = false;
    for (const auto& slot : *eventSlots)
        any |= slot && slot->endMatching(pattern, ended);
    return any;
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
    // A handler that is owned is this subscription's alone: nothing else can match.
    if (!record->ownedHandler())
        return record->sender->removeSubscriptions(*record, ended);
    endSubscription(*record, ended);
    return true;
}

void ZTScopedSubscription::reset() noexcept
{
    ZTLetGo ended;
    ZTSubscription subscription = release();
    auto record = subscription.m_record.lock();
    if (record && record->isActive())
        endSubscription(*record, ended);
}

namespace
{
bool removeByPattern(const ZTBase* sender, const ZTMetaInvokable* event, const ZTBase* subscriber,
                     ZTSubscriptionPrivate::Handler handler, bool hasHandler)
{
    if (!ZTBasePrivate::of(sender) || isMovedFrom(subscriber) || (event && !event->isEvent()) ||
        (hasHandler && !subscriber))
        return false;
    ZTLetGo ended;
    ZTSubscriptionPrivate pattern;
    pattern.sender = ZTBasePrivate::of(sender);
    pattern.event = event;
    pattern.eventIndex = event ? event->index() : -1;
    pattern.subscriber = ZTBasePrivate::of(subscriber);
    pattern.handler = handler;
    return pattern.sender->removeSubscriptions(pattern, ended);
}
} // namespace

bool ZTBase::unsubscribe(const ZTBase* sender, const ZTMetaInvokable* event,
                         const ZTBase* subscriber, const ZTMetaInvokable* handler)
{
    return removeByPattern(sender, event, subscriber, handler, handler != nullptr);
}

bool ZTBase::unsubscribeImpl(const ZTBase* sender, const ZTMetaInvokable* event,
                             const ZTBase* subscriber, void* key)
{
    return removeByPattern(sender, event, subscriber, key, key != nullptr);
}

void ZTBasePrivate::endReceived(ZTLetGo& ended)
{
    while (senders)
        endSubscription(*senders, ended);
}

void ZTBasePrivate::endSent(ZTLetGo& ended)
{
    if (!eventSlots)
        return;
    for (const auto& slot : *eventSlots)
        if (slot)
            slot->endAll(ended);
    eventSlots.reset();
}
