#include "eventslot.h"

#include <zintar/detail/lent.h>
#include <zintar/log.h>
#include <zintar/metaclass.h>

#include <string>

using zt::detail::ZTHandlerBase;

namespace
{
/// Reports an index that the class of the sender does not have.
bool hasEvent(const ZTBase& sender, int index)
{
    const ZTMetaClass* senderClass = sender.metaClass();
    if (index >= 0 && static_cast<unsigned int>(index) < senderClass->invokableCount())
        return true;
    ztLog("Zintar Error: Cannot send event with out of bounds index " + std::to_string(index) +
              " on object of type " + std::string(senderClass->typeName()) + ".",
          ZTLogType::Error);
    return false;
}
} // namespace

void ZTBase::sendEvent(int index, const ZTArgumentArray& arguments) const
{
    if (!hasEvent(*this, index))
        return;
    if (ZTEventSlot* slot = heardSlot(index)) {
        ZTEventValues values(arguments);
        priv->dispatch(*slot, index, values);
    }
}

void ZTBase::sendValues(ZTEventSlot& slot, const zt::detail::DeclaredEvent& declared,
                        void** addresses) const
{
    ZTEventValues values(declared.descriptor, addresses);
    priv->dispatch(slot, declared.index, values);
}

void zt::detail::EventRaiser::raise(const ZTBase& sender, int index,
                                    const ZTArgumentArray& arguments)
{
    sender.sendEvent(index, arguments);
}

ZTEventSlot* ZTBase::heardSlot(int index) const
{
    if (index < 0) [[unlikely]] {
        (void)hasEvent(*this, index);
        return nullptr;
    }
    if (!priv || !priv->eventSlots || priv->sentEventBlockers)
        return nullptr;
    ZTEventSlot* slot = priv->findSlot(index);
    return slot && slot->listed > 0 ? slot : nullptr;
}

ZTEventSlot* ZTBasePrivate::findSlot(int index) const
{
    auto position = static_cast<std::size_t>(index);
    return eventSlots && position < eventSlots->size() ? (*eventSlots)[position].get() : nullptr;
}

ZTEventSlot& ZTBasePrivate::eventSlot(int index)
{
    auto position = static_cast<std::size_t>(index);
    if (!eventSlots)
        eventSlots = std::make_unique<std::vector<std::unique_ptr<ZTEventSlot>>>();
    if (position >= eventSlots->size())
        eventSlots->resize(position + 1);
    auto& slot = (*eventSlots)[position];
    if (!slot)
        slot = std::make_unique<ZTEventSlot>();
    return *slot;
}

namespace
{
/// Whether what was raised as the one event has the values of the other, though the object has
/// another class than the compiler saw.
bool haveSameParameters(const ZTMetaInvokable& a, const ZTMetaInvokable& b)
{
    if (&a == &b)
        return true;
    if (a.parameterCount() != b.parameterCount())
        return false;
    for (unsigned int i = 0; i < a.parameterCount(); ++i)
        if (a.parameterMetaType(i) != b.parameterMetaType(i))
            return false;
    return true;
}

/// Whether the handler takes the values of the event. That need not be the one that it was
/// subscribed to: the object may have got another class, where the index means another event.
bool takesValuesOf(const ZTSubscriptionPrivate& subscription, const ZTMetaInvokable& event)
{
    // Only the address: the descriptor that was subscribed with may be gone.
    if (subscription.event == &event)
        return true;
    auto takes = [&event](const auto& handler) {
        if (handler.parameterCount() > event.parameterCount())
            return false;
        for (unsigned int i = 0; i < handler.parameterCount(); ++i)
            if (handler.parameterMetaType(i) != event.parameterMetaType(i))
                return false;
        return true;
    };
    if (const ZTHandlerBase* handler = subscription.ownedHandler())
        return takes(*handler);
    return takes(*std::get<const ZTMetaInvokable*>(subscription.handler));
}

/// Whether the handler can still be called on the receiver. A method that is called through its
/// descriptor finds that out by itself.
bool fitsReceiver(const ZTSubscriptionPrivate& subscription)
{
    const ZTHandlerBase* handler = subscription.ownedHandler();
    return !handler || !handler->description ||
           static_cast<const zt::detail::DescribedHandler*>(handler)->fits(
               *subscription.subscriber->object);
}

/// Hands a handler that a host wrote on its own no more values than it takes.
void callForeignHandler(ZTHandlerBase& handler, const ZTBase* subscriber,
                        const ZTMetaInvokable& event, ZTEventValues& values)
{
    void* leading[zt::detail::maxParamCount] = {};
    for (unsigned int i = 0; i < handler.parameterCount(); ++i)
        leading[i] = values.addresses(event)[i];
    handler.invoke(handler.isMemberFunction() ? subscriber : nullptr, nullptr, leading);
}

void callHandler(const ZTSlotEntry& entry, const ZTMetaInvokable& event, ZTEventValues& values)
{
    const ZTBase* subscriber = entry.subscriber ? entry.subscriber->object : nullptr;
    ZTHandlerBase* handler = entry.record->ownedHandler();
    if (!handler) {
        const auto* invokable = std::get<const ZTMetaInvokable*>(entry.record->handler);
        invokable->invoke(zt::detail::LentVariant(subscriber), values.array());
    } else if (entry.typedHandler) {
        handler->invoke(subscriber, nullptr, values.addresses(event));
    } else if (handler->description) {
        static_cast<zt::detail::ArrayHandler*>(handler)->invokeWith(values.array());
    } else {
        callForeignHandler(*handler, subscriber, event, values);
    }
}

/// Whether nothing stands between the event and a member function or a callable of the receiver.
bool isPlain(const ZTSlotEntry& entry)
{
    return entry.typedHandler && entry.subscriber && !entry.subscriber->receivedEventBlockers &&
           !entry.subscriber->mayHaveChangedClass;
}

/// Whether a subscription that is not plain is to be called now.
bool isReached(const ZTSlotEntry& entry, const ZTMetaInvokable& event)
{
    if (!entry.record || !takesValuesOf(*entry.record, event))
        return false;
    const ZTBasePrivate* subscriber = entry.subscriber;
    return !subscriber || (!subscriber->receivedEventBlockers &&
                           (!subscriber->mayHaveChangedClass || fitsReceiver(*entry.record)));
}
/// Calls the handler of a subscription that is not plain, if it is to be called now.
[[gnu::noinline]] void deliverTo(const ZTSlotEntry& entry, ZTDelivery& delivery,
                                 ZTEventValues& values)
{
    const ZTMetaInvokable& event = *delivery.event();
    if (!isReached(entry, event))
        return;
    if (entry.subscriber)
        delivery.enterReceiver(*entry.subscriber);
    callHandler(entry, event, values);
}
} // namespace

