#pragma once

#include <zintar/detail/typefunctions.h>
#include <zintar/metatype.h>
#include <zintar/typename.h>

#include <atomic>
#include <typeinfo>

namespace zt::detail
{
/// Registers `T` under its spelled name with what the compiler knows of it.
template <class T>
const ZTMetaType& registerType(const std::string& alias = {})
{
    if constexpr (std::is_void_v<T>) {
        return ztRegisterMetaType(typeid(T), ztTypeName<T>(), alias, nullptr, nullptr, nullptr,
                                  nullptr, nullptr, nullptr, nullptr, nullptr);
    } else {
        using Functions = TypeFunctions<T>;
        const ZTMetaType& type = ztRegisterMetaType(
            typeid(T), ztTypeName<T>(), alias, Functions::create(), Functions::destroy(),
            Functions::createDefault(), Functions::compare(), Functions::serialize(),
            Functions::deserialize(), Functions::print(), nullptr, true, Functions::assign(),
            findClassOfPointer<T>());
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
[[gnu::noinline]] const ZTMetaType& findOrRegisterType()
{
    const ZTMetaType* known = ztMetaType(std::type_index(typeid(T)));
    const ZTMetaType& type = known ? *known : registerType<T>();
    if constexpr (isInAnonymousScope(ztTypeName<T>()))
        if (known)
            warnOfTakenIdentity(type, TypeFunctions<T>::destroy());
    knownToBeInBlocks<T>.store(isInBlocks(type), std::memory_order_relaxed);
    knownType<T>.store(&type, std::memory_order_release);
    return type;
}
} // namespace zt::detail

/// The type of `T`, registered at the first call under `ztTypeName<T>()`, with functions for
/// whatever the compiler can see that values of `T` can do: copying, a default value, `==` and
/// `<`, the operators on `ZTDataStream` and on `std::ostream`. A pointer to an object class
/// carries the class. An enumeration streams as its underlying integer.
///
/// @tparam T  without reference and `const` at the top
/// Cost: one load once it has been called. Threads: any call on any thread.
template <class T>
[[nodiscard]] const ZTMetaType& ztMetaType()
{
    static_assert(!std::is_reference_v<T> && !std::is_const_v<T> && !std::is_volatile_v<T>,
                  "ztMetaType<T>: T is a plain type, without reference and const at the top.");
    using Known = zt::detail::Canonical<T>;
    const ZTMetaType* known = zt::detail::knownType<Known>.load(std::memory_order_acquire);
    return known ? *known : zt::detail::findOrRegisterType<Known>();
}
