#include <zintar/subscription.h>

#include "specialsubscription.h"

#include <memory>
#include <utility>

namespace
{
std::shared_ptr<ZTSubscriptionPrivate>
activeRecord(const std::weak_ptr<ZTSubscriptionPrivate>& handle)
{
    auto record = handle.lock();
    if (!record || !record->isActive())
        return nullptr;
    const ZTSpecialSubscription* special = specialOf(*record);
    return !special || special->isBound() ? record : nullptr;
}
} // namespace

ZTSubscription::operator bool() const noexcept { return activeRecord(m_record) != nullptr; }

bool ZTSubscription::operator==(const ZTSubscription& other) const noexcept
{
    // First: the subscription may end on its own thread between the two questions below.
    if (!m_record.owner_before(other.m_record) && !other.m_record.owner_before(m_record))
        return true;
    auto a = activeRecord(m_record);
    auto b = activeRecord(other.m_record);
    if (a == b)
        return true;
    return a && b && a->sender == b->sender && a->event == b->event &&
           a->subscriber == b->subscriber && a->hasSameInvokable(*b) &&
           a->kind != ZTSubscriptionPrivate::Kind::Queued &&
           b->kind != ZTSubscriptionPrivate::Kind::Queued;
}

ZTScopedSubscription& ZTScopedSubscription::operator=(ZTScopedSubscription&& other) noexcept
{
    // What goes last may own both of the two.
    ZTSubscription incoming = other.release();
    ZTScopedSubscription old(std::exchange(m_subscription, std::move(incoming)));
    return *this;
}

ZTScopedSubscription::~ZTScopedSubscription() { reset(); }
