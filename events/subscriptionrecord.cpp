#include "subscriptionrecord.h"

#include <zintar/detail/handlerbase.h>

bool ZTSubscriptionPrivate::hasSameHandler(const ZTSubscriptionPrivate& other) const
{
    return handler == other.handler;
}

namespace
{
bool isNull(const ZTSubscriptionPrivate::Handler& handler)
{
    return std::visit([](auto* pointer) { return pointer == nullptr; }, handler);
}

bool fits(const ZTSubscriptionPrivate& subscription, const ZTSubscriptionPrivate& pattern)
{
    if (isNull(pattern.handler))
        return true;
    if (void* const* key = std::get_if<void*>(&pattern.handler)) {
        const zt::detail::ZTHandlerBase* handler = subscription.ownedHandler();
        return handler && handler->isComparable() && handler->equals(*key);
    }
    return subscription.hasSameHandler(pattern);
}
} // namespace

bool ZTSubscriptionPrivate::matches(const ZTSubscriptionPrivate& pattern) const
{
    if (this == &pattern)
        return true;
    return (!pattern.sender || pattern.sender == sender) &&
           (!pattern.subscriber || pattern.subscriber == subscriber) &&
           (!pattern.event || pattern.event == event) && fits(*this, pattern);
}
