#pragma once

#include <zintar/export.h>
#include <zintar/fwd.h>
#include <zintar/metatype.h>

#include <memory>
#include <string_view>
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
    friend struct ZTBasePrivate;
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
    ZTSubscription m_subscription;
};

namespace zt::detail
{
struct HandlerDescription;

/// What a subscription calls, when it is not an invokable of a class. The library owns a handler
/// from the moment it is given one, checks its parameters against the event once, and calls it.
struct ZT_EXPORT ZTHandlerBase {
    virtual ~ZTHandlerBase();
    /// Names the handler in messages.
    [[nodiscard]] virtual std::string_view typeName() const = 0;
    [[nodiscard]] virtual unsigned int parameterCount() const = 0;
    [[nodiscard]] virtual const ZTMetaType& parameterMetaType(unsigned int index) const = 0;
    /// True when it can only be called on a subscriber.
    [[nodiscard]] virtual bool isMemberFunction() const = 0;
    /// @param subscriber  null unless `isMemberFunction()` is true
    /// @param result      null in every call of the library
    /// @param arguments   ten addresses, of which the first `parameterCount()` are those of the
    ///                    event's values; one is null where the sender gave no fitting value. A
    ///                    parameter of type `ZTVariant` gets the address of the variant itself.
    /// The handler is deleted when its subscription ends, also while this runs.
    virtual void invoke(const ZTBase* subscriber, void* result, void** arguments) = 0;
    [[nodiscard]] virtual bool isComparable() const = 0;
    /// Whether the handler wraps what `key` denotes; asked only when it is comparable.
    [[nodiscard]] virtual bool equals(void* key) const = 0;

    /// What the library knows of a handler that its own templates made; otherwise null.
    const HandlerDescription* description = nullptr;

private:
    friend class ::ZTLetGo;

    /// Among the handlers whose subscriptions one operation has ended.
    ZTHandlerBase* m_nextEnded = nullptr;
};
} // namespace zt::detail
