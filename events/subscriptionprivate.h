#pragma once

#include <zintar/subscription.h>

#include <cstddef>
#include <variant>

/// One subscription, or a pattern to search for some, in which null means any.
///
/// A record in a slot is shared between that slot alone and whoever locks a handle for a moment.
struct ZTSubscriptionPrivate {
    using Handler = std::variant<const ZTMetaInvokable*,     // not owned
                                 zt::detail::ZTHandlerBase*, // owned
                                 void*>; // a key to compare handlers with, in patterns only

    ZTSubscriptionPrivate() = default;
    ZTSubscriptionPrivate(const ZTSubscriptionPrivate&) = delete;
    ZTSubscriptionPrivate& operator=(const ZTSubscriptionPrivate&) = delete;
    ~ZTSubscriptionPrivate();

    [[nodiscard]] zt::detail::ZTHandlerBase* ownedHandler() const
    {
        auto* owned = std::get_if<zt::detail::ZTHandlerBase*>(&handler);
        return owned ? *owned : nullptr;
    }
    [[nodiscard]] bool hasSameHandler(const ZTSubscriptionPrivate& other) const;
    [[nodiscard]] bool matches(const ZTSubscriptionPrivate& pattern) const;

    ZTBasePrivate* sender = nullptr;
    ZTBasePrivate* subscriber = nullptr;
    const ZTMetaInvokable* event = nullptr;
    Handler handler;
    bool active = false;

    // Where the record stands: in the slot of its sender, and in the list of its subscriber.
    int eventIndex = -1;
    std::size_t position = 0;
    ZTSubscriptionPrivate* previous = nullptr;
    ZTSubscriptionPrivate* next = nullptr;
};
