#include "../object/baseprivate.h"
#include "../reflection/parameters.h"
#include "ownevent.h"
#include "queuedsubscription.h"

#include <zintar/log.h>

#include <memory>
#include <string>

using zt::detail::Handler;
using zt::detail::HandlerView;

namespace
{
bool fail(const ZTMetaInvokable& event, const std::string& reason)
{
    ztLog("Zintar: Subscription failed with event " + std::string(event.name()) + " and " + reason,
          ZTLogType::Warning);
    return false;
}

std::string quoted(const ZTMetaType& type) { return "\"" + type.name() + "\""; }

bool failForCount(const ZTMetaInvokable& event, const HandlerView& handler)
{
    return fail(event, handler.title() + ". Handler requires more parameters than event supplies");
}

bool checkParameters(const ZTMetaInvokable& event, const HandlerView& handler)
{
    if (handler.parameterCount() > zt::detail::suppliedCount(event))
        return failForCount(event, handler);
    const unsigned int i =
        zt::detail::firstMisfit(handler, [&](unsigned int position, const ZTMetaType& taken) {
            return taken && taken == event.parameterMetaType(position);
        });
    if (i == handler.parameterCount())
        return true;
    const ZTMetaType& taken = handler.parameterMetaType(i);
    const ZTMetaType& supplied = event.parameterMetaType(i);
    std::string place = " at position " + std::to_string(i) + ". Event parameter type ";
    if (!isInvokable(handler.handler) && !taken)
        return fail(event, handler.title() + ". Parameter type not registered" + place +
                               quoted(supplied) + ".");
    return fail(event, handler.title() + ". Parameter type mismatch" + place + quoted(supplied) +
                           ", handler type " + quoted(taken) + ".");
}

bool checkClass(const ZTBase& sender, const ZTMetaInvokable& event, const HandlerView& handler)
{
    return zt::detail::isEventOf(event, sender) ||
           fail(event, handler.title() + ". The class " +
                           std::string(sender.metaClass()->typeName()) +
                           " of the sender does not have the event");
}

bool canBeSubscribedTo(const ZTBase* sender, const ZTMetaInvokable* event)
{
    return ZTBasePrivate::of(sender) && event && event->isEvent();
}

/// What can only be called on an object needs one.
bool hasSubscriber(const ZTMetaInvokable& event, const ZTBase* subscriber, const Handler& handler)
{
    if (subscriber)
        return true;
    if (isInvokable(handler))
        return failForCount(event, {handler});
    return !HandlerView{handler}.isMemberFunction() ||
           fail(event, "handler. The handler is a member function, but the subscriber was null");
}

bool isMovedFrom(const ZTBase* object) { return object && !ZTBasePrivate::of(object); }

/// Whether the subscription can be; what is against it is told in the log, or plain to see.
bool canSubscribe(const ZTBase* sender, const ZTMetaInvokable* event, const ZTBase* subscriber,
                  const Handler& handler)
{
    return canBeSubscribedTo(sender, event) && !isMovedFrom(subscriber) && handler &&
           hasSubscriber(*event, subscriber, handler) && checkParameters(*event, {handler}) &&
           checkClass(*sender, *event, {handler});
}

template <class Record, class... Options>
std::shared_ptr<ZTSubscriptionPrivate>
makeRecord(const ZTBase* sender, const ZTMetaInvokable& event, const ZTBase* subscriber,
           const Handler& handler, Options&... options)
{
    using Allocator = zt::detail::BlockAllocator<Record>;
    auto record = std::allocate_shared<Record>(Allocator(), options...);
    record->sender = ZTBasePrivate::of(sender);
    record->subscriber = ZTBasePrivate::of(subscriber);
    record->event = &event;
    record->handler = handler;
    record->active = true;
    record->eventIndex = event.index();
    return record;
}

/// A handler that a receiver bounds is refused without one: it would outlive what it captured.
bool hasBound(const ZTBase* sender, const ZTMetaInvokable* event, const ZTBase* receiver,
              const Handler& handler)
{
    if (receiver || !handler || isInvokable(handler) || HandlerView{handler}.isMemberFunction())
        return true;
    if (canBeSubscribedTo(sender, event))
        fail(*event,
             "handler. The handler was given with a subscriber, but the subscriber was null");
    return false;
}

/// Its parameters may be more than the handler has.
bool checkCondition(const ZTMetaInvokable& event, const zt::detail::Condition* condition)
{
    return !condition || zt::detail::takesLeadingOf(*condition, event) ||
           fail(event, "a condition. It takes other values than the event supplies");
}

/// The subscription of the same handler that is there already, or null.
ZTSubscriptionPrivate* findEqual(const ZTBase* sender, const ZTMetaInvokable& event,
                                 const ZTBase* subscriber, const Handler& handler,
                                 const zt::detail::SubscriptionOptions& options)
{
    return ZTEventEnds::findMeant({ZTBasePrivate::of(sender), ZTBasePrivate::of(subscriber), &event,
                                   event.index(),
                                   isInvokable(handler) ? &invokableOf(handler) : nullptr,
                                   options.key ? &*options.key : nullptr});
}
} // namespace

