#pragma once

#include <zintar/base.h>
#include <zintar/detail/classtable.h>
#include <zintar/detail/members.h>
#include <zintar/dynamicbase.h>

#include <atomic>
#include <cstddef>
#include <type_traits>

/// @file
/// From the list of a class's members to its one table, with the mistakes that the compiler can
/// see in a declaration.

namespace zt::detail
{
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

/// What the kit knows of a declared class; its super class is `void` for the root.
template <class C>
struct Declared {
    using Super = typename C::ZtSuper;
    static constexpr auto members() { return ClassAccess::members<C>(); }
};

/// Whether the descriptor of `C` comes from the kit, and not from a table that the host laid out.
template <class C>
constexpr bool isDeclared()
{
    if constexpr (std::is_same_v<C, ZTBase> || std::is_same_v<C, ZTDynamicBase>)
        return true;
    else if constexpr (requires { typename C::Self; })
        return &C::typeMetaClass == &C::Self::typeMetaClass;
    else
        return false;
}

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

/// Whether the class or one of its super classes lists the event.
template <class C>
constexpr bool listsEvent(MemberIdentity event)
{
    if constexpr (!isDeclared<C>())
        return true; // a table laid out by the host cannot be asked while compiling
    else if constexpr (std::is_void_v<typename Declared<C>::Super>)
        return Declared<C>::members().hasEvent(event);
    else
        return Declared<C>::members().hasEvent(event) ||
               listsEvent<typename Declared<C>::Super>(event);
}

template <class C>
constexpr bool notifiesEventsOnly()
{
    for (const MemberRecord& member : Declared<C>::members().members)
        if (member.changeEvent.isSet() && !listsEvent<C>(member.changeEvent))
            return false;
    return true;
}

template <class C>
struct DeclaredHere {
    static int indexOf(const void* variable)
    {
        static constexpr auto list = Declared<C>::members();
        int position = positionInList(list.members.data(), list.members.size(), variable);
        unsigned int offset = C::typeMetaClass().invokableOffset();
        return position < 0 ? -1 : position + static_cast<int>(offset);
    }
};

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
    static constexpr auto list = Declared<C>::members();
    static_assert(!list.hasMemberListedTwice(),
                  "zt::members: a member is listed twice, or two properties or enumerations have "
                  "one name.");
    static_assert(notifiesEventsOnly<C>(),
                  "zt::members: a property's notify<...>() names no event of the class or its "
                  "super classes.");
    static_assert(ClassAccess::offsetOfBase<C>() == 0,
                  "ZTBase must be the first base of an object class that has virtual functions.");
    ClassDeclaration declaration;
    declaration.typeName = ztTypeName<C>();
    declaration.members = list.members.data();
    declaration.memberCount = list.members.size();
    declaration.infos = list.infos.data();
    using Super = typename Declared<C>::Super;
    if constexpr (!std::is_void_v<Super>) {
        static_assert(std::is_base_of_v<Super, C>,
                      "ZT_OBJECT names a class as super class that the class does not derive "
                      "from.");
        declaration.superClass = &completeClass<Super>;
    }
    declaration.registerPointers = &registerPointers<C>;
    declaration.positionByFunction = &positionByFunction<C>;
    declaration.positionBySignature = &positionBySignature<C>;
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
    static_assert(std::is_same_v<typename C::Self, C>,
                  "ZT_CLASS: the class has no ZT_OBJECT of its own.");
    if constexpr (std::is_base_of_v<ZTDynamicBase, C>)
        return object.ZTDynamicBase::metaClass();
    else
        return &C::typeMetaClass();
}
} // namespace zt::detail
