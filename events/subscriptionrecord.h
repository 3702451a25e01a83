#pragma once

#include "handlers.h"

#include <zintar/fwd.h>

#include <atomic>
#include <cstdint>
#include <memory>

/// One subscription.
///
/// 1. A record owns itself as long as it stands in a slot. A handle that somebody looks at shares
///    it for that moment, on any thread; so the end of a record runs no code of the host. What runs
///    such code is the end of its handler, which is taken out when the subscription ends.
/// 2. What a handle on another thread reads, `active` apart, does not change from the moment on
///    when there is a handle.
struct ZTSubscriptionPrivate {
    /// A special one has options, a queued one goes through a queue besides.
    enum class Kind : unsigned char { Plain, Special, Queued };

    ZTSubscriptionPrivate() : ZTSubscriptionPrivate(Kind::Plain) {}
    ZTSubscriptionPrivate(const ZTSubscriptionPrivate&) = delete;
    ZTSubscriptionPrivate& operator=(const ZTSubscriptionPrivate&) = delete;

    [[nodiscard]] bool isActive() const noexcept { return active.load(std::memory_order_acquire); }
    /// Whether it is one of the same invokable. What is not an invokable is one subscription's.
    [[nodiscard]] bool hasSameInvokable(const ZTSubscriptionPrivate& other) const
    {
        return isInvokable(handler) && isInvokable(other.handler) &&
               handler.word == other.handler.word;
    }

    /// While it stands in a slot.
    std::shared_ptr<ZTSubscriptionPrivate> self;
    ZTBasePrivate* sender = nullptr;
    ZTBasePrivate* subscriber = nullptr;
    const ZTMetaInvokable* event = nullptr;
    zt::detail::Handler handler;
    int eventIndex = -1;
    /// Where it stands in the slot of its sender.
    std::uint32_t position = 0;
    // In the list of its subscriber.
    ZTSubscriptionPrivate* previous = nullptr;
    ZTSubscriptionPrivate* next = nullptr;
    /// From the subscribing to the end of the subscription.
    std::atomic<bool> active = false;
    /// Whether the handler takes the values of the event that the sender's class has at that index,
    /// as the slot has found out last.
    bool takesEvent = true;
    /// Whether it takes them, and nothing blocks the subscription.
    bool isCalled = true;
    const Kind kind;
    /// How many blockers the subscription has by itself.
    std::uint32_t blockers = 0;

protected:
    explicit ZTSubscriptionPrivate(Kind kindOfRecord) : kind(kindOfRecord) {}
};

/// What to search subscriptions for: null means any. Those through queues are not meant.
struct ZTSubscriptionPattern {
    /// Whether a subscription, which is in a slot, is one of those that are meant.
    [[nodiscard]] bool means(const ZTSubscriptionPrivate& record) const;
    [[nodiscard]] bool meansHandler(const zt::detail::Handler& handler) const;
    /// Whether only a handler that can be found by its value can be meant.
    [[nodiscard]] bool hasHandler() const { return invokable || key; }
    /// The word of that handler, if it has one that tells it from others.
    [[nodiscard]] std::uintptr_t wordOfHandler() const
    {
        return invokable ? reinterpret_cast<std::uintptr_t>(invokable) : key->word;
    }

    ZTBasePrivate* sender = nullptr;
    ZTBasePrivate* subscriber = nullptr;
    const ZTMetaInvokable* event = nullptr;
    int eventIndex = -1;
    const ZTMetaInvokable* invokable = nullptr;
    const zt::detail::HandlerKey* key = nullptr;
};
