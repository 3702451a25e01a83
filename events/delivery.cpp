#include "delivery.h"

#include "eventvalues.h"
#include "monitoring.h"
#include "queuedevent.h"

#include <zintar/detail/lent.h>
#include <zintar/metaclass.h>

#include <algorithm>
#include <chrono>

[[gnu::tls_model("initial-exec")]] thread_local constinit ZTThreadList<ZTDelivery>
    ZTDelivery::activeEvents;

inline ZTDelivery::ZTDelivery(ZTBasePrivate& sender, ZTEventSlot& slot,
                              const ZTMetaInvokable& event, void* const* typed)
    : m_sender(&sender),
      m_slot(&slot),
      m_event(&event),
      m_index(slot.index),
      m_end(slot.subscriptions.size()),
      m_typed(typed)
{
    if (slot.dispatching > 0) [[unlikely]]
        m_end = activeEvents.find([&](const ZTDelivery& one) { return one.walks(slot); })->m_end;
    ++slot.dispatching;
    activeEvents.enter(*this);
}

inline ZTDelivery::ZTDelivery(const ZTMetaInvokable* event, int index,
                              const ZTBasePrivate* receiver)
    : m_sender(nullptr),
      m_slot(nullptr),
      m_event(event),
      m_index(index),
      m_end(0),
      m_typed(nullptr),
      m_receiver(receiver)
{
    activeEvents.enter(*this);
}

inline ZTDelivery::~ZTDelivery()
{
    activeEvents.leave(*this);
    if (!m_sender) [[unlikely]]
        return;
    if (--m_slot->dispatching == 0 && m_slot->emptyCount() > 0) [[unlikely]]
        m_slot->compact();
}

const ZTDelivery* ZTDelivery::activeEvent(const ZTBasePrivate* receiver)
{
    return receiver ? activeEvents.find(
                          [&](const ZTDelivery& one) { return one.m_receiver == receiver; })
                    : nullptr;
}

const ZTDelivery* ZTDelivery::innermost()
{
    return activeEvents.find([](const ZTDelivery&) { return true; });
}

void ZTDelivery::forget(const ZTBasePrivate& receiver) noexcept
{
    activeEvents.forEach([&](ZTDelivery& one) {
        if (one.m_receiver == &receiver)
            one.m_receiver = nullptr;
    });
}

namespace
{
/// Hands a handler that a host wrote on its own no more values than it takes.
void callForeign(zt::detail::ZTHandlerBase& handler, const ZTBase* subscriber,
                 void* const* addresses)
{
    void* leading[zt::detail::maxParamCount] = {};
    std::copy_n(addresses, handler.parameterCount(), leading);
    handler.invoke(handler.isMemberFunction() ? subscriber : nullptr, nullptr, leading);
}

/// Whether the condition of a subscription, if it has one, holds.
bool holds(ZTSpecialSubscription& special, ZTEventValues& values)
{
    zt::detail::Condition* condition = special.condition.get();
    if (!condition)
        return true;
    if (condition->takesArray)
        return condition->holds(&values.array());
    return values.areTakenBy(*condition) && condition->holds(values.addresses(*condition));
}

void endAtOnce(ZTSubscriptionPrivate& record)
{
    ZTLetGo ended;
    ZTEventEnds::end(record, ended);
}
} // namespace

/// Calls any handler on the present receiver.
[[gnu::always_inline]] inline void ZTDelivery::callHandler(const zt::detail::Handler& handler,
                                                           ZTEventValues& values) const
{
    const ZTBase* subscriber = m_receiver ? m_receiver->object : nullptr;
    if (isInvokable(handler))
        (void)invokableOf(handler).invoke(zt::detail::LentVariant(subscriber), values.array());
    else if (isForeign(handler))
        callForeign(foreignOf(handler), subscriber,
                    values.addresses(zt::detail::HandlerView{handler}));
    else if (handler.kind->takesArray)
        handler.kind->call(handler.word, subscriber, &values.array());
    else
        handler.kind->call(handler.word, subscriber,
                           values.addresses(zt::detail::HandlerView{handler}));
}

/// Whether a subscription is to be called now.
inline bool ZTDelivery::isReached(const ZTSlotEntry& entry, const ZTEventValues& values) const
{
    if (!entry.record || (entry.subscriber && entry.subscriber->isBlockingReceived()))
        return false;
    if (m_isCurrent)
        return entry.record->isCalled;
    return entry.record->blockers == 0 &&
           values.areTakenBy(zt::detail::HandlerView{entry.record->handler});
}

/// Calls the handler of any subscription, if it is to be called now.
[[gnu::noinline]] void ZTDelivery::callOther(const ZTSlotEntry& entry, ZTEventValues& values)
{
    m_receiver = nullptr;
    if (!isReached(entry, values))
        return;
    if (ZTSpecialSubscription* special = specialOf(*entry.record)) [[unlikely]]
        return callSpecial(*special, values);
    m_receiver = entry.subscriber;
    callHandler(entry.record->handler, values);
}

