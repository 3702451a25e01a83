#pragma once

#include "../object/baseprivate.h"
#include "../object/threadlist.h"

#include <cstddef>

struct ZTEventValues;
class ZTQueuedEvent;

/// A walk over a slot, among the active events of its thread.
class ZTDelivery
{
public:
    // Each calls the handlers of a slot.
    /// @param declared  the event whose values are at the addresses
    static void runTyped(ZTBasePrivate& sender, ZTEventSlot& slot, const ZTMetaInvokable* declared,
                         void** addresses);
    static void runArray(ZTBasePrivate& sender, ZTEventSlot& slot,
                         const ZTArgumentArray& arguments);
    /// Calls the handler of one event that has come out of a queue.
    /// @param event     null where there is none any more
    /// @param receiver  may be null
    static void runQueued(ZTQueuedEvent& queued, const ZTMetaInvokable* event, int index,
                          const ZTBasePrivate* receiver);
    /// The innermost delivery that calls a handler for the object; null if there is none.
    static const ZTDelivery* activeEvent(const ZTBasePrivate* receiver);
    /// The innermost delivery of this thread; null if there is none.
    static const ZTDelivery* innermost();
    /// An object has died.
    static void forget(const ZTBasePrivate& receiver) noexcept;
    /// The deliveries that walk a slot.
    template <class Action>
    static void forEachOf(const ZTEventSlot& slot, const Action& action);

    ZTDelivery(const ZTDelivery&) = delete;
    ZTDelivery& operator=(const ZTDelivery&) = delete;

    /// Null once the sender has died; the slot is gone then.
    [[nodiscard]] ZTBasePrivate* sender() const { return m_sender; }
    /// Null when the running handler has none, and once it has died.
    [[nodiscard]] const ZTBasePrivate* receiver() const { return m_receiver; }
    [[nodiscard]] int index() const { return m_index; }
    [[nodiscard]] const ZTMetaInvokable* event() const { return m_event; }

private:
    friend struct ZTEventSlot;
    template <class Node>
    friend class ZTThreadList;

    ZTDelivery(ZTBasePrivate& sender, ZTEventSlot& slot, const ZTMetaInvokable& event,
               void* const* typed);
    ZTDelivery(const ZTMetaInvokable* event, int index, const ZTBasePrivate* receiver);
    ~ZTDelivery();

    template <class... Values>
    static void run(ZTBasePrivate& sender, ZTEventSlot& slot, const Values&... given);
    template <class... Values>
    static void runOtherwise(ZTBasePrivate& sender, ZTEventSlot& slot, const Values&... given);
    static void reportNoEvent(const ZTBase& sender, int index);
    [[nodiscard]] bool walks(const ZTEventSlot& slot) const { return m_sender && m_slot == &slot; }
    void callAll(ZTEventValues& values);
    /// The same for monitors, with the number of the handlers that were called.
    void callAll(ZTEventValues& values, int& called);
    void callMonitored(ZTEventValues& values);
    [[nodiscard]] static int depth();
    void callOther(const ZTSlotEntry& entry, ZTEventValues& values);
    void callSpecial(ZTSpecialSubscription& special, ZTEventValues& values);
    void callHandler(const zt::detail::Handler& handler, ZTEventValues& values) const;
    [[nodiscard]] bool isReached(const ZTSlotEntry& entry, const ZTEventValues& values) const;

    [[gnu::tls_model("initial-exec")]] static thread_local ZTThreadList<ZTDelivery> activeEvents;

    ZTBasePrivate* m_sender;
    ZTEventSlot* m_slot;
    const ZTMetaInvokable* m_event;
    int m_index;
    std::size_t m_next = 0;
    std::size_t m_end;
    /// The addresses of typed values, as long as what the slot knows of its handlers is about this
    /// delivery's event.
    void* const* m_typed;
    bool m_isCurrent = true;
    /// The receiver whose handler runs; null when it has none, and when it has died.
    const ZTBasePrivate* m_receiver = nullptr;
    /// Among the active events of this thread.
    ZTDelivery* m_below = nullptr;
};

template <class Action>
void ZTDelivery::forEachOf(const ZTEventSlot& slot, const Action& action)
{
    if (slot.dispatching > 0)
        activeEvents.forEach([&](ZTDelivery& one) {
            if (one.walks(slot))
                action(one);
        });
}
