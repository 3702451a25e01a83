#include "../reflection/parameters.h"
#include "../reflection/raiseevent.h"
#include "delivery.h"
#include "eventvalues.h"

#include <zintar/log.h>
#include <zintar/typedvalue.h>

#include <string>

using zt::detail::suppliedCount;

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

/// A handler of the host gets a default value in place of one that does not fit, which it cannot
/// tell from a real one.
[[gnu::noinline]] void tellOfMisfits(const ZTMetaInvokable& event, std::string_view className,
                                     const ZTArgumentArray& arguments)
{
    std::string text;
    for (unsigned int i = 0; i < suppliedCount(event); ++i) {
        const ZTMetaType& declared = event.parameterMetaType(i);
        if (ztFits(arguments[i], declared))
            continue;
        text += (text.empty() ? "Zintar Warning: Event " + std::string(event.name()) + " of " +
                                    std::string(className) + " was sent with "
                              : "; ") +
                "no \"" + declared.name() + "\" at position " + std::to_string(i) + " but " +
                (arguments[i] ? "a \"" + arguments[i].type().name() + "\"" : "nothing");
    }
    ztLog(text + ". Handlers get a default value.", ZTLogType::Warning);
}

bool fit(const ZTArgumentArray& arguments, const ZTMetaInvokable& event)
{
    for (unsigned int i = 0; i < suppliedCount(event); ++i)
        if (!ztFits(arguments[i], event.parameterMetaType(i)))
            return false;
    return true;
}

/// Whether the event is kept for later. Then the sender may have ended.
/// @param given  what values of an event are made of
template <class... Values>
[[gnu::always_inline]] inline bool isKept(ZTBasePrivate& sender, int index, const Values&... given)
{
    return !sender.extras.leaveEventsAlone() && sender.extras.heldChanges() &&
           ZTHeldChanges::keep(sender, index, ZTEventValues(given...));
}
} // namespace

void ZTDelivery::reportNoEvent(const ZTBase& sender, int index) { (void)hasEvent(sender, index); }

ZTEventSlot* ZTBase::heardSlot(int index) const
{
    ZTEventSlot* slot = priv ? priv->heardSlot(index) : nullptr;
    if (!slot && index < 0) [[unlikely]]
        (void)hasEvent(*this, index);
    return slot;
}

void ZTBase::sendEvent(int index, const ZTArgumentArray& arguments) const
{
    if (!hasEvent(*this, index) || !heardSlot(index))
        return;
    ZTBasePrivate* sender = priv;
    const ZTMetaClass& senderClass = *metaClass();
    const ZTMetaInvokable* event = senderClass.invokable(static_cast<unsigned int>(index));
    if (event && !fit(arguments, *event)) {
        ZTLifeWatch watch(sender);
        tellOfMisfits(*event, senderClass.typeName(), arguments);
        sender = watch.record();
    }
    ZTEventSlot* slot = sender ? sender->heardSlot(index) : nullptr;
    if (slot && !isKept(*sender, index, arguments))
        ZTDelivery::runArray(*sender, *slot, arguments);
}

namespace
{
void deliver(ZTBasePrivate& sender, ZTEventSlot& slot, const zt::detail::DeclaredEvent& declared,
             void** addresses)
{
    if (!isKept(sender, slot.index, declared.descriptor, addresses))
        ZTDelivery::runTyped(sender, slot, declared.descriptor, addresses);
}

[[gnu::noinline]] void sendOtherwise(ZTBasePrivate& sender,
                                     const zt::detail::DeclaredEvent& declared, void** addresses)
{
    if (ZTEventSlot* slot = sender.heardSlot(declared.index))
        deliver(sender, *slot, declared, addresses);
    else if (declared.index < 0)
        (void)hasEvent(*sender.object, declared.index);
}
} // namespace

/// The way of a sender with one event that is heard is short: it ends in the delivery, and needs no
/// stack here.
void ZTBase::sendValues(const zt::detail::DeclaredEvent& declared, void** addresses) const
{
    const int index = declared.index;
    ZTEventSlot* slot = priv ? priv->events.eventSlots.findSingle(index) : nullptr;
    if (slot && slot->listed > 0 && priv->extras.leaveEventsAlone())
        return ZTDelivery::runTyped(*priv, *slot, declared.descriptor, addresses);
    if (!priv || (index >= 0 && priv->events.eventSlots.areNone() &&
                  priv->extras.leaveEventsAlone())) [[likely]]
        return;
    sendOtherwise(*priv, declared, addresses);
}

void ZTBase::sendValues(ZTEventSlot& slot, const zt::detail::DeclaredEvent& declared,
                        void** addresses) const
{
    deliver(*priv, slot, declared, addresses);
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
    if (ZTEventSlot* slot = record ? record->heardSlot(declared.index) : nullptr)
        deliver(*record, *slot, declared, addresses);
}

/// What the class of the object does not have under that index is not raised.
void zt::detail::raiseEvent(const ZTMetaInvokable& event, const ZTVariant& object,
                            const ZTArgumentArray& arguments)
{
    const auto* sender = ztVariantValue<ZTBase*>(object);
    const int index = event.index();
    if (sender && sender->metaClass()->invokable(index) == &event)
        EventRaiser::raise(*sender, index, arguments);
}
