#pragma once

#include <zintar/detail/values/objectreferences.h>
#include <zintar/detail/values/shapes.h>
#include <zintar/detail/values/typefunctions.h>
#include <zintar/metatype.h>
#include <zintar/typename.h>

#include <atomic>
#include <typeinfo>

/// @file
/// From a C++ type to its record in the registry, which is looked for once.

namespace zt::detail
{
/// Registers `T` under its spelled name with what the compiler knows of it.
template <class T>
const ZTMetaType& registerType(const std::string& alias = {})
{
    if constexpr (std::is_void_v<T>) {
        return ztRegisterMetaType(typeid(T), ztTypeName<T>(), alias, nullptr, nullptr, nullptr,
                                  nullptr, nullptr, nullptr, nullptr, nullptr);
    } else if constexpr (isObjectPointer<T>) {
        return registerPointer(objectPointer<T>, alias);
    } else if constexpr (isObjectReference<T>) {
        return registerReference(ReferenceFunctions<T>::all(), alias);
    } else {
        using Functions = TypeFunctions<T>;
        const ZTMetaType& type = ztRegisterMetaType(
            typeid(T), ztTypeName<T>(), alias, Functions::create(), Functions::destroy(),
            Functions::createDefault(), Functions::compare(), Functions::serialize(),
            Functions::deserialize(), Functions::print(), nullptr, sizeof(BlockOf<T>),
            Functions::assign(), findClassOfPointer<T>(), shapeOf<T>());
        warnOfTakenName(type);
        return type;
    }
}

/// The type of `T`, once it has been asked for.
template <class T>
inline std::atomic<const ZTMetaType*> knownType = nullptr;

/// Whether values of `T` are in blocks of `TypeFunctions`, and not in memory of a host that
/// registered the type with functions of its own. Known when the type is.
template <class T>
inline std::atomic<bool> knownToBeInBlocks = false;

template <class T>
const ZTMetaType& findOrRegister()
{
    if constexpr (isObjectPointer<T>) {
        return typeOf(objectPointer<T>);
    } else {
        const ZTMetaType* known = ztMetaType(std::type_index(typeid(T)));
        const ZTMetaType& type = known ? *known : registerType<T>();
        if constexpr (isInAnonymousScope(ztTypeName<T>()))
            if (known)
                warnOfTakenIdentity(type, TypeFunctions<T>::destroy());
        return type;
    }
}

template <class T>
[[gnu::noinline]] const ZTMetaType& findOrRegisterType()
{
    const ZTMetaType& type = findOrRegister<T>();
    knownToBeInBlocks<T>.store(isInBlocks(type), std::memory_order_relaxed);
    knownType<T>.store(&type, std::memory_order_release);
    return type;
}
} // namespace zt::detail
