#include "delivery.h"

#include "eventvalues.h"

#include <zintar/detail/handlers.h>
#include <zintar/detail/lent.h>
#include <zintar/metaclass.h>

#include <algorithm>

using zt::detail::ZTHandlerBase;

ZTDelivery::ZTDelivery(ZTBasePrivate& sender, ZTEventSlot& slot, int index,
                       const ZTMetaInvokable& event)
    : m_sender(&sender),
      m_slot(slot),
      m_index(index),
      m_event(event),
      m_outer(slot.dispatching),
      m_end(m_outer ? m_outer->m_end : slot.subscriptions.size())
{
    slot.dispatching = this;
    ++slot.deliveries;
}

namespace
{
/// Hands a handler that a host wrote on its own no more values than it takes.
void callForeignHandler(ZTHandlerBase& handler, const ZTBase* subscriber, ZTEventValues& values)
{
    void* leading[zt::detail::maxParamCount] = {};
    std::copy_n(values.addresses(handler), handler.parameterCount(), leading);
    handler.invoke(handler.isMemberFunction() ? subscriber : nullptr, nullptr, leading);
}

void callHandler(const ZTSlotEntry& entry, ZTEventValues& values)
{
    const ZTBase* subscriber = entry.subscriber ? entry.subscriber->object : nullptr;
    ZTHandlerBase* handler = entry.record->ownedHandler();
    if (!handler) {
        const auto* invokable = std::get<const ZTMetaInvokable*>(entry.record->handler);
        invokable->invoke(zt::detail::LentVariant(subscriber), values.array());
    } else if (!handler->description) {
        callForeignHandler(*handler, subscriber, values);
    } else if (handler->description->takesArray) {
        static_cast<zt::detail::ArrayHandler*>(handler)->invokeWith(values.array());
    } else {
        handler->invoke(subscriber, nullptr, values.addresses(*handler));
    }
}

/// Whether a subscription is to be called now.
bool isReached(const ZTSlotEntry& entry, const ZTDelivery& delivery, const ZTEventValues& values)
{
    if (!entry.record || (entry.subscriber && entry.subscriber->events.receivedEventBlockers))
        return false;
    if (delivery.isCurrent())
        return entry.record->takesEvent;
    if (const ZTHandlerBase* handler = entry.record->ownedHandler())
        return values.areTakenBy(*handler);
    return values.areTakenBy(*std::get<const ZTMetaInvokable*>(entry.record->handler));
}

/// Calls the handler of any subscription, if it is to be called now.
[[gnu::noinline]] void deliverTo(const ZTSlotEntry& entry, ZTDelivery& delivery,
                                 ZTEventValues& values)
{
    if (!isReached(entry, delivery, values))
        return;
    if (entry.subscriber)
        delivery.enterReceiver(*entry.subscriber);
    callHandler(entry, values);
}
} // namespace

// What a handler may end, and what may move meanwhile, is not used behind its call.
bool ZTDelivery::run(ZTBasePrivate& sender, ZTEventSlot& slot, int index, ZTEventValues& values)
{
    const ZTMetaInvokable* event = slot.eventOf(*sender.object, index);
    if (!event)
        return false;
    values.fitTo(*event);
    ZTDelivery delivery(sender, slot, index, *event);
    while (const ZTSlotEntry* entry = delivery.next()) {
        ZTHandlerBase* handler = entry->typedHandler;
        ZTBasePrivate* receiver = entry->subscriber;
        // Nothing stands between the event and a member function or a callable of the receiver.
        if (handler && receiver && !receiver->events.receivedEventBlockers && delivery.isCurrent())
            [[likely]] {
            delivery.enterReceiver(*receiver);
            handler->invoke(receiver->object, nullptr, values.addresses(*handler));
        } else {
            deliverTo(*entry, delivery, values);
        }
        delivery.leaveReceiver();
    }
    return true;
}

const ZTMetaInvokable* ZTBase::activeEvent() const
{
    return priv && priv->events.activeEvents ? priv->events.activeEvents->event() : nullptr;
}

int ZTBase::activeEventIndex() const
{
    return priv && priv->events.activeEvents ? priv->events.activeEvents->index() : -1;
}

ZTBase* ZTBase::eventSender() const
{
    const ZTBasePrivate* sender =
        priv && priv->events.activeEvents ? priv->events.activeEvents->sender() : nullptr;
    return sender ? sender->object : nullptr;
}
