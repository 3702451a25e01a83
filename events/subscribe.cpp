#include "../object/baseprivate.h"
#include "../reflection/parameters.h"
#include "eventslot.h"

#include <zintar/log.h>

#include <memory>
#include <string>
#include <utility>

using zt::detail::ZTHandlerBase;

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
    if (handler.handler && !taken)
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
    return ZTEventEnds::addSubscription(std::move(record));
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
    ZTSubscription subscription = ZTEventEnds::addSubscription(std::move(record));
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

ZTSubscription ZTEventEnds::addSubscription(std::shared_ptr<ZTSubscriptionPrivate> record)
{
    ZTSubscription subscription(record);
    ZTEventSlot& slot = record->sender->events.eventSlot(record->eventIndex);
    // What the slot knows of its handlers is about the class that this one fits.
    (void)slot.eventOf(*record->sender->object, record->eventIndex);
    slot.add(record);
    if (ZTBasePrivate* subscriber = record->subscriber)
        subscriber->events.addReceived(*record);
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
