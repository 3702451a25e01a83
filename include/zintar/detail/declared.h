#pragma once

#include <zintar/base.h>
#include <zintar/detail/classtable.h>
#include <zintar/detail/memberlist.h>
#include <zintar/detail/members.h>
#include <zintar/dynamicbase.h>

#include <atomic>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <type_traits>

/// @file
/// From the list of a class's members to its one table, with the mistakes that the compiler can
/// see in a declaration.

namespace zt::detail
{
/// Stands for a function, so that two of them can be told apart under every set of flags.
template <auto Function>
struct FunctionTag;

/// The way to what a declared class keeps private.
struct ClassAccess {
    template <class C>
    static constexpr auto members()
    {
        return C::members();
    }
    template <class C>
    static ClassTable& table()
    {
        return C::ztTable();
    }

    /// Whether there is a function `members`, of the class itself or inherited.
    template <class C>
    static constexpr bool hasMembers()
    {
        return requires { &C::members; };
    }
    template <class C>
    static constexpr bool inheritsMembers()
    {
        using Super = typename C::ZtSuper;
        if constexpr (hasMembers<Super>())
            return std::is_same_v<FunctionTag<&C::members>, FunctionTag<&Super::members>>;
        else
            return false;
    }
    /// Whether `members` can be called without an object while compiling, and gives a list.
    template <class C>
    static constexpr bool hasConstantMembers()
    {
        if constexpr (requires { typename std::bool_constant<(C::members(), true)>; })
            return isMemberList<decltype(C::members())>;
        else
            return false;
    }

    /// Where the `ZTBase` in an object of class `C` begins, in words.
    template <class C>
    static constexpr std::size_t offsetOfBase()
    {
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Winvalid-offsetof"
        return __builtin_offsetof(C, priv) - __builtin_offsetof(ZTBase, priv);
#pragma GCC diagnostic pop
    }
};

/// Whether the descriptor of `C` comes from the kit, be it that of a super class, and not from a
/// table that the host laid out.
template <class C>
constexpr bool isDeclared()
{
    if constexpr (std::is_same_v<C, ZTBase> || std::is_same_v<C, ZTDynamicBase>)
        return true;
    else if constexpr (requires { typename C::ZtSelf; })
        return std::is_same_v<FunctionTag<&C::typeMetaClass>,
                              FunctionTag<&C::ZtSelf::typeMetaClass>>;
    else
        return false;
}

/// What the kit knows of a declared class; its super class is `void` for the root. A class without
/// `ZT_OBJECT` of its own is what the class is that it derives from.
template <class C>
struct Declared {
    using Super = typename C::ZtSuper;
    static constexpr auto members() { return ClassAccess::members<typename C::ZtSelf>(); }
};

template <>
struct Declared<ZTBase> {
    using Super = void;
    static constexpr auto members()
    {
        return zt::members(zt::event<&ZTBase::destroyed>(),
                           zt::event<&ZTBase::dynamicPropertyChanged>(),
                           zt::event<&ZTBase::childAdded>(), zt::event<&ZTBase::childRemoved>());
    }
};

template <>
struct Declared<ZTDynamicBase> {
    using Super = ZTBase;
    static constexpr auto members()
    {
        return zt::members(zt::event<&ZTDynamicBase::metaClassInitialized>());
    }
};

/// The list of a declared class, and its events. Each program and plugin has its own.
template <class C>
[[gnu::visibility("hidden")]] inline constexpr auto declaredList = Declared<C>::members();
template <class C>
[[gnu::visibility("hidden")]] inline constexpr auto declaredEvents = declaredList<C>.events();

/// Whether the class or one of its super classes lists the event.
template <class C>
constexpr bool listsEvent(std::uint64_t hash)
{
    if constexpr (!isDeclared<C>())
        return true; // a table laid out by the host cannot be asked while compiling
    else if constexpr (std::is_void_v<typename Declared<C>::Super>)
        return declaredEvents<C>.has(hash);
    else
        return declaredEvents<C>.has(hash) || listsEvent<typename Declared<C>::Super>(hash);
}

template <class C>
constexpr bool notifiesEventsOnly()
{
    for (const MemberRecord& member : declaredList<C>.members)
        if (member.changeEvent.isSet() && !listsEvent<C>(member.changeEvent.hash))
            return false;
    return true;
}

template <class C>
struct DeclaredHere {
    static int indexOf(const void* variable)
    {
        if constexpr (isDeclared<C>()) {
            const auto& members = declaredList<C>.members;
            int position = positionInList(members.data(), members.size(), variable);
            unsigned int offset = C::typeMetaClass().invokableOffset();
            return position < 0 ? -1 : position + static_cast<int>(offset);
        } else {
            return -1;
        }
    }
};

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
    Notify
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
    else
        return notifiesEventsOnly<C>() ? ClassFault::None : ClassFault::Notify;
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

template <class C>
const ZTMetaClass& completeClass()
{
    return C::typeMetaClass();
}

template <class C>
const ZTMetaType& registerPointers()
{
    const ZTMetaType& type = registerType<C*>();
    registerType<const C*>();
    return type;
}

template <class C>
int positionByFunction(const ZTMetaClass*, void* function)
{
    return ClassAccess::table<C>().positionOf(function);
}

template <class C>
int positionBySignature(const ZTMetaClass*, std::string_view name, bool isConst,
                        const std::type_index& signature)
{
    return ClassAccess::table<C>().positionOf(name, isConst, signature);
}

template <class C>
ClassDeclaration classDeclaration()
{
    ClassDeclaration declaration;
    if constexpr (classFault<C> == ClassFault::None) {
        const auto& list = declaredList<C>;
        declaration.typeName = ztTypeName<C>();
        declaration.members = list.members.data();
        declaration.memberCount = list.members.size();
        declaration.infos = list.infos.data();
        using Super = typename Declared<C>::Super;
        if constexpr (!std::is_void_v<Super>)
            declaration.superClass = &completeClass<Super>;
        declaration.registerPointers = &registerPointers<C>;
        declaration.positionByFunction = &positionByFunction<C>;
        declaration.positionBySignature = &positionBySignature<C>;
    }
    return declaration;
}

/// The one table of a declared class; instantiated in the file of its `ZT_CLASS` alone.
template <class C>
ClassTable& declaredTable()
{
    static ClassTable& table = *new ClassTable(classDeclaration<C>());
    return table;
}

/// The descriptor of a declared class, complete.
template <class C>
const ZTMetaClass& declaredClass()
{
    static std::atomic<const ZTMetaClass*> complete = nullptr;
    const ZTMetaClass* known = complete.load(std::memory_order_acquire);
    if (!known) [[unlikely]] {
        known = &ClassAccess::table<C>().metaClass();
        complete.store(known, std::memory_order_release);
    }
    return *known;
}

template <class C>
const ZTMetaClass* classOfObject(const C& object)
{
    if constexpr (std::is_base_of_v<ZTDynamicBase, C>)
        return object.ZTDynamicBase::metaClass();
    else
        return &C::typeMetaClass();
}
} // namespace zt::detail
