#include "subscriptionprivate.h"

#include <zintar/base.h>

namespace zt::detail
{
ZTHandlerBase::~ZTHandlerBase() = default;

void DescribedHandler::end()
{
    if (m_running > 0)
        m_ended = true;
    else
        delete this;
}

std::string_view DescribedHandler::typeName() const { return description->name; }

unsigned int DescribedHandler::parameterCount() const { return description->parameterCount; }

const ZTMetaType& DescribedHandler::parameterMetaType(unsigned int index) const
{
    return description->types[index]();
}

bool ArrayHandler::isMemberFunction() const { return false; }

bool ArrayHandler::isComparable() const { return false; }

bool ArrayHandler::equals(void*) const { return false; }

/// The dispatch hands such a handler the array instead.
void ArrayHandler::invoke(const ZTBase*, void*, void**) {}
} // namespace zt::detail

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

namespace
{
std::shared_ptr<ZTSubscriptionPrivate>
activeRecord(const std::weak_ptr<ZTSubscriptionPrivate>& handle)
{
    auto record = handle.lock();
    return record && record->isActive() ? record : nullptr;
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
           a->subscriber == b->subscriber && a->hasSameHandler(*b);
}

ZTScopedSubscription& ZTScopedSubscription::operator=(ZTScopedSubscription&& other) noexcept
{
    // What goes last may own both of the two.
    ZTSubscription incoming = other.release();
    ZTScopedSubscription old(std::exchange(m_subscription, std::move(incoming)));
    return *this;
}

ZTScopedSubscription::~ZTScopedSubscription() { reset(); }
