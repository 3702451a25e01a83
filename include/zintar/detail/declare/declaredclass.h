#pragma once

#include <zintar/detail/declare/classchecks.h>
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
