#pragma once

#include <zintar/detail/handlers.h>
#include <zintar/detail/signature.h>
#include <zintar/metaclass.h>

#include <concepts>
#include <cstddef>
#include <tuple>
#include <type_traits>
#include <utility>

/// @file
/// From what a host wrote in a subscribe to the handler, with the mistakes that the compiler can
/// see.

namespace zt::detail
{
template <class F>
concept TakesArgumentArray = PlainCallable<F> &&
    std::is_same_v<typename CallableTraits<F>::Params, Parameters<const ZTArgumentArray&>>;

template <class F>
concept MemberFunction = std::is_member_function_pointer_v<F>;

template <class F>
inline constexpr bool isMemberPointer = std::is_member_function_pointer_v<F>;

template <class F>
inline constexpr bool isInvokablePointer =
    std::is_pointer_v<F>&& std::is_convertible_v<F, const ZTMetaInvokable*>;

template <class F>
concept InvokablePointer = isInvokablePointer<F>;

template <class F>
inline constexpr bool isInvokableOrNull = isInvokablePointer<F> || std::is_null_pointer_v<F>;

/// Stands for the parameters of an event that is known at run time only.
struct UnknownParameters {};

// The parameters that a handler takes. A callable with one call operator tells them. Where the
// operator is a template or overloaded, they are the leading ones of the event's, as many as it can
// take. They are taken exactly: what only converts would lose part of a value unnoticed. A pointer
// to an object loses nothing where a base class or a const object is taken.

/// Whether what an event carries as a `Given` may be handed to a parameter of type `Taken`.
template <class Taken, class Given>
constexpr bool isTakenAs()
{
    if constexpr (std::is_same_v<Held<Taken>, Held<Given>>)
        return true;
    else if constexpr (isObjectPointer<Held<Taken>> && isObjectPointer<Held<Given>>)
        return std::is_convertible_v<Held<Given>, Held<Taken>>;
    else
        return false;
}

template <class... Taken, class... Given, std::size_t... I>
constexpr bool areTakenAs(Parameters<Taken...>, Parameters<Given...>, std::index_sequence<I...>)
{
    return (isTakenAs<Taken, std::tuple_element_t<I, std::tuple<Given...>>>() && ...);
}

/// Whether a handler with the first list of parameters takes the leading ones of the second.
template <class... Taken, class... Given>
constexpr bool takesLeading(Parameters<Taken...> taken, Parameters<Given...> given)
{
    if constexpr (sizeof...(Taken) > sizeof...(Given))
        return false;
    else
        return areTakenAs(taken, given, std::index_sequence_for<Taken...>());
}

template <class... Taken, class... Given, std::size_t... I>
auto carriedFor(Parameters<Taken...>, Parameters<Given...>, std::index_sequence<I...>)
    -> Parameters<std::conditional_t<
        std::is_same_v<Held<Taken>, Held<std::tuple_element_t<I, std::tuple<Given...>>>>, Taken,
        std::tuple_element_t<I, std::tuple<Given...>>>...>;

/// The parameters of a handler as what the event carries for them.
template <class Taken, class EventParams>
struct CarriedParameters {
    using type = Taken;
};
template <class... Taken, class... Given>
    requires(!Parameters<Taken...>::lead(Parameters<Given...>{}))
struct CarriedParameters<Parameters<Taken...>, Parameters<Given...>> {
    using type = decltype(carriedFor(Parameters<Taken...>{}, Parameters<Given...>{},
                                     std::index_sequence_for<Taken...>()));
};

/// Stands for a value that is carried as a `T`, and for nothing that a `T` converts to.
template <class T>
struct Exactly {
    template <class U>
        requires std::same_as<Held<U>, T>
    operator U&() const;
};

/// The same, and for pointers to what the object is besides.
template <class T>
struct Upward {
    template <class U>
        requires(isTakenAs<U, T>())
    operator U&() const;
};

/// Whether the call operator is a template for parameters of these types, which converts nothing.
template <class F, class... Taken>
concept IsTemplateFor = requires
{
    &F::template operator()<Held<Taken>...>;
};

template <class F, class... Taken>
constexpr bool takesExactly(Parameters<Taken...>)
{
    if constexpr (!std::is_invocable_v<F&, const Held<Taken>&...>)
        return false;
    else if constexpr (IsTemplateFor<F, Taken...>)
        return true;
    else
        return std::is_invocable_v<F&, Exactly<Held<Taken>>...> ||
               std::is_invocable_v<F&, Upward<Held<Taken>>...>;
}

template <class F, class Taken, class Rest>
struct LeadingParameters;
template <class F, class... Taken>
struct LeadingParameters<F, Parameters<Taken...>, Parameters<>> {
    using type =
        std::conditional_t<takesExactly<F>(Parameters<Taken...>{}), Parameters<Taken...>, void>;
};
template <class F, class... Taken, class Next, class... Rest>
struct LeadingParameters<F, Parameters<Taken...>, Parameters<Next, Rest...>> {
    using Longer =
        typename LeadingParameters<F, Parameters<Taken..., Next>, Parameters<Rest...>>::type;
    using type =
        std::conditional_t<!std::is_void_v<Longer>, Longer,
                           typename LeadingParameters<F, Parameters<Taken...>, Parameters<>>::type>;
};

template <class F>
struct LeadingParameters<F, Parameters<>, UnknownParameters> {
    using type = void;
};

/// What `std::ref` gives.
template <class F>
concept CallableReference = requires(const F& reference)
{
    typename F::type;
    requires std::same_as<decltype(reference.get()), typename F::type&>;
};

/// The parameters of a handler; `void` where they cannot be told.
template <class F, class EventParams>
struct HandlerParameters {
    using type = typename LeadingParameters<F, Parameters<>, EventParams>::type;
};
template <class F, class EventParams>
    requires isMemberPointer<F>
struct HandlerParameters<F, EventParams> {
    using type = typename MemberTraits<F>::Params;
};
template <class F, class EventParams>
    requires PlainCallable<F>
struct HandlerParameters<F, EventParams> {
    using type = typename CallableTraits<F>::Params;
};
template <class F, class EventParams>
    requires(CallableReference<F> && !PlainCallable<F>)
struct HandlerParameters<F, EventParams>
    : HandlerParameters<std::decay_t<typename F::type>, EventParams> {};

template <class F, class EventParams>
using CarriedFor =
    typename CarriedParameters<typename HandlerParameters<F, EventParams>::type, EventParams>::type;

/// What can be wrong with a subscription.
enum class SubscribeFault {
    None,
    Sender,
    Event,
    EventKind,
    EventClass,
    NullReceiver,
    Receiver,
    NoReceiver,
    NullHandler,
    HandlerKind,
    HandlerClass,
    ConstReceiver,
    References,
    Generic,
    NotLeading,
    Callable
};

template <class Sender, class Event>
constexpr SubscribeFault faultOfEvent()
{
    if constexpr (!std::is_pointer_v<Sender>)
        return SubscribeFault::Sender;
    else if constexpr (!std::is_base_of_v<ZTBase, std::remove_pointer_t<Sender>>)
        return SubscribeFault::Sender;
    else if constexpr (isInvokablePointer<Event>)
        return SubscribeFault::None;
    else if constexpr (!isMemberPointer<Event>)
        return SubscribeFault::Event;
    else if constexpr (!HasTraits<Event>)
        return SubscribeFault::EventKind;
    else
        return std::is_base_of_v<typename MemberTraits<Event>::Class, std::remove_pointer_t<Sender>>
                   ? SubscribeFault::None
                   : SubscribeFault::EventClass;
}

/// The parameters of an event, as far as they are known while compiling.
template <class Event>
struct EventParameters {
    using type = UnknownParameters;
};
template <class Event>
    requires(isMemberPointer<Event>&& HasTraits<Event>)
struct EventParameters<Event> {
    using type = typename MemberTraits<Event>::Params;
};
template <class Event>
using EventParams = typename EventParameters<Event>::type;

template <class F, class EventParams>
constexpr SubscribeFault faultOfHandlerParameters()
{
    using Params = typename HandlerParameters<F, EventParams>::type;
    constexpr bool isKnown = !std::is_same_v<EventParams, UnknownParameters>;
    if constexpr (TakesArgumentArray<F>)
        return SubscribeFault::None;
    else if constexpr (std::is_void_v<Params>)
        return isKnown ? SubscribeFault::NotLeading : SubscribeFault::Generic;
    else if constexpr (!Params::plain)
        return SubscribeFault::References;
    else if constexpr (isKnown)
        return takesLeading(Params{}, EventParams{}) ? SubscribeFault::None
                                                     : SubscribeFault::NotLeading;
    else
        return SubscribeFault::None;
}

template <class Receiver, class F>
constexpr SubscribeFault faultOfMemberHandler()
{
    if constexpr (!isMemberPointer<F>) {
        return SubscribeFault::None;
    } else if constexpr (!HasTraits<F>) {
        return SubscribeFault::HandlerKind;
    } else {
        using Traits = MemberTraits<F>;
        if constexpr (!std::is_base_of_v<typename Traits::Class, Receiver>)
            return SubscribeFault::HandlerClass;
        else
            return std::is_const_v<Receiver> && !Traits::isConst ? SubscribeFault::ConstReceiver
                                                                 : SubscribeFault::None;
    }
}

/// Whether `F` can be called at all; with what, is told by another sentence.
template <class F>
inline constexpr bool isCallable = std::is_class_v<F> || PlainCallable<F>;

/// @tparam Receiver  the class of the receiver
template <class Receiver, class Event, class F>
constexpr SubscribeFault faultOfHandler()
{
    if constexpr (std::is_null_pointer_v<F>)
        return SubscribeFault::NullHandler;
    else if constexpr (isInvokablePointer<F>)
        return SubscribeFault::None;
    else if constexpr (faultOfMemberHandler<Receiver, F>() != SubscribeFault::None)
        return faultOfMemberHandler<Receiver, F>();
    else if constexpr (!isMemberPointer<F> && !isCallable<F>)
        return SubscribeFault::HandlerKind;
    else
        return faultOfHandlerParameters<F, EventParams<Event>>();
}

/// What is wrong with a subscription that has a receiver.
template <class Sender, class Event, class Receiver, class F>
constexpr SubscribeFault faultOfSubscription()
{
    if constexpr (faultOfEvent<Sender, Event>() != SubscribeFault::None)
        return faultOfEvent<Sender, Event>();
    else if constexpr (std::is_null_pointer_v<Receiver>)
        return SubscribeFault::NullReceiver;
    else if constexpr (!std::is_pointer_v<Receiver>)
        return SubscribeFault::Receiver;
    else if constexpr (!std::is_base_of_v<ZTBase, std::remove_pointer_t<Receiver>>)
        return SubscribeFault::Receiver;
    else
        return faultOfHandler<std::remove_pointer_t<Receiver>, Event, F>();
}

/// What is wrong with one that has none.
template <class Sender, class Event, class F>
constexpr SubscribeFault faultOfFreeSubscription()
{
    if constexpr (faultOfEvent<Sender, Event>() != SubscribeFault::None)
        return faultOfEvent<Sender, Event>();
    else if constexpr (isMemberPointer<F> || isInvokablePointer<F>)
        return SubscribeFault::NoReceiver;
    else
        return faultOfHandler<ZTBase, Event, F>();
}

template <class Sender, class Event, class Receiver, class F>
constexpr SubscribeFault faultOfUnsubscription()
{
    constexpr bool isAnyEvent = std::is_null_pointer_v<Event>;
    if constexpr (faultOfEvent<Sender, Event>() == SubscribeFault::Sender)
        return SubscribeFault::Sender;
    else if constexpr (!isAnyEvent && faultOfEvent<Sender, Event>() != SubscribeFault::None)
        return faultOfEvent<Sender, Event>();
    else if constexpr (!std::is_convertible_v<Receiver, const ZTBase*>)
        return SubscribeFault::Receiver;
    else if constexpr (std::is_null_pointer_v<F> || isInvokablePointer<F>)
        return SubscribeFault::None;
    else if constexpr (!isMemberPointer<F> && !std::is_pointer_v<F>)
        return SubscribeFault::Callable;
    else
        return std::is_null_pointer_v<Receiver> ? SubscribeFault::NullReceiver
                                                : SubscribeFault::None;
}

/// Tells what is wrong with a subscription, in one sentence.
template <SubscribeFault fault>
constexpr void tell()
{
    static_assert(fault != SubscribeFault::Sender, "The sender is a pointer to an object.");
    static_assert(fault != SubscribeFault::Event,
                  "An event is given as a member function or as a descriptor.");
    static_assert(fault != SubscribeFault::EventKind,
                  "An event is a member function that is not volatile, variadic or qualified with "
                  "& or &&.");
    static_assert(fault != SubscribeFault::EventClass,
                  "The event is a member function of another class than the sender's.");
    static_assert(fault != SubscribeFault::NullReceiver,
                  "The receiver is nullptr: leave it out for a handler that has none, and end that "
                  "through its ZTSubscription.");
    static_assert(fault != SubscribeFault::Receiver, "The receiver is a pointer to an object.");
    static_assert(fault != SubscribeFault::NoReceiver,
                  "A member of a class as the handler needs the object to call it on: "
                  "subscribe(sender, event, receiver, handler).");
    static_assert(fault != SubscribeFault::NullHandler,
                  "The handler is nullptr: there is nothing to call.");
    static_assert(fault != SubscribeFault::HandlerKind,
                  "A handler is a function, a callable, or a member function that is not volatile, "
                  "variadic or qualified with & or &&.");
    static_assert(fault != SubscribeFault::HandlerClass,
                  "The handler is a member function of another class than the receiver's.");
    static_assert(fault != SubscribeFault::ConstReceiver,
                  "The receiver is const, and the handler is a member function that is not.");
    static_assert(fault != SubscribeFault::References,
                  "The parameters of a handler are values or references to const.");
    static_assert(fault != SubscribeFault::Generic,
                  "The parameters of a generic callable cannot be known for an event that is given "
                  "by its descriptor: write them out.");
    static_assert(fault != SubscribeFault::NotLeading,
                  "A handler takes the leading parameters of the event, of the same types.");
    static_assert(fault != SubscribeFault::Callable,
                  "A callable cannot be found by its value: keep the ZTSubscription and end it "
                  "through that.");
}

/// Makes the handler for what a host wrote. None for a null pointer and an empty `std::function`.
template <class Receiver, class EventParams, class F>
Handler makeHandler(F handler)
{
    if (isNullCallable(handler))
        return {};
    if constexpr (TakesArgumentArray<F>)
        return CallableHandler<F, ZTArgumentArray>::make(std::move(handler));
    else if constexpr (isMemberPointer<F>)
        return MemberHandler<Receiver, F, CarriedFor<F, EventParams>>::make(handler);
    else
        return CallableHandler<F, CarriedFor<F, EventParams>>::make(std::move(handler));
}
} // namespace zt::detail
