#pragma once

#include <zintar/base.h>
#include <zintar/detail/declare/list.h>
#include <zintar/detail/declare/members.h>
#include <zintar/detail/declare/table.h>
#include <zintar/dynamicbase.h>

#include <cstddef>
#include <type_traits>

/// @file
/// The list that belongs to a class.

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

/// The list of a declared class. It serves the checks.
template <class C>
inline constexpr auto declaredList = Declared<C>::members();

/// What gets into the program of it. Each program and plugin has its own.
template <class C>
[[gnu::visibility("hidden")]] inline constexpr auto declaredMembers =
    bound<C>(declaredList<C>.members, typename decltype(declaredList<C>)::Bindings());
template <class C>
[[gnu::visibility("hidden")]] inline constexpr auto declaredInfos = declaredList<C>.infos;
template <class C>
[[gnu::visibility("hidden")]] inline constexpr auto declaredDefaults =
    declaredList<C>.defaultArguments;

template <class C>
struct DeclaredHere {
    static int indexOf(const void* variable)
    {
        if constexpr (isDeclared<C>()) {
            const auto& members = declaredMembers<C>;
            int position = positionInList(members.data(), members.size(), variable);
            unsigned int offset = C::typeMetaClass().invokableOffset();
            return position < 0 ? -1 : position + static_cast<int>(offset);
        } else {
            return -1;
        }
    }
};
} // namespace zt::detail
