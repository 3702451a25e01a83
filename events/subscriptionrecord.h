#pragma once

#include <zintar/detail/handlerbase.h>
#include <zintar/fwd.h>

#include <atomic>
#include <cstddef>
#include <variant>

/// One subscription, or a pattern to search for some, in which null means any.
///
/// 1. A record belongs to the slot in which it stands. A handle that somebody looks at shares it
///    for that moment, on any thread; so the end of a record runs no code of the host. What runs
///    such code is the end of its handler, which is taken out when the subscription ends.
/// 2. What a handle on another thread reads, `active` apart, does not change from the moment on
///    when there is a handle.
struct ZTSubscriptionPrivate {
    using Handler = std::variant<const ZTMetaInvokable*,     // not owned
                                 zt::detail::ZTHandlerBase*, // owned, until it is taken out
                                 void*>; // a key to compare handlers with, in patterns only

    ZTSubscriptionPrivate() = default;
    ZTSubscriptionPrivate(const ZTSubscriptionPrivate&) = delete;
    ZTSubscriptionPrivate& operator=(const ZTSubscriptionPrivate&) = delete;

    [[nodiscard]] zt::detail::ZTHandlerBase* ownedHandler() const
    {
        auto* owned = std::get_if<zt::detail::ZTHandlerBase*>(&handler);
        return owned ? *owned : nullptr;
    }
    [[nodiscard]] bool isActive() const noexcept { return active.load(std::memory_order_acquire); }
    [[nodiscard]] bool hasSameHandler(const ZTSubscriptionPrivate& other) const;
    /// Whether this subscription, which is in a slot, is one of those that the pattern means.
    [[nodiscard]] bool matches(const ZTSubscriptionPrivate& pattern) const;

    ZTBasePrivate* sender = nullptr;
    ZTBasePrivate* subscriber = nullptr;
    const ZTMetaInvokable* event = nullptr;
    Handler handler;
    /// From the subscribing to the end of the subscription.
    std::atomic<bool> active = false;

    /// Whether the handler takes the values of the event that the sender's class has at that index,
    /// as the slot has found out last.
    bool takesEvent = true;
    // Where the record stands: in the slot of its sender, and in the list of its subscriber.
    int eventIndex = -1;
    std::size_t position = 0;
    ZTSubscriptionPrivate* previous = nullptr;
    ZTSubscriptionPrivate* next = nullptr;
};
