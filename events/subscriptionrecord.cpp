#include "subscriptionrecord.h"

// With the block that it shares with its handles it fills what malloc gives for 104 bytes. A
// program has many of them; a member more would cost each of them 16.
static_assert(sizeof(ZTSubscriptionPrivate) <= 88);

bool ZTSubscriptionPattern::means(const ZTSubscriptionPrivate& record) const
{
    if (record.kind == ZTSubscriptionPrivate::Kind::Queued || (sender && sender != record.sender) ||
        (subscriber && subscriber != record.subscriber) || (event && event != record.event))
        return false;
    return meansHandler(record.handler);
}

bool ZTSubscriptionPattern::meansHandler(const zt::detail::Handler& handler) const
{
    if (invokable)
        return isInvokable(handler) && &invokableOf(handler) == invokable;
    return !key || zt::detail::HandlerView{handler}.equals(*key);
}
