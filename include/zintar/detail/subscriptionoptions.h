#pragma once

#include <zintar/detail/makehandler.h>
#include <zintar/export.h>
#include <zintar/fwd.h>
#include <zintar/subscription.h>

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <type_traits>
#include <utility>

/// @file
/// What the options behind a handler make of a subscription; the options themselves are in
/// `subscribeoptions.h`.

namespace zt::detail
{
/// Every option derives from this, and adds itself to the options of a subscription:
/// `addTo<EventParams>(options)`. What it needs of the rest of the call, it tells here.
struct SubscribeOption {
    static constexpr bool needsQueue = false;
    static constexpr bool needsComparableHandler = false;
    static constexpr bool isCondition = false;
    static constexpr bool boundsLife = false;
    template <class EventParams>
    static constexpr bool hasWrongParameters()
    {
        return false;
    }
};
template <class F>
concept IsSubscribeOption = std::is_base_of_v<SubscribeOption, F>;

/// Decides over the values of an event, on the thread of its sender. Has parameters as a handler
/// has, and may end while it runs, as one may.
struct ZT_EXPORT Condition : KeptHandler {
    Condition(const TypeGetter* parameterTypes, unsigned int count, bool wantsArray) noexcept
        : types(parameterTypes), m_count(count), takesArray(wantsArray)
    {}
    ~Condition() override;

    /// @param values  what `HandlerKind::call` gets
    [[nodiscard]] virtual bool holds(const void* values) = 0;
    [[nodiscard]] unsigned int parameterCount() const { return m_count; }
    [[nodiscard]] const ZTMetaType& parameterMetaType(unsigned int index) const
    {
        return types[index]();
    }

    const TypeGetter* const types;

private:
    const unsigned int m_count;

public:
    const bool takesArray;
};

template <class Callable, class Params>
struct ConditionOf final : Condition {
    static constexpr bool wantsArray = std::is_same_v<Params, ZTArgumentArray>;

    explicit ConditionOf(Callable condition)
        : Condition(typesTaken(), countTaken(), wantsArray), callable(std::move(condition))
    {}
    bool holds(const void* values) override
    {
        const Call running(*this);
        bool result = false;
        if constexpr (wantsArray)
            result = bool(callable(*static_cast<const ZTArgumentArray*>(values)));
        else
            callWithSome([&](const auto&... arguments) { result = bool(callable(arguments...)); },
                         static_cast<void* const*>(values), Params{},
                         std::make_index_sequence<Params::count>());
        return result;
    }
    static constexpr const TypeGetter* typesTaken()
    {
        if constexpr (wantsArray)
            return nullptr;
        else
            return Params::types;
    }
    static constexpr unsigned int countTaken()
    {
        if constexpr (wantsArray)
            return 0;
        else
            return Params::count;
    }

    Callable callable;
};

/// What a subscription needs beside sender and receiver: it ends when that is gone.
/// Threads: may be asked on several at the same time.
struct ZT_EXPORT LifeBound {
    virtual ~LifeBound();
    [[nodiscard]] virtual bool isThere() const noexcept = 0;
};

/// How a queue thins out the values of one subscription.
enum class Pace : unsigned char { All, Latest, Throttled, Debounced };

/// What a subscription is, beside its ends, its event and its handler.
struct SubscriptionOptions {
    ZTEventQueue* queue = nullptr;
    /// Finds a handler that is not an invokable; none where none can be equal.
    std::optional<HandlerKey> key;
    std::unique_ptr<Condition> condition;
    std::unique_ptr<LifeBound> bound;
    std::int64_t nanoseconds = 0; ///< of the pace
    Pace pace = Pace::All;
    bool isOnce = false;
    bool isUnique = false;
    /// Whether it needs a receiver, to be as long as that lives.
    bool needsReceiver = false;
};

/// Stands for the receiver of a subscription that has none.
struct NoReceiver {
    operator const ZTBase*() const { return nullptr; }
};

/// Tells a receiver and a handler from what else may stand in their places.
template <class Receiver, class Handler>
inline constexpr bool isReceiverAndHandler =
    !std::is_same_v<Receiver, ZTEventQueue> && !IsSubscribeOption<Handler>;

/// Whether a call with four arguments is not the one with descriptors alone, which is no template.
template <class Event, class Receiver, class Handler>
inline constexpr bool isSubscribeTemplate =
    isReceiverAndHandler<Receiver, Handler> &&
    !(isInvokableOrNull<Event> && isInvokableOrNull<Handler>);

/// What can be wrong with options.
template <class Handler, class EventParams, bool hasQueue, class... Options>
constexpr void tellOfOptions()
{
    static_assert(hasQueue || !(Options::needsQueue || ...),
                  "zt::latestOnly, zt::throttle and zt::debounce thin out what waits in a queue: "
                  "subscribe through one.");
    static_assert(!(Options::needsComparableHandler || ...) || isInvokablePointer<Handler> ||
                      isMemberPointer<Handler> ||
                      (std::is_pointer_v<Handler> && !TakesArgumentArray<Handler>),
                  "zt::unique needs a handler that can be found again: a member function, a "
                  "function or a descriptor.");
    static_assert((std::size_t{0} + ... + std::size_t{Options::isCondition}) <= 1,
                  "A subscription has one zt::when: join its conditions with &&.");
    static_assert(!(Options::template hasWrongParameters<EventParams>() || ...),
                  "A condition takes the leading parameters of the event, of the same types, or a "
                  "const ZTArgumentArray&, and answers what a bool is made of.");
}

/// Whether these are options of such a subscription; what is wrong is told in a sentence.
template <class Handler, class EventParams, bool hasQueue, class... Options>
constexpr bool areOptions()
{
    constexpr bool all = (IsSubscribeOption<Options> && ...);
    static_assert(all, "What follows the handler are options: zt::once, zt::unique, zt::when, "
                       "zt::boundTo, zt::latestOnly, zt::throttle, zt::debounce.");
    if constexpr (all)
        tellOfOptions<Handler, EventParams, hasQueue, Options...>();
    return all;
}

template <class F, class... Options>
constexpr bool needsScope()
{
    // A compiler may come here for another form of the call.
    if constexpr (std::is_same_v<F, ZTEventQueue> || !(IsSubscribeOption<Options> && ...))
        return false;
    else
        return std::is_class_v<F> && !std::is_empty_v<F> && !(Options::boundsLife || ...);
}

/// What subscribing a handler without a receiver gives: a callable with captures is safe only as
/// long as somebody sees to it, or what it is bound to lives.
template <class F, class... Options>
using FreeSubscription =
    std::conditional_t<needsScope<F, Options...>(), ZTScopedSubscription, ZTSubscription>;

/// A handler that is an invokable of the receiver's class; none for null.
[[nodiscard]] ZT_EXPORT Handler invokableHandler(const ZTMetaInvokable* invokable);
} // namespace zt::detail