/// Looks at the options of a subscription first. The slot may look otherwise behind this, and the
/// sender may have died.
[[gnu::noinline]] void ZTDelivery::callSpecial(ZTSpecialSubscription& special,
                                               ZTEventValues& values)
{
    ZTQueuedSubscription* queued = ZTQueuedSubscription::of(special);
    if (queued && (!queued->isActive() || queued->isBlocked()))
        return;
    if (queued && !special.bound && !special.condition)
        return queued->enqueue(*m_event, values);
    const std::shared_ptr<ZTSubscriptionPrivate> kept = special.self;
    if (!special.isBound())
        return endAtOnce(special);
    if (!holds(special, values) || !special.isActive())
        return;
    if (queued)
        return queued->enqueue(*m_event, values);
    m_receiver = special.subscriber;
    const zt::detail::KeptCall running(special.handler);
    if (special.isOnce)
        endAtOnce(special);
    callHandler(special.handler, values);
}

// What a handler may end, and what may move meanwhile, is not used behind its call.
inline void ZTDelivery::callAll(ZTEventValues& values)
{
    while (m_next < m_end) {
        const ZTSlotEntry& entry = m_slot->subscriptions[m_next++];
        const auto call = entry.typedCall;
        const ZTBasePrivate* receiver = entry.subscriber;
        // Nothing stands between typed values and a function that takes them.
        if (call && m_typed && receiver && !receiver->isBlockingReceived()) [[likely]] {
            m_receiver = receiver;
            call(entry.word, receiver->object, m_typed);
        } else {
            callOther(entry, values);
        }
    }
}

void ZTDelivery::callAll(ZTEventValues& values, int& called)
{
    while (m_next < m_end) {
        const ZTSlotEntry& entry = m_slot->subscriptions[m_next++];
        called += isReached(entry, values) ? 1 : 0;
        callOther(entry, values);
    }
}

int ZTDelivery::depth()
{
    int count = -1;
    activeEvents.forEach([&count](const ZTDelivery&) { ++count; });
    return count;
}

void ZTDelivery::callMonitored(ZTEventValues& values)
{
    const ZTMonitoring monitoring;
    int called = 0;
    const auto tell = [&](bool hasThrown) {
        m_receiver = nullptr;
        const auto duration = std::chrono::steady_clock::now() - monitoring.start();
        monitoring.tell([&] {
            return ZTMonitoredDelivery{m_sender ? m_sender->object : nullptr,
                                       m_event,
                                       m_index,
                                       values.array(),
                                       called,
                                       depth(),
                                       monitoring.start(),
                                       duration,
                                       hasThrown};
        });
    };
    try {
        callAll(values, called);
    } catch (...) {
        try {
            tell(true);
        } catch (...) { // what the handler has thrown goes on
        }
        throw;
    }
    tell(false);
}

/// Where there is no event, or somebody monitors.
template <class... Values>
[[gnu::noinline, gnu::cold]] void ZTDelivery::runOtherwise(ZTBasePrivate& sender, ZTEventSlot& slot,
                                                           const Values&... given)
{
    const ZTMetaInvokable* event = slot.lastEvent();
    if (!event)
        return reportNoEvent(*sender.object, slot.index);
    ZTEventValues values(given...);
    values.fitTo(*event);
    ZTDelivery(sender, slot, *event, values.typedAddresses()).callMonitored(values);
}

/// @param given  what values of an event are made of
template <class... Values>
[[gnu::always_inline]] inline void ZTDelivery::run(ZTBasePrivate& sender, ZTEventSlot& slot,
                                                   const Values&... given)
{
    const ZTMetaInvokable* event = slot.eventOf(*sender.object);
    if (!event) [[unlikely]]
        return runOtherwise(sender, slot, given...);
    ZTEventValues values(given...);
    values.fitTo(*event);
    ZTDelivery(sender, slot, *event, values.typedAddresses()).callAll(values);
}

void ZTDelivery::runTyped(ZTBasePrivate& sender, ZTEventSlot& slot, const ZTMetaInvokable* declared,
                          void** addresses)
{
    run(sender, slot, declared, addresses);
}

void ZTDelivery::runArray(ZTBasePrivate& sender, ZTEventSlot& slot,
                          const ZTArgumentArray& arguments)
{
    run(sender, slot, arguments);
}

void ZTDelivery::runQueued(ZTQueuedEvent& queued, const ZTMetaInvokable* event, int index,
                           const ZTBasePrivate* receiver)
{
    const ZTDelivery delivery(event, index, receiver);
    queued.callHandler();
}

const ZTMetaInvokable* ZTBase::activeEvent() const
{
    const ZTDelivery* delivery = ZTDelivery::activeEvent(priv);
    return delivery ? delivery->event() : nullptr;
}

int ZTBase::activeEventIndex() const
{
    const ZTDelivery* delivery = ZTDelivery::activeEvent(priv);
    return delivery ? delivery->index() : -1;
}

ZTDeliveryInfo ZTBase::delivery()
{
    const ZTDelivery* delivery = ZTDelivery::innermost();
    if (!delivery)
        return {};
    return {delivery->event(), delivery->index(),
            delivery->sender() ? delivery->sender()->object : nullptr,
            delivery->receiver() ? delivery->receiver()->object : nullptr};
}

ZTBase* ZTBase::eventSender() const
{
    const ZTDelivery* delivery = ZTDelivery::activeEvent(priv);
    return delivery && delivery->sender() ? delivery->sender()->object : nullptr;
}
