#include "queuedevent.h"

#include "../types/metatypeprivate.h"
#include "delivery.h"
#include "eventvalues.h"

#include <zintar/detail/blocks.h>
#include <zintar/detail/lent.h>

#include <algorithm>
#include <cstring>
#include <new>
#include <utility>

using zt::detail::Handler;
using zt::detail::HandlerView;

namespace
{
unsigned int descriptorsEndedNow()
{
    return zt::detail::descriptorsEnded.load(std::memory_order_relaxed) & ~zt::detail::areMonitored;
}

std::size_t sizeFor(unsigned int room)
{
    return sizeof(ZTQueuedEvent) + room * ZTQueuedEvent::valueSize;
}
} // namespace

void ZTEventBlock::giveBack(ZTEventBlock* block) noexcept
{
    if (block)
        zt::detail::giveBlockBack(block, sizeFor(room));
}

ZTQueuedEvent::Owner ZTQueuedEvent::makeWithRoom(ZTQueuedSubscription& subscription,
                                                 unsigned int room)
{
    static_assert(alignof(Value) <= alignof(ZTQueuedEvent) && sizeof(Value) == valueSize);
    room = std::max(room, ZTEventBlock::room);
    void* block = room == ZTEventBlock::room ? std::exchange(subscription.spare, nullptr) : nullptr;
    if (!block)
        block = zt::detail::takeBlock(sizeFor(room));
    Owner made(new (block) ZTQueuedEvent(subscription));
    made->m_room = static_cast<unsigned char>(room);
    return made;
}

ZTEventBlock* ZTQueuedEvent::destroy(ZTQueuedEvent* event) noexcept
{
    const unsigned int room = event->m_room;
    event->~ZTQueuedEvent();
    if (room == ZTEventBlock::room)
        return new (event) ZTEventBlock;
    zt::detail::giveBlockBack(event, sizeFor(room));
    return nullptr;
}

void ZTQueuedEvent::Drop::operator()(ZTQueuedEvent* dropped) const noexcept
{
    ZTEventBlock::giveBack(destroy(dropped));
}

ZTQueuedEvent::~ZTQueuedEvent()
{
    for (unsigned int i = 0; i < m_count; ++i)
        if (!isPlain(i))
            values()[i].variant.~ZTVariant();
    subscription.removeEvent();
}

void ZTQueuedEvent::addVariant(const ZTVariant& value)
{
    new (&values()[m_count].variant) ZTVariant(value);
    ++m_count;
}

void ZTQueuedEvent::addPlain(const ZTMetaType& type, unsigned char size, const void* value)
{
    auto& plain = values()[m_count].plain;
    plain.type = &type;
    switch (size) { // the sizes that plain values have
    case 1:
        std::memcpy(plain.bytes, value, 1);
        break;
    case 4:
        std::memcpy(plain.bytes, value, 4);
        break;
    default:
        std::memcpy(plain.bytes, value, 8);
    }
    m_plain = static_cast<std::uint16_t>(m_plain | 1U << m_count);
    ++m_count;
}

void ZTQueuedEvent::addTyped(const ZTMetaType& type, const void* value)
{
    if (const unsigned char size = ZTMetaTypePrivate::of(type).plainSize) [[likely]]
        addPlain(type, size, value);
    else if (&type == &::ztMetaType<ZTVariant>())
        addVariant(*static_cast<const ZTVariant*>(value));
    else
        addVariant(ZTVariant(type, value));
}

void ZTQueuedEvent::addArray(unsigned int count, const ZTArgumentArray& array)
{
    for (unsigned int i = 0; i < count; ++i)
        addVariant(array[i]);
}

ZTQueuedEvent::Owner ZTQueuedEvent::make(ZTQueuedSubscription& subscription,
                                         const ZTMetaInvokable& event, ZTEventValues& values)
{
    const Handler& handler = subscription.handler;
    // An invokable may look at more values than it has parameters for.
    const bool takesAll = isInvokable(handler) || handler.kind->takesArray;
    const unsigned int count =
        takesAll ? zt::detail::suppliedCount(event) : handler.kind->parameterCount;
    Owner made = makeWithRoom(subscription, count);
    made->event = &event;
    made->index = subscription.eventIndex;
    made->descriptorsEnded = descriptorsEndedNow();
    void* const* addresses = values.typedAddresses();
    if (!addresses)
        made->addArray(count, values.array());
    for (unsigned int i = 0; addresses && i < count; ++i)
        made->addTyped(takesAll ? event.parameterMetaType(i) : handler.kind->types[i](),
                       addresses[i]);
    return made;
}

ZTQueuedEvent::Owner ZTQueuedEvent::makePost(ZTQueuedSubscription& subscription)
{
    return makeWithRoom(subscription, 0);
}

/// Another descriptor may stand where that of an event of a run-time class was.
const ZTMetaInvokable* ZTQueuedEvent::livingEvent() const
{
    const bool isThere = subscription.isEventForEver || descriptorsEnded == descriptorsEndedNow();
    return isThere ? event : nullptr;
}

void* ZTQueuedEvent::addressFor(unsigned int position, zt::detail::TypeGetter typeTaken)
{
    Value& value = values()[position];
    if (isPlain(position))
        return value.plain.bytes;
    const ZTMetaType& taken = typeTaken();
    if (taken == ::ztMetaType<ZTVariant>())
        return &value.variant;
    return ztFits(value.variant, taken) ? value.variant.data() : nullptr;
}

void ZTQueuedEvent::call()
{
    const Handler handler = subscription.handler;
    const ZTBasePrivate* receiver = subscription.receiver;
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
            addresses[i] = addressFor(i, handler.kind->types[i]);
        handler.kind->call(handler.word, object, addresses);
    }
}
