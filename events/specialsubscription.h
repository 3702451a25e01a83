#pragma once

#include "subscriptionrecord.h"

#include <zintar/detail/subscriptionoptions.h>

#include <memory>
#include <utility>

/// A subscription with options. What it is bound to is asked for before each call, and by handles;
/// nothing tells it.
struct ZTSpecialSubscription : ZTSubscriptionPrivate {
    explicit ZTSpecialSubscription(zt::detail::SubscriptionOptions& options,
                                   Kind kindOfRecord = Kind::Special)
        : ZTSubscriptionPrivate(kindOfRecord),
          bound(std::move(options.bound)),
          condition(options.condition.release()),
          isOnce(options.isOnce)
    {}

    [[nodiscard]] bool isBound() const noexcept { return !bound || bound->isThere(); }

    /// A condition that runs goes when it has returned.
    struct EndCondition {
        void operator()(zt::detail::Condition* ended) const { ended->end(); }
    };

    std::unique_ptr<zt::detail::LifeBound> bound;
    /// For the thread of the sender.
    std::unique_ptr<zt::detail::Condition, EndCondition> condition;
    const bool isOnce;
};

inline const ZTSpecialSubscription* specialOf(const ZTSubscriptionPrivate& record)
{
    return record.kind == ZTSubscriptionPrivate::Kind::Plain
               ? nullptr
               : static_cast<const ZTSpecialSubscription*>(&record);
}
inline ZTSpecialSubscription* specialOf(ZTSubscriptionPrivate& record)
{
    return const_cast<ZTSpecialSubscription*>(
        specialOf(static_cast<const ZTSubscriptionPrivate&>(record)));
}
