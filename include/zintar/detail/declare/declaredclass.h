#pragma once

#include <zintar/detail/declare/classchecks.h>
#include <zintar/detail/declare/constructors.h>
#include <zintar/detail/declare/declaredlist.h>
#include <zintar/detail/declare/table.h>
#include <zintar/dynamicbase.h>

#include <atomic>
#include <string_view>
#include <type_traits>
#include <typeindex>

/// @file
/// From the list of a class to its one table and its descriptor.

namespace zt::detail
{
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
constexpr ClassDeclaration declarationOf()
{
    ClassDeclaration declaration;
    if constexpr (classFault<C> == ClassFault::None) {
        declaration.pointer = &objectPointer<const C*>;
        declaration.members = declaredMembers<C>.data();
        declaration.memberCount = declaredMembers<C>.size();
        declaration.infos = declaredInfos<C>.data();
        declaration.defaults = declaredDefaults<C>.data();
        using Super = typename Declared<C>::Super;
        if constexpr (!std::is_void_v<Super>)
            declaration.superClass = &classOf<Super>;
        declaration.positionByFunction = &positionByFunction<C>;
        declaration.positionBySignature = &positionBySignature<C>;
        declaration.constructors = &constructorsOf<C>;
    }
    return declaration;
}

// What follows is instantiated in the file of its `ZT_CLASS` alone. It is hidden, so that two
// plugins that both have a class of that name have two classes, each with the functions of its own.

template <class C>
[[gnu::visibility("hidden")]] inline constexpr ClassDeclaration declaration = declarationOf<C>();

template <class C>
[[gnu::visibility("hidden")]] inline constinit DeclaredClass classDeclared{declaration<C>};

template <class C>
[[gnu::visibility("hidden")]] ClassTable& declaredTable()
{
    return tableOf(classDeclared<C>);
}

/// The descriptor of a declared class, complete.
template <class C>
[[gnu::visibility("hidden")]] const ZTMetaClass& declaredClass()
{
    return classIn(classDeclared<C>);
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
