#include "../object/baseprivate.h"
#include "../reflection/parameters.h"

#include <zintar/log.h>

#include <memory>
#include <string>

using zt::detail::Handler;
using zt::detail::HandlerView;

namespace
{
/// Sees to the end of a handler that does not get into a subscription.
class OwnedHandler
{
public:
    explicit OwnedHandler(const Handler& handler) : m_handler(handler) {}
    OwnedHandler(const OwnedHandler&) = delete;
    OwnedHandler& operator=(const OwnedHandler&) = delete;
    ~OwnedHandler()
    {
        if (zt::detail::KeptHandler* kept = keptOf(m_handler))
            kept->end();
    }
    void release() { m_handler = {}; }

private:
    Handler m_handler;
};

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

/// An event of another class has an index that means something else to this sender, or nothing.
bool checkClass(const ZTBase& sender, const ZTMetaInvokable& event, const HandlerView& handler)
{
    const ZTMetaInvokable* own = sender.metaClass()->invokable(event.index());
    bool isOwn = own && own->isEvent() && own->name() == event.name() &&
                 zt::detail::haveSameParameters(*own, event);
    return isOwn || fail(event, handler.title() + ". The class " +
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

std::shared_ptr<ZTSubscriptionPrivate> makeRecord(const ZTBase* sender,
                                                  const ZTMetaInvokable& event,
                                                  const ZTBase* subscriber, const Handler& handler)
{
    using Allocator = zt::detail::BlockAllocator<ZTSubscriptionPrivate>;
    auto record = std::allocate_shared<ZTSubscriptionPrivate>(Allocator());
    record->sender = ZTBasePrivate::of(sender);
    record->subscriber = ZTBasePrivate::of(subscriber);
    record->event = &event;
    record->handler = handler;
    record->active = true;
    record->eventIndex = event.index();
    return record;
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
    OwnedHandler owned(handler);
    if (!canBeSubscribedTo(sender, event) || isMovedFrom(subscriber) || !handler)
        return {};
    if (!hasSubscriber(*event, subscriber, handler) || !checkParameters(*event, {handler}) ||
        !checkClass(*sender, *event, {handler}))
        return {};
    ZTSubscription subscription = ZTEventEnds::add(makeRecord(sender, *event, subscriber, handler));
    owned.release();
    return subscription;
}

ZTSubscription ZTBase::subscribeFor(const ZTBase* receiver, const ZTBase* sender,
                                    const ZTMetaInvokable* event, Handler handler)
{
    // Without a subscriber a callable would outlive what it captured.
    if (receiver || !handler || HandlerView{handler}.isMemberFunction())
        return subscribeImpl(sender, event, receiver, handler);
    OwnedHandler owned(handler);
    if (canBeSubscribedTo(sender, event))
        fail(*event,
             "handler. The handler was given with a subscriber, but the subscriber was null");
    return {};
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
