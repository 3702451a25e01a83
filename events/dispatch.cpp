#include "eventslot.h"

#include <zintar/log.h>

#include <string>

void ZTBase::sendEvent(int index, const ZTArgumentArray& arguments) const
{
    if (!isHeard(index))
        return;
    ZTEventValues values(arguments);
    priv->dispatch(index, values);
}

void ZTBase::sendValues(int index, const ZTMetaInvokable& declared, void** addresses,
                        zt::detail::PackFunction pack) const
{
    ZTEventValues values(declared, addresses, pack);
    priv->dispatch(index, values);
}

void zt::detail::EventRaiser::raise(const ZTBase& sender, int index,
                                    const ZTArgumentArray& arguments)
{
    sender.sendEvent(index, arguments);
}

bool ZTBase::isHeard(int index) const
{
    const ZTMetaClass* senderClass = metaClass();
    if (index < 0 || static_cast<unsigned int>(index) >= senderClass->invokableCount()) {
        ztLog("Zintar Error: Cannot send event with out of bounds index " + std::to_string(index) +
                  " on object of type " + std::string(senderClass->typeName()) + ".",
              ZTLogType::Error);
        return false;
    }
    if (!priv || !priv->sentEventBlockers.empty())
        return false;
    const ZTEventSlot* slot = priv->findSlot(index);
    return slot && slot->listed > 0;
}

ZTEventSlot* ZTBasePrivate::findSlot(int index) const
{
    auto position = static_cast<std::size_t>(index);
    return position < eventSlots.size() ? eventSlots[position].get() : nullptr;
}

ZTEventSlot& ZTBasePrivate::eventSlot(int index)
{
    auto position = static_cast<std::size_t>(index);
    if (position >= eventSlots.size())
        eventSlots.resize(position + 1);
    if (!eventSlots[position])
        eventSlots[position] = std::make_unique<ZTEventSlot>();
    return *eventSlots[position];
}

namespace
{
/// Whether a handler that was checked against the one event can be given the values of the other.
/// They differ when the object got another class in between.
bool haveSameParameters(const ZTMetaInvokable& a, const ZTMetaInvokable& b)
{
    if (a.parameterCount() != b.parameterCount())
        return false;
    for (unsigned int i = 0; i < a.parameterCount(); ++i)
        if (a.parameterMetaType(i) != b.parameterMetaType(i))
            return false;
    return true;
}

/// Whether the handler can still be called on the receiver. A method that is called through its
/// descriptor finds that out by itself.
bool fitsReceiver(const ZTSubscriptionPrivate& subscription)
{
    const auto* handler =
        dynamic_cast<const zt::detail::DescribedHandler*>(subscription.ownedHandler());
    return !handler || handler->fits(*subscription.subscriber->object);
}

void callHandler(const ZTSubscriptionPrivate& subscription, const ZTMetaInvokable& event,
                 ZTEventValues& values)
{
    // The record may go during the call: what is needed of it is taken before.
    const ZTBase* subscriber = subscription.subscriber ? subscription.subscriber->object : nullptr;
    zt::detail::ZTHandlerBase* handler = subscription.ownedHandler();
    if (!handler) {
        const auto* invokable = std::get<const ZTMetaInvokable*>(subscription.handler);
        invokable->invoke(ZTVariant(subscriber), values.array());
        return;
    }
    if (subscription.arrayHandler) {
        subscription.arrayHandler->invokeWith(values.array());
        return;
    }
    const ZTBase* target = handler->isMemberFunction() ? subscriber : nullptr;
    void** addresses = values.addresses(event);
    if (subscription.parameterCount == event.parameterCount()) {
        handler->invoke(target, nullptr, addresses);
        return;
    }
    void* leading[zt::detail::maxParamCount] = {};
    for (unsigned int i = 0; i < subscription.parameterCount; ++i)
        leading[i] = addresses[i];
    handler->invoke(target, nullptr, leading);
}
} // namespace

void ZTBasePrivate::dispatch(int index, ZTEventValues& values)
{
    const ZTMetaInvokable* event = object->metaClass()->invokable(index);
    ZTEventSlot* slot = findSlot(index);
    if (!event || !slot)
        return;
    values.fitTo(*event);
    ZTDelivery delivery(*this, *slot);
    for (std::size_t i = 0; i < delivery.end(); ++i) {
        const ZTSubscriptionPrivate* subscription = slot->subscriptions[i].get();
        if (!subscription)
            continue;
        ZTBasePrivate* subscriber = subscription->subscriber;
        if (subscriber && !subscriber->receivedEventBlockers.empty())
            continue;
        if (subscriber && subscriber->mayHaveChangedClass && !fitsReceiver(*subscription))
            continue;
        if (subscription->event != event && !haveSameParameters(*subscription->event, *event))
            continue;
        {
            ZTActiveEvent active(index, event, delivery, subscriber);
            callHandler(*subscription, *event, values);
        }
        if (!delivery.sender())
            return;
    }
}

void ZTEventValues::fitTo(const ZTMetaInvokable& event)
{
    if (!m_declared || m_declared == &event || haveSameParameters(*m_declared, event))
        return;
    (void)array();
    m_addresses = nullptr;
}

const ZTArgumentArray& ZTEventValues::array()
{
    if (!m_array) {
        m_packed = std::make_unique<ZTArgumentArray>();
        m_pack(m_addresses, *m_packed);
        m_array = m_packed.get();
    }
    return *m_array;
}

void** ZTEventValues::addresses(const ZTMetaInvokable& event)
{
    if (!m_addresses) {
        collectAddresses(event);
        m_addresses = m_collected;
    }
    return m_addresses;
}

/// A value of another type than the event declares is not handed to a handler as if it were one.
void ZTEventValues::collectAddresses(const ZTMetaInvokable& event)
{
    const ZTMetaType& variantType = ::ztMetaType<ZTVariant>();
    for (unsigned int i = 0; i < zt::detail::maxParamCount && i < event.parameterCount(); ++i) {
        const ZTVariant& value = (*m_array)[i];
        const ZTMetaType& declared = event.parameterMetaType(i);
        if (declared == variantType)
            m_collected[i] = const_cast<ZTVariant*>(&value);
        else if (&value.type() == &declared)
            m_collected[i] = value.data();
    }
}

const ZTMetaInvokable* ZTBase::activeEvent() const
{
    return priv && priv->activeEvents ? priv->activeEvents->event : nullptr;
}

int ZTBase::activeEventIndex() const
{
    return priv && priv->activeEvents ? priv->activeEvents->index : -1;
}

ZTBase* ZTBase::eventSender() const
{
    return priv && priv->activeEvents ? priv->activeEvents->sender() : nullptr;
}
