#include "subscriptionrecord.h"

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
