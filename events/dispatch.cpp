#include "eventslot.h"

#include <zintar/detail/lent.h>
#include <zintar/log.h>
#include <zintar/metaclass.h>

#include <algorithm>
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

/// How many values an event hands over: those that an argument array can carry.
unsigned int suppliedCount(const ZTMetaInvokable& event)
{
    return std::min(event.parameterCount(), ZTMetaInvokable::MaxParamCount);
}

/// A pointer to an object of a derived class is a value of a pointer to the base.
bool isValueOf(const ZTMetaType& type, const ZTMetaType& declared)
{
    if (&type == &declared)
        return true;
    const ZTMetaClass* from = type.metaClass();
    const ZTMetaClass* to = declared.metaClass();
    return from && to && !from->isDynamic() && !to->isDynamic() && from->isDerivedFrom(to);
}

bool fits(const ZTVariant& value, const ZTMetaType& declared)
{
    return &declared == &::ztMetaType<ZTVariant>() || isValueOf(value.type(), declared);
}

/// A handler of the host gets a default value in place of one that does not fit, which it cannot
/// tell from a real one.
[[gnu::noinline]] void tellOfMisfits(const ZTMetaInvokable& event, std::string_view className,
                                     const ZTArgumentArray& arguments)
{
    std::string text;
    for (unsigned int i = 0; i < suppliedCount(event); ++i) {
        const ZTMetaType& declared = event.parameterMetaType(i);
        if (fits(arguments[i], declared))
            continue;
        text += (text.empty() ? "Zintar Warning: Event " + std::string(event.name()) + " of " +
                                    std::string(className) + " was sent with "
                              : "; ") +
                "no \"" + declared.name() + "\" at position " + std::to_string(i) + " but " +
                (arguments[i] ? "a \"" + arguments[i].type().name() + "\"" : "nothing");
    }
    ztLog(text + ". Handlers get a default value.", ZTLogType::Warning);
}
} // namespace

void ZTBase::sendEvent(int index, const ZTArgumentArray& arguments) const
{
    if (!hasEvent(*this, index) || !heardSlot(index))
        return;
    ZTBasePrivate* sender = priv;
    const ZTMetaClass& senderClass = *metaClass();
    const ZTMetaInvokable* event = senderClass.invokable(static_cast<unsigned int>(index));
    for (unsigned int i = 0; event && i < suppliedCount(*event); ++i) {
        if (fits(arguments[i], event->parameterMetaType(i)))
            continue;
        ZTLifeWatch watch(sender);
        tellOfMisfits(*event, senderClass.typeName(), arguments);
        sender = watch.record();
        break;
    }
    if (ZTEventSlot* slot = sender ? sender->heardSlot(index) : nullptr) {
        ZTEventValues values(arguments);
        sender->dispatch(*slot, index, values);
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

void zt::detail::EventRaiser::raise(const ZTLifeWatch& sender, const DeclaredEvent& declared,
                                    void** addresses)
{
    ZTBasePrivate* record = sender.record();
    if (ZTEventSlot* slot = record ? record->heardSlot(declared.index) : nullptr) {
        ZTEventValues values(declared.descriptor, addresses);
        record->dispatch(*slot, declared.index, values);
    }
}

ZTEventSlot* ZTBase::heardSlot(int index) const
{
    if (index < 0) [[unlikely]] {
        (void)hasEvent(*this, index);
        return nullptr;
    }
    return priv ? priv->heardSlot(index) : nullptr;
}

ZTEventSlot* ZTBasePrivate::heardSlot(int index) const
{
    if (!eventSlots || sentEventBlockers)
        return nullptr;
    ZTEventSlot* slot = findSlot(index);
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
    if (!entry.record || (entry.subscriber && entry.subscriber->receivedEventBlockers))
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
void ZTBasePrivate::dispatch(ZTEventSlot& slot, int index, ZTEventValues& values)
{
    const ZTMetaInvokable* event = slot.eventOf(*object, index);
    if (!event) {
        (void)hasEvent(*object, index);
        return;
    }
    values.fitTo(*event);
    ZTDelivery delivery(*this, slot, index, *event);
    while (const ZTSlotEntry* entry = delivery.next()) {
        ZTHandlerBase* handler = entry->typedHandler;
        ZTBasePrivate* receiver = entry->subscriber;
        // Nothing stands between the event and a member function or a callable of the receiver.
        if (handler && receiver && !receiver->receivedEventBlockers && delivery.isCurrent())
            [[likely]] {
            delivery.enterReceiver(*receiver);
            handler->invoke(receiver->object, nullptr, values.addresses(*handler));
        } else {
            deliverTo(*entry, delivery, values);
        }
        delivery.leaveReceiver();
    }
}

template <class Handler>
bool ZTEventValues::areTakenBy(const Handler& handler) const
{
    for (unsigned int i = 0; i < handler.parameterCount(); ++i) {
        const ZTMetaType& taken = handler.parameterMetaType(i);
        bool isTaken = m_declared ? i < m_declared->parameterCount() &&
                                        m_declared->parameterMetaType(i) == taken
                                  : fits((*m_array)[i], taken);
        if (!isTaken)
            return false;
    }
    return true;
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

/// A value of another type than the handler takes is not handed to it as if it were one.
void** ZTEventValues::collectAddresses(const ZTHandlerBase& handler)
{
    const ZTMetaType& variantType = ::ztMetaType<ZTVariant>();
    for (unsigned int i = 0; i < handler.parameterCount(); ++i) {
        const ZTVariant& value = (*m_array)[i];
        const ZTMetaType& taken = handler.parameterMetaType(i);
        if (taken == variantType)
            m_collected[i] = const_cast<ZTVariant*>(&value);
        else
            m_collected[i] = isValueOf(value.type(), taken) ? value.data() : nullptr;
    }
    return m_collected;
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
