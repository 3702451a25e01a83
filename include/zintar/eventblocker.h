#pragma once

#include <zintar/base.h>
#include <zintar/detail/declaredevent.h>
#include <zintar/export.h>
#include <zintar/fwd.h>
#include <zintar/subscription.h>

#include <memory>

/// Silences something for as long as the blocker lives: what an object sends or receives, one event
/// of an object, or one subscription.
///
///     ZTEventBlocker quiet(&thermostat, true);
///     thermostat.setProperty("target", 21.5); // nobody hears of it
///
///     ZTEventBlocker still(&thermostat, &Thermostat::targetChanged);
///     ZTEventBlocker deaf(subscription);
///
/// Blockers nest. One that outlives what it blocks, or was made for nothing, does nothing. What is
/// blocked is lost, not put off; subscriptions stay. It takes effect at once, also while the event
/// is being delivered: the handlers behind a blocked subscription are called, and of a sender whose
/// event is blocked the running delivery goes on. Not copyable: a registration is one blocker's.
/// Threads: belongs to the thread of its object, or of the objects of its subscription.
class ZT_EXPORT ZTEventBlocker
{
public:
    /// @param blockSent  true blocks what the object sends, false what it receives
    ZTEventBlocker(ZTBase* object, bool blockSent);
    /// Blocks one event that the object sends, for everybody, also for those who subscribe later.
    /// @param event  a descriptor, or a member function: `ZTEventBlocker(&lamp, &Lamp::switched)`.
    ///               Null, a method, and an event that the class of the object does not have block
    ///               nothing; only a member function that is no event is told in the log.
    template <zt::detail::InvokablePointer Event>
    ZTEventBlocker(ZTBase* sender, Event event) : ZTEventBlocker(sender, EventGiven{event})
    {}
    template <class Sender, zt::detail::MemberFunction Event>
    ZTEventBlocker(Sender* sender, Event event)
        : ZTEventBlocker(sender, EventGiven{zt::detail::eventOf(sender, event)})
    {}
    /// Blocks that subscription, and not others that are equal to it.
    explicit ZTEventBlocker(const ZTSubscription& subscription);
    explicit ZTEventBlocker(const ZTScopedSubscription& subscription);
    ZTEventBlocker(const ZTEventBlocker&) = delete;
    /// Blocks what `other` blocks, in place of what it blocked before.
    ZTEventBlocker& operator=(const ZTEventBlocker& other);
    ~ZTEventBlocker();

private:
    friend class ZTEventBlockers;

    enum class Kind : unsigned char { Received, Event, Sent, Subscription };
    struct EventGiven {
        const ZTMetaInvokable* event;
    };
    ZTEventBlocker(ZTBase* sender, EventGiven given);

    void enter();
    void leave();

    /// Of the object, which may move meanwhile; null where there is nothing to block.
    ZTBasePrivate* record = nullptr;
    Kind kind;
    /// Of a blocked event: its class-wide index.
    int eventIndex = -1;
    /// Of a blocked subscription.
    std::weak_ptr<ZTSubscriptionPrivate> subscribed;
    // In the ring of the object's blockers.
    ZTEventBlocker* next = nullptr;
    ZTEventBlocker* previous = nullptr;
};
