#pragma once

#include <zintar/detail/subscriptionoptions.h>
#include <zintar/reference.h>

#include <chrono>
#include <memory>
#include <tuple>
#include <type_traits>
#include <utility>

/// @file
/// Options of a subscription. They stand behind the handler, in any number and order:
///
///     ZTBase::subscribe(&sensor, &Sensor::measured, &heater, &Heater::warm, zt::once);
///     ZTBase::subscribe(&sensor, &Sensor::measured, &alarm, &Alarm::ring, zt::unique,
///                       zt::when([](double celsius) { return celsius > 40; }));
///
/// Where there are several, a subscription is looked at in this order: is what it is bound to still
/// there, does its condition hold, does it end now.

namespace zt
{
namespace detail
{
struct Once : SubscribeOption {
    template <class EventParams>
    static void addTo(SubscriptionOptions& options)
    {
        options.isOnce = true;
    }
};

struct Unique : SubscribeOption {
    static constexpr bool needsComparableHandler = true;
    template <class EventParams>
    static void addTo(SubscriptionOptions& options)
    {
        options.isUnique = true;
    }
};

template <class Callable>
struct When : SubscribeOption {
    static constexpr bool isCondition = true;

    explicit When(Callable condition) : callable(std::move(condition)) {}
    template <class EventParams>
    static constexpr bool hasWrongParameters()
    {
        if constexpr (!isCallable<Callable>)
            return true;
        else if constexpr (faultOfHandlerParameters<Callable, EventParams>() !=
                           SubscribeFault::None)
            return true;
        else
            return !answersBool(static_cast<Taken<EventParams>*>(nullptr));
    }
    template <class EventParams>
    void addTo(SubscriptionOptions& options)
    {
        if constexpr (!hasWrongParameters<EventParams>())
            options.condition =
                std::make_unique<ConditionOf<Callable, Taken<EventParams>>>(std::move(callable));
    }

    Callable callable;

private:
    template <class EventParams>
    using Taken = std::conditional_t<TakesArgumentArray<Callable>, ZTArgumentArray,
                                     typename HandlerParameters<Callable, EventParams>::type>;

    static constexpr bool answersBool(ZTArgumentArray*)
    {
        return std::is_constructible_v<bool,
                                       std::invoke_result_t<Callable&, const ZTArgumentArray&>>;
    }
    template <class... P>
    static constexpr bool answersBool(Parameters<P...>*)
    {
        return std::is_constructible_v<
            bool, std::invoke_result_t<Callable&,
                                       decltype(passAs<P>(std::declval<const Held<P>&>()))...>>;
    }
};

template <class T>
bool isStillThere(const ZTRef<T>& object) noexcept
{
    return bool(object);
}
template <class T>
bool isStillThere(const std::weak_ptr<T>& owner) noexcept
{
    return !owner.expired();
}

template <class... Lives>
struct LifeBoundOf final : LifeBound {
    explicit LifeBoundOf(std::tuple<Lives...> bounds) : lives(std::move(bounds)) {}
    [[nodiscard]] bool isThere() const noexcept override
    {
        return std::apply([](const auto&... life) { return (isStillThere(life) && ...); }, lives);
    }

    std::tuple<Lives...> lives;
};

template <class... Lives>
struct BoundTo : SubscribeOption {
    static constexpr bool boundsLife = true;

    explicit BoundTo(Lives... bounds) : lives(std::move(bounds)...) {}
    template <class EventParams>
    void addTo(SubscriptionOptions& options)
    {
        options.bound = std::make_unique<LifeBoundOf<Lives...>>(std::move(lives));
    }

    std::tuple<Lives...> lives;
};

template <class T>
ZTRef<T> lifeOf(T* object)
{
    static_assert(std::is_base_of_v<ZTBase, T>,
                  "zt::boundTo takes pointers to objects, and a std::weak_ptr or std::shared_ptr "
                  "to anything else.");
    return ZTRef<T>(object);
}
template <class T>
ZTRef<T> lifeOf(const ZTRef<T>& object)
{
    return object;
}
template <class T>
std::weak_ptr<T> lifeOf(const std::weak_ptr<T>& owner)
{
    return owner;
}
template <class T>
std::weak_ptr<T> lifeOf(const std::shared_ptr<T>& owner)
{
    return owner;
}

template <Pace pace>
struct Paced : SubscribeOption {
    static constexpr bool needsQueue = true;

    constexpr Paced() = default;
    constexpr explicit Paced(std::chrono::nanoseconds given) : time(given.count()) {}
    template <class EventParams>
    void addTo(SubscriptionOptions& options) const
    {
        options.pace = pace;
        options.nanoseconds = time;
    }

    std::int64_t time = 0;
};
} // namespace detail

/// The subscription ends before its handler runs for the first time. With a condition, that is the
/// first time when it holds.
inline constexpr detail::Once once;

/// Where the receiver already has a subscription of the same handler to the same event, direct or
/// through the same queue, no second one is made: the answer is a handle on that one, whatever its
/// options are.
inline constexpr detail::Unique unique;

/// Calls the handler only where `condition` answers true for the values of the event: it takes the
/// leading ones, of the event's own types, or all as a `const ZTArgumentArray&`.
///
/// It runs on the thread of the sender, also where the handler waits for its turn in a queue. A
/// condition may do what a handler may; what it throws passes to the sender.
template <class Callable>
[[nodiscard]] detail::When<Callable> when(Callable condition)
{
    return detail::When<Callable>(std::move(condition));
}

/// Ends the subscription when one of these is gone: pointers to objects, `ZTRef`s, `std::weak_ptr`s
/// and `std::shared_ptr`s to anything, which are held weakly. A callable with captures that is
/// bound so needs no receiver, and nobody to keep its handle.
///
/// From then on the handle reads false and nothing is called. The callable itself is destroyed when
/// the sender next raises the event, or has more subscriptions to it than ever, or dies.
template <class... Lives>
[[nodiscard]] auto boundTo(const Lives&... lives)
{
    return detail::BoundTo<decltype(detail::lifeOf(lives))...>(detail::lifeOf(lives)...);
}

/// Through a queue: at most one delivery waits. A further event gives that one its values, and
/// leaves it its place in the order.
inline constexpr detail::Paced<detail::Pace::Latest> latestOnly;

/// Through a queue: the same, and between two deliveries lies at least that time. The first event
/// comes at once, what comes too early waits, and the last one is never lost.
[[nodiscard]] constexpr auto throttle(std::chrono::nanoseconds interval)
{
    return detail::Paced<detail::Pace::Throttled>(interval);
}

/// Through a queue: delivers the last event when there has been none for that time.
[[nodiscard]] constexpr auto debounce(std::chrono::nanoseconds quiet)
{
    return detail::Paced<detail::Pace::Debounced>(quiet);
}
} // namespace zt
