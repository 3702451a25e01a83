#pragma once

#include <zintar/detail/makehandler.h>
#include <zintar/export.h>
#include <zintar/fwd.h>
#include <zintar/metaclass.h>
#include <zintar/variant.h>

#include <string>
#include <string_view>
#include <type_traits>

/// @file
/// From a member function of a host's class to the event that it is declared as.

namespace zt::detail
{
class ClassTable;
struct ClassAccess;

/// An event as it is raised with typed values.
struct DeclaredEvent {
    DeclaredEvent(const ZTMetaClass& declaringClass, int indexInClass)
        : index(indexInClass), descriptor(declaringClass.invokable(indexInClass))
    {}

    int index; ///< class-wide; -1 when the class does not list the event
    const ZTMetaInvokable* descriptor;
};

template <auto Event, class Params>
struct TypedEvent;

/// Tells one object class from another; see `declare.h`.
template <class C>
struct ObjectClassTag {};

/// The list of a declared class as this program or plugin sees it; see `declare.h`.
template <class C>
struct DeclaredHere;

/// The class-wide index of a member function that class `C` declares, or -1.
/// @param variable  holds the pointer to the member function
template <class C>
int indexOfMember(void* variable)
{
    int index = C::typeMetaClass().indexOfInvokable(variable);
    // A plugin may have a copy of an inline member at an address of its own.
    if constexpr (requires { typename C::ZtSuper; })
        if (index < 0)
            index = DeclaredHere<C>::indexOf(variable);
    return index;
}

/// Raises an event of an object for a function of its class.
struct ZT_EXPORT EventRaiser {
    static void raise(const ZTBase& sender, int index, const ZTArgumentArray& arguments);
    /// Raises it with typed values, if the sender is still there and somebody still listens.
    static void raise(const ZTLifeWatch& sender, const DeclaredEvent& event, void** values);
};

/// Whether a value for an event is made of an argument without code of the host.
template <class Value, class Argument>
inline constexpr bool isPlainCopy = std::is_same_v<Value, Argument>
                                        ? std::is_trivially_copyable_v<Value> ||
                                              std::is_same_v<Value, std::string>
                                        : (std::is_scalar_v<Value>&& std::is_scalar_v<Argument>) ||
                                              (std::is_same_v<Value, std::string> &&
                                               (std::is_pointer_v<Argument> ||
                                                std::is_same_v<Argument, std::string_view>));

/// Logs that a member function that was to be subscribed to is no invokable of its class.
ZT_EXPORT void warnUnknownEvent(const ZTMetaClass& metaClass);

/// The descriptor of an event, which a host gives as such or as a member function; null for a
/// member function that its class does not list.
template <class Event>
const ZTMetaInvokable* findEvent(Event event)
{
    if constexpr (isMemberPointer<Event>) {
        using Class = typename MemberTraits<Event>::Class;
        int index = indexOfMember<Class>(&event);
        return index < 0 ? nullptr : Class::typeMetaClass().invokable(index);
    } else {
        return event;
    }
}

/// The same for subscribing, where a member function that is no event is told.
template <class Sender, class Event>
const ZTMetaInvokable* eventOf(Sender*, Event event)
{
    constexpr SubscribeFault fault = faultOfEvent<Sender*, Event>();
    tell<fault>();
    if constexpr (fault != SubscribeFault::None) {
        return nullptr;
    } else {
        const ZTMetaInvokable* descriptor = findEvent(event);
        if constexpr (isMemberPointer<Event>)
            if (!descriptor)
                warnUnknownEvent(MemberTraits<Event>::Class::typeMetaClass());
        return descriptor;
    }
}
} // namespace zt::detail