ZTSubscription ZTBase::subscribe(const ZTBase* sender, const ZTMetaInvokable* event,
                                 const ZTBase* subscriber, const ZTMetaInvokable* handler)
{
    return subscribeImpl(sender, event, subscriber, zt::detail::handlerOf(handler));
}

ZTSubscription ZTBase::subscribeImpl(const ZTBase* sender, const ZTMetaInvokable* event,
                                     const ZTBase* subscriber, Handler handler)
{
    zt::detail::OwnedHandler owned(handler);
    if (!canSubscribe(sender, event, subscriber, handler))
        return {};
    ZTSubscription subscription =
        ZTEventEnds::add(makeRecord<ZTSubscriptionPrivate>(sender, *event, subscriber, handler));
    owned.release();
    return subscription;
}

ZTSubscription ZTBase::subscribeFor(const ZTBase* receiver, const ZTBase* sender,
                                    const ZTMetaInvokable* event, Handler handler)
{
    if (hasBound(sender, event, receiver, handler))
        return subscribeImpl(sender, event, receiver, handler);
    const zt::detail::OwnedHandler refused(handler);
    return {};
}

ZTSubscription ZTBase::subscribeWith(const ZTBase* sender, const ZTMetaInvokable* event,
                                     const ZTBase* subscriber, Handler handler,
                                     zt::detail::SubscriptionOptions& options)
{
    zt::detail::OwnedHandler owned(handler);
    if ((options.needsReceiver && !hasBound(sender, event, subscriber, handler)) ||
        !canSubscribe(sender, event, subscriber, handler) ||
        !checkCondition(*event, options.condition.get()) ||
        (options.bound && !options.bound->isThere()))
        return {};
    if (options.queue)
        return ZTQueuedSubscription::add(*ZTBasePrivate::of(sender), *event,
                                         ZTBasePrivate::of(subscriber), owned, options);
    if (options.isUnique)
        if (ZTSubscriptionPrivate* equal = findEqual(sender, *event, subscriber, handler, options))
            return ZTEventEnds::handleOf(equal->self);
    ZTSubscription subscription = ZTEventEnds::add(
        makeRecord<ZTSpecialSubscription>(sender, *event, subscriber, handler, options));
    owned.release();
    return subscription;
}

namespace zt::detail
{
Condition::~Condition() = default;

LifeBound::~LifeBound() = default;

Handler invokableHandler(const ZTMetaInvokable* invokable) { return handlerOf(invokable); }

void warnUnknownEvent(const ZTMetaClass& metaClass)
{
    ztLog("Zintar: Subscription failed. The member function is not an event of class " +
              std::string(metaClass.typeName()),
          ZTLogType::Warning);
}
} // namespace zt::detail
