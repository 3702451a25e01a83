#include "../reflection/parameters.h"
#include "../reflection/raiseevent.h"
#include "delivery.h"
#include "eventvalues.h"

#include <zintar/log.h>
#include <zintar/typedvalue.h>

#include <string>
#include <utility>

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

void deliver(ZTBasePrivate& sender, ZTEventSlot& slot, int index, ZTEventValues&& values)
{
    if (!ZTDelivery::run(sender, slot, index, values))
        (void)hasEvent(*sender.object, index);
}

void deliver(ZTBasePrivate& sender, int index, ZTEventValues&& values)
{
    if (ZTEventSlot* slot = sender.events.heardSlot(index))
        deliver(sender, *slot, index, std::move(values));
}
} // namespace

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
    if (sender)
        deliver(*sender, index, ZTEventValues(arguments));
}

void ZTBase::sendValues(ZTEventSlot& slot, const zt::detail::DeclaredEvent& declared,
                        void** addresses) const
{
    deliver(*priv, slot, declared.index, ZTEventValues(declared.descriptor, addresses));
}

void zt::detail::EventRaiser::raise(const ZTBase& sender, int index,
                                    const ZTArgumentArray& arguments)
{
    sender.sendEvent(index, arguments);
}

void zt::detail::EventRaiser::raise(const ZTLifeWatch& sender, const DeclaredEvent& declared,
                                    void** addresses)
{
    if (sender)
        deliver(*sender.record(), declared.index, ZTEventValues(declared.descriptor, addresses));
}

ZTEventSlot* ZTBase::heardSlot(int index) const
{
    if (index < 0) [[unlikely]] {
        (void)hasEvent(*this, index);
        return nullptr;
    }
    return priv ? priv->events.heardSlot(index) : nullptr;
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
