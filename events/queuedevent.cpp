#include "queuedevent.h"

#include "../types/metatypeprivate.h"
#include "delivery.h"
#include "eventvalues.h"

#include <zintar/detail/blocks.h>
#include <zintar/detail/lent.h>

#include <algorithm>
#include <cstring>

using zt::detail::Handler;
using zt::detail::HandlerView;

ZTQueuedEvent::Owner ZTQueuedEvent::makeWithRoom(ZTQueuedSubscription::Shared subscription,
                                                 unsigned int room)
{
    static_assert(alignof(Value) <= alignof(ZTQueuedEvent));
    void* block = zt::detail::takeBlock(sizeof(ZTQueuedEvent) + room * sizeof(Value));
    Owner made(new (block) ZTQueuedEvent(std::move(subscription)));
    made->m_room = static_cast<unsigned char>(room);
    return made;
}

void ZTQueuedEvent::Drop::operator()(ZTQueuedEvent* dropped) const noexcept
{
    const std::size_t size = sizeof(ZTQueuedEvent) + dropped->m_room * sizeof(Value);
    dropped->~ZTQueuedEvent();
    zt::detail::giveBlockBack(dropped, size);
}

ZTQueuedEvent::~ZTQueuedEvent()
{
    for (unsigned int i = 0; i < m_count; ++i)
        if (!isPlain(i))
            values()[i].variant.~ZTVariant();
    if (subscription->state.load(std::memory_order_relaxed) == ZTQueuedSubscription::Drained)
        ZTQueuedSubscription::endIfDrained(*subscription);
}

void ZTQueuedEvent::addVariant(const ZTVariant& value)
{
    (new (values() + m_count) Value)->variant = value;
    ++m_count;
}

void ZTQueuedEvent::addTyped(const ZTMetaType& type, const void* value)
{
    const unsigned char size = ZTMetaTypePrivate::of(type).plainSize;
    if (&type == &::ztMetaType<ZTVariant>())
        return addVariant(*static_cast<const ZTVariant*>(value));
    if (size == 0)
        return addVariant(ZTVariant(type, value));
    auto& plain = (new (values() + m_count) Value)->plain;
    plain.type = &type;
    std::memcpy(plain.bytes, value, size);
    m_plain = static_cast<std::uint16_t>(m_plain | 1U << m_count);
    ++m_count;
}

ZTQueuedEvent::Owner ZTQueuedEvent::make(ZTQueuedSubscription::Shared subscription,
                                         const ZTMetaInvokable& event, ZTEventValues& values)
{
    const Handler& handler = subscription->handler;
    // An invokable may look at more values than it has parameters for.
    const unsigned int count = isInvokable(handler) || handler.kind->takesArray
                                   ? zt::detail::suppliedCount(event)
                                   : HandlerView{handler}.parameterCount();
    Owner made = makeWithRoom(std::move(subscription), count);
    made->event = &event;
    made->index = event.index();
    made->descriptorsEnded = zt::detail::descriptorsEnded.load(std::memory_order_relaxed);
    if (void* const* addresses = values.typedAddresses()) {
        for (unsigned int i = 0; i < count; ++i)
            made->addTyped(event.parameterMetaType(i), addresses[i]);
    } else {
        for (unsigned int i = 0; i < count; ++i)
            made->addVariant(values.array()[i]);
    }
    return made;
}

ZTQueuedEvent::Owner ZTQueuedEvent::makePost(ZTQueuedSubscription::Shared subscription)
{
    return makeWithRoom(std::move(subscription), 0);
}

/// Another descriptor may stand where that of an event of a run-time class was.
const ZTMetaInvokable* ZTQueuedEvent::livingEvent() const
{
    const bool isThere =
        subscription->isEventForEver ||
        descriptorsEnded == zt::detail::descriptorsEnded.load(std::memory_order_relaxed);
    return isThere ? event : nullptr;
}

void* ZTQueuedEvent::addressFor(unsigned int position, const ZTMetaType& taken)
{
    Value& value = values()[position];
    if (isPlain(position))
        return value.plain.bytes;
    if (taken == ::ztMetaType<ZTVariant>())
        return &value.variant;
    return ztFits(value.variant, taken) ? value.variant.data() : nullptr;
}

void ZTQueuedEvent::call()
{
    const Handler handler = subscription->handler;
    const ZTBasePrivate* receiver = subscription->receiver;
    const ZTBase* object = receiver ? receiver->object : nullptr;
    const ZTDelivery delivery(livingEvent(), index, receiver);
    if (isInvokable(handler) || handler.kind->takesArray) {
        zt::detail::LentArguments array;
        for (unsigned int i = 0; i < m_count; ++i) {
            Value& value = values()[i];
            if (isPlain(i))
                array.lend(i, *value.plain.type, value.plain.bytes);
            else
                array.lend(i, value.variant);
        }
        const ZTArgumentArray& arguments = array;
        if (isInvokable(handler))
            (void)invokableOf(handler).invoke(zt::detail::LentVariant(object), arguments);
        else
            handler.kind->call(handler.word, object, &arguments);
    } else {
        void* addresses[zt::detail::maxParamCount];
        for (unsigned int i = 0; i < m_count; ++i)
            addresses[i] = addressFor(i, handler.kind->types[i]());
        handler.kind->call(handler.word, object, addresses);
    }
}
