#pragma once

#include <zintar/export.h>
#include <zintar/fwd.h>

#include <memory>
#include <utility>

/// A handle on one subscription. It owns nothing: dropping it ends nothing, and it reads false
/// once the subscription has ended by any path. End the subscription with `ZTBase::unsubscribe`.
///
/// Two handles are equal when they name the same subscription, or two subscriptions of the same
/// invokable by the same subscriber to the same event, or when neither names a living one.
/// Threads: a handle may be copied, compared, tested and dropped on any thread, also while the
/// subscription ends on the thread of its objects, where its handler is destroyed.
class ZT_EXPORT ZTSubscription
{
public:
    ZTSubscription() noexcept = default;

    [[nodiscard]] explicit operator bool() const noexcept;
    [[nodiscard]] bool operator==(const ZTSubscription& other) const noexcept;

protected:
    explicit ZTSubscription(std::weak_ptr<ZTSubscriptionPrivate> record) noexcept
        : m_record(std::move(record))
    {}

private:
    friend struct ZTBase;
    friend struct ZTEventEnds;
    friend class ZTEventBlocker;
    friend class ZTScopedSubscription;

    std::weak_ptr<ZTSubscriptionPrivate> m_record;
};

/// Ends its subscription, and that one alone, when it goes. It is what subscribing a callable with
/// captures and without a receiver gives: nothing else bounds the life of what the callable
/// captured. Not copyable, since one of two copies would end the subscription under the other.
class ZT_EXPORT [[nodiscard("keep it: the subscription ends with it")]] ZTScopedSubscription
{
public:
    ZTScopedSubscription() noexcept = default;
    explicit ZTScopedSubscription(ZTSubscription subscription) noexcept
        : m_subscription(std::move(subscription))
    {}
    ZTScopedSubscription(ZTScopedSubscription && other) noexcept : m_subscription(other.release())
    {}
    ZTScopedSubscription& operator=(ZTScopedSubscription&& other) noexcept;
    ~ZTScopedSubscription();

    [[nodiscard]] explicit operator bool() const noexcept { return bool(m_subscription); }
    /// Ends the subscription now, and no other one, whatever its handler is.
    void reset() noexcept;
    /// Lets the subscription live on; the caller sees to its end.
    ZTSubscription release() noexcept { return std::exchange(m_subscription, {}); }

private:
    friend class ZTEventBlocker;

    ZTSubscription m_subscription;
};
