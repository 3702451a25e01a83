#pragma once

#include <zintar/base.h>
#include <zintar/detail/constructors.h>
#include <zintar/detail/declare/declaredlist.h>
#include <zintar/dynamicbase.h>

#include <concepts>
#include <type_traits>
#include <utility>

/// @file
/// The mistakes that the compiler can see in the declaration of a class.

namespace zt::detail
{
template <class C>
inline constexpr auto eventsOf = declaredList<C>.events();

/// Whether the class or one of its super classes lists the event.
template <class C>
constexpr bool listsEvent(const MemberIdentity& event)
{
    if constexpr (!isDeclared<C>())
        return true; // a table laid out by the host cannot be asked while compiling
    else if constexpr (std::is_void_v<typename Declared<C>::Super>)
        return declaredList<C>.hasEvent(eventsOf<C>, event);
    else
        return declaredList<C>.hasEvent(eventsOf<C>, event) ||
               listsEvent<typename Declared<C>::Super>(event);
}

template <class C>
constexpr bool notifiesEventsOnly()
{
    if constexpr (declaredList<C>.notifies)
        for (const MemberIdentity* event : declaredList<C>.changeEvents)
            if (event->isSet() && !listsEvent<C>(*event))
                return false;
    return true;
}

template <class C>
using ListedConstructors = typename std::remove_cvref_t<decltype(declaredList<C>)>::Constructors;

template <class C, class... P>
constexpr bool isConstructible(Parameters<P...>)
{
    return canMake<C, decltype(passAs<P>(std::declval<const Held<P>&>()))...>;
}

/// Whether the class has the constructors that it lists, and others may call them.
template <class C, class... Params>
constexpr bool listsConstructorsOnly(ConstructorParameters<Params...>)
{
    return (isConstructible<C>(Params()) && ...);
}

// The classes that an object class derives from cannot be listed, but each of those that begin with
// `ZT_OBJECT` declares a function that is found by its arguments.

struct NoClassBetween {};
NoClassBetween ztObjectClass(...);
void ztObjectClass(ObjectClassTag<ZTDynamicBase>);

/// An argument for the object classes that `C` derives from and `Super` does not.
template <class C, class Super>
struct ClassBetween {
    template <class Other>
        requires(std::is_base_of_v<Other, C> && !std::is_same_v<Other, C> &&
                 !std::is_base_of_v<Other, Super>)
    operator ObjectClassTag<Other>() const;
};

/// Whether the class derives from an object class that is nearer than the one that it names. One
/// makes the call mean something else, several make it ambiguous.
template <class C, class Super>
inline constexpr bool hasClassBetween = !requires(ClassBetween<C, Super> between)
{
    {
        ztObjectClass(between)
        } -> std::same_as<NoClassBetween>;
};

template <class C, class Super>
inline constexpr bool isPlainBase = std::is_convertible_v<C*, Super*>&& requires(Super* object)
{
    static_cast<C*>(object);
};

/// What can be wrong with a class, in the order in which it is looked for.
enum class ClassFault {
    None,
    Told, ///< by `ZT_OBJECT`
    NoObjectLine,
    NoSuperClass,
    Inheritance,
    ClassBetween,
    FirstBase,
    NoMembers,
    InheritedMembers,
    MemberCall,
    ListedTwice,
    Notify,
    Foreign,
    Enumerator,
    DefaultValue,
    Constructor
};

template <class C>
constexpr ClassFault faultOfMembers()
{
    if constexpr (!ClassAccess::hasMembers<C>())
        return ClassFault::NoMembers;
    else if constexpr (ClassAccess::inheritsMembers<C>())
        return ClassFault::InheritedMembers;
    else if constexpr (!ClassAccess::hasConstantMembers<C>())
        return ClassFault::MemberCall;
    else if constexpr (declaredList<C>.hasMemberListedTwice())
        return ClassFault::ListedTwice;
    else if constexpr (!notifiesEventsOnly<C>())
        return ClassFault::Notify;
    else if constexpr (!canBindAll<C>(typename decltype(declaredList<C>)::Bindings()))
        return ClassFault::Foreign;
    else if constexpr (declaredList<C>.fault == WordFault::Enumerator)
        return ClassFault::Enumerator;
    else if constexpr (declaredList<C>.fault == WordFault::DefaultValue)
        return ClassFault::DefaultValue;
    else
        return listsConstructorsOnly<C>(ListedConstructors<C>()) ? ClassFault::None
                                                                 : ClassFault::Constructor;
}

template <class C>
constexpr ClassFault faultOfClass()
{
    if constexpr (std::is_same_v<C, ZTBase> || std::is_same_v<C, ZTDynamicBase>) {
        return ClassFault::None;
    } else if constexpr (!requires { typename C::ZtSelf; }) {
        return ClassFault::NoObjectLine;
    } else if constexpr (!std::is_same_v<typename C::ZtSelf, C>) {
        return ClassFault::NoObjectLine;
    } else {
        using Super = typename C::ZtSuper;
        if constexpr (!isObjectClass<Super>)
            return ClassFault::Told;
        else if constexpr (!std::is_base_of_v<Super, C> || std::is_same_v<Super, C>)
            return ClassFault::NoSuperClass;
        else if constexpr (!isPlainBase<C, Super>)
            return ClassFault::Inheritance;
        else if constexpr (hasClassBetween<C, Super>)
            return ClassFault::ClassBetween;
        else if constexpr (ClassAccess::offsetOfBase<C>() != 0)
            return ClassFault::FirstBase;
        else
            return faultOfMembers<C>();
    }
}

/// The first mistake in the declaration of a class, if there is one; `ZT_CLASS` tells it.
template <class C>
inline constexpr ClassFault classFault = faultOfClass<C>();

template <class C, ClassFault fault>
inline constexpr bool lacks = classFault<C> != fault;
} // namespace zt::detail
