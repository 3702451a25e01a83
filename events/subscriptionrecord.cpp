#include "subscriptionrecord.h"

bool ZTSubscriptionPattern::means(const ZTSubscriptionPrivate& record) const
{
    if ((sender && sender != record.sender) || (subscriber && subscriber != record.subscriber) ||
        (event && event != record.event))
        return false;
    if (invokable)
        return isInvokable(record.handler) && &invokableOf(record.handler) == invokable;
    return !key || zt::detail::HandlerView{record.handler}.equals(*key);
}
