#include "queuedevent.h"

#include "../types/metatypeprivate.h"
#include "delivery.h"
#include "eventvalues.h"

#include <zintar/detail/lent.h>

#include <cstring>
#include <new>
#include <utility>

using zt::detail::Handler;

static_assert(sizeof(ZTQueuedEvent) == 64);

namespace
{
unsigned int descriptorsEndedNow()
{
    return zt::detail::descriptorsEnded.load(std::memory_order_relaxed) & ~zt::detail::areMonitored;
}

/// An invokable may look at more values than it has parameters for.
bool takesAll(const Handler& handler) { return isInvokable(handler) || handler.kind->takesArray; }
} // namespace

ZTQueuedEvent::ZTQueuedEvent(ZTQueuedSubscription& subscription) noexcept
    : m_subscription(&subscription), m_array(nullptr)
{
    subscription.addEvent();
}

ZTQueuedEvent::ZTQueuedEvent(ZTQueuedSubscription& subscription, const ZTMetaInvokable& event,
                             ZTEventValues& values)
    : ZTQueuedEvent(subscription)
{
    m_event = &event;
    m_descriptorsEnded = descriptorsEndedNow();
    addValues(event, values); // behind the first constructor, so that a failing copy clears up
}

ZTQueuedEvent::ZTQueuedEvent(ZTQueuedEvent&& other) noexcept { take(other); }

ZTQueuedEvent& ZTQueuedEvent::operator=(ZTQueuedEvent&& other) noexcept
{
    if (this != &other) {
        clear();
        take(other);
    }
    return *this;
}

void ZTQueuedEvent::take(ZTQueuedEvent& other) noexcept
{
    sequence = other.sequence;
    m_subscription = std::exchange(other.m_subscription, nullptr);
    m_event = other.m_event;
    m_descriptorsEnded = other.m_descriptorsEnded;
    m_count = std::exchange(other.m_count, 0);
    m_room = std::exchange(other.m_room, 0);
    m_plain = other.m_plain;
    if (m_room > room) {
        m_array = other.m_array;
        return;
    }
    for (unsigned int i = 0; i < m_count; ++i) {
        Value& value = other.m_values[i];
        if (isPlain(i)) {
            std::memcpy(&m_values[i].plain, &value.plain, sizeof(value.plain));
        } else {
            new (&m_values[i].variant) ZTVariant(std::move(value.variant));
            value.variant.~ZTVariant();
        }
    }
}

void ZTQueuedEvent::clear() noexcept
{
    for (unsigned int i = 0; i < m_count; ++i)
        if (!isPlain(i))
            values()[i].variant.~ZTVariant();
    if (m_room > room)
        delete[] m_array;
    m_count = m_room = 0;
    if (ZTQueuedSubscription* last = std::exchange(m_subscription, nullptr))
        last->removeEvent();
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

void ZTQueuedEvent::addValues(const ZTMetaInvokable& event, ZTEventValues& given)
{
    const Handler& handler = m_subscription->handler;
    const bool isAll = takesAll(handler);
    const unsigned int count =
        isAll ? zt::detail::suppliedCount(event) : handler.kind->parameterCount;
    if (count > room) {
        m_array = new Value[count];
        m_room = static_cast<unsigned char>(count);
    }
    void* const* addresses = given.typedAddresses();
    for (unsigned int i = 0; i < count; ++i) {
        if (addresses)
            addTyped(isAll ? event.parameterMetaType(i) : handler.kind->types[i](), addresses[i]);
        else
            addVariant(given.array()[i]);
    }
}

/// Another descriptor may stand where that of an event of a run-time class was.
const ZTMetaInvokable* ZTQueuedEvent::livingEvent() const
{
    const bool isThere =
        m_subscription->isEventForEver || m_descriptorsEnded == descriptorsEndedNow();
    return isThere ? m_event : nullptr;
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
    ZTDelivery::runQueued(*this, livingEvent(), m_subscription->eventIndex,
                          m_subscription->receiver);
}

void ZTQueuedEvent::callHandler()
{
    const Handler handler = m_subscription->handler;
    const ZTBasePrivate* receiver = m_subscription->receiver;
    const ZTBase* object = receiver ? receiver->object : nullptr;
    if (takesAll(handler)) {
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