// What a handler may end, and what may move meanwhile, is not used behind its call.
void ZTBasePrivate::dispatch(ZTEventSlot& slot, int index, ZTEventValues& values)
{
    const ZTMetaInvokable* event = slot.eventOf(*object, index);
    if (!event) {
        (void)hasEvent(*object, index);
        return;
    }
    values.fitTo(*event);
    ZTDelivery delivery(*this, slot, index, *event);
    const bool isOfEvent = slot.isOf(*event);
    for (std::size_t i = 0; i < delivery.end() && delivery.sender(); ++i) {
        const ZTSlotEntry& entry = slot.subscriptions[i];
        if (isOfEvent && isPlain(entry)) [[likely]] {
            delivery.enterReceiver(*entry.subscriber);
            entry.typedHandler->invoke(entry.subscriber->object, nullptr, values.addresses(*event));
        } else {
            deliverTo(entry, delivery, values);
        }
        delivery.leaveReceiver();
    }
}

void ZTEventValues::fitToOther(const ZTMetaInvokable& event)
{
    if (haveSameParameters(*m_declared, event))
        return;
    (void)array();
    m_addresses = nullptr;
}

const ZTArgumentArray& ZTEventValues::array()
{
    if (!m_array) {
        m_lent.emplace();
        for (unsigned int i = 0; i < m_declared->parameterCount(); ++i) {
            const ZTMetaType& type = m_declared->parameterMetaType(i);
            if (&type == &::ztMetaType<ZTVariant>())
                m_lent->lend(i, *static_cast<const ZTVariant*>(m_addresses[i]));
            else
                m_lent->lend(i, type, m_addresses[i]);
        }
        m_array = &static_cast<const ZTArgumentArray&>(*m_lent);
    }
    return *m_array;
}

void** ZTEventValues::makeAddresses(const ZTMetaInvokable& event)
{
    collectAddresses(event);
    return m_addresses = m_collected;
}

namespace
{
/// A pointer to an object of a derived class is a value of a pointer to the base.
bool isValueOf(const ZTMetaType& type, const ZTMetaType& declared)
{
    if (&type == &declared)
        return true;
    const ZTMetaClass* from = type.metaClass();
    const ZTMetaClass* to = declared.metaClass();
    return from && to && !from->isDynamic() && !to->isDynamic() && from->isDerivedFrom(to);
}
} // namespace

/// A value of another type than the event declares is not handed to a handler as if it were one.
void ZTEventValues::collectAddresses(const ZTMetaInvokable& event)
{
    const ZTMetaType& variantType = ::ztMetaType<ZTVariant>();
    for (unsigned int i = 0; i < zt::detail::maxParamCount && i < event.parameterCount(); ++i) {
        const ZTVariant& value = (*m_array)[i];
        const ZTMetaType& declared = event.parameterMetaType(i);
        if (declared == variantType)
            m_collected[i] = const_cast<ZTVariant*>(&value);
        else
            m_collected[i] = isValueOf(value.type(), declared) ? value.data() : nullptr;
    }
}

const ZTMetaInvokable* ZTBase::activeEvent() const
{
    return priv && priv->activeEvents ? priv->activeEvents->event() : nullptr;
}

int ZTBase::activeEventIndex() const
{
    return priv && priv->activeEvents ? priv->activeEvents->index() : -1;
}

ZTBase* ZTBase::eventSender() const
{
    const ZTBasePrivate* sender =
        priv && priv->activeEvents ? priv->activeEvents->sender() : nullptr;
    return sender ? sender->object : nullptr;
}
