#pragma once

#include <zintar/detail/declaredevent.h>
#include <zintar/detail/lifewatch.h>

#include <memory>
#include <tuple>
#include <type_traits>
#include <utility>

/// @file
/// How an event is raised with typed values.

namespace zt::detail
{
/// One declared event, with its index and the way to send it from typed values.
template <auto Event, class... P>
struct TypedEvent<Event, Parameters<P...>> {
    static_assert(sizeof...(P) <= maxParamCount,
                  "An event carries at most ZTMetaInvokable::MaxParamCount parameters.");

    static const DeclaredEvent& declared()
    {
        using Class = typename MemberTraits<decltype(Event)>::Class;
        static const DeclaredEvent found(Class::typeMetaClass(),
                                         indexOfMember<Class>(memberKey<Event>()));
        return found;
    }

    /// @tparam Sender  `ZTBase`, which may be incomplete here
    template <class Sender, class... Arguments>
    static void send(const Sender& sender, Arguments&&... arguments)
    {
        static_assert(sizeof...(Arguments) == sizeof...(P),
                      "sendEvent takes the parameters of the event, no more and no fewer.");
        if constexpr (sizeof...(Arguments) == sizeof...(P)) {
            constexpr bool fits = (std::is_convertible_v<Arguments, Held<P>> && ...);
            static_assert(fits, "sendEvent takes what converts to the parameters of the event.");
            if constexpr (fits) {
                const DeclaredEvent& event = declared();
                if constexpr (areTrivial<std::decay_t<Arguments>...>)
                    withCopies([&](void** values) { sender.sendValues(event, values); },
                               std::forward<Arguments>(arguments)...);
                else if (ZTEventSlot* slot = sender.heardSlot(event.index)) [[unlikely]]
                    deliver(sender, *slot, event, std::forward<Arguments>(arguments)...);
            }
        }
    }

private:
    /// Whether nothing is saved by asking first whether anybody hears the event.
    template <class... Arguments>
    static constexpr bool areTrivial = ((std::is_trivially_copyable_v<Held<P>> &&
                                         sizeof(Held<P>) <= 2 * sizeof(void*) &&
                                         isPlainCopy<Held<P>, Arguments>)&&...);

    // Out of line, so that a send that nobody hears is short.
    template <class Sender, class... Arguments>
    [[gnu::noinline]] static void deliver(const Sender& sender, ZTEventSlot& slot,
                                          const DeclaredEvent& event, Arguments&&... arguments)
    {
        if constexpr ((isPlainCopy<Held<P>, std::decay_t<Arguments>> && ...)) {
            withCopies([&](void** values) { sender.sendValues(slot, event, values); },
                       std::forward<Arguments>(arguments)...);
        } else {
            ZTLifeWatch watch(&sender);
            withCopies([&](void** values) { EventRaiser::raise(watch, event, values); },
                       std::forward<Arguments>(arguments)...);
        }
    }

    /// Copies, since a handler may change what the arguments refer to.
    template <class Send, class... Arguments>
    static void withCopies(const Send& send, Arguments&&... arguments)
    {
        std::tuple<Held<P>...> values(hold<P>(std::forward<Arguments>(arguments))...);
        std::apply(
            [&](auto&... value) {
                void* addresses[sizeof...(P) > 0 ? sizeof...(P) : 1] = {std::addressof(value)...};
                send(addresses);
            },
            values);
    }

    template <class Parameter, class Argument>
    static Held<Parameter> hold(Argument&& argument)
    {
        if constexpr (std::is_pointer_v<std::decay_t<Argument>> &&
                      std::is_same_v<Held<Parameter>, std::string>) {
            const char* text = argument;
            return text ? text : "";
        } else {
            return static_cast<Held<Parameter>>(std::forward<Argument>(argument));
        }
    }
};
} // namespace zt::detail
