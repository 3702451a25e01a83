#pragma once

#include <zintar/detail/typefunctions.h>
#include <zintar/metatype.h>
#include <zintar/typename.h>

#include <typeinfo>

namespace zt::detail
{
/// Registers `T` under its spelled name with what the compiler knows of it.
template <class T>
const ZTMetaType& registerType(const ZTMetaClass* metaClass, const std::string& alias = {})
{
    if constexpr (std::is_void_v<T>) {
        return ztRegisterMetaType(typeid(T), ztTypeName<T>(), alias, nullptr, nullptr, nullptr,
                                  nullptr, nullptr, nullptr, nullptr, nullptr);
    } else {
        using Functions = TypeFunctions<T>;
        return ztRegisterMetaType(typeid(T), ztTypeName<T>(), alias, Functions::create(),
                                  Functions::destroy(), Functions::createDefault(),
                                  Functions::compare(), Functions::serialize(),
                                  Functions::deserialize(), Functions::print(), metaClass);
    }
}

template <class T>
const ZTMetaType& metaTypeOf()
{
    const ZTMetaType* known = ztMetaType(std::type_index(typeid(T)));
    return known ? *known : registerType<T>(classOfPointer<T>());
}
} // namespace zt::detail

/// The type of `T`, registered at the first call under `ztTypeName<T>()`, with functions for
/// whatever the compiler can see that values of `T` can do: copying, a default value, `==` and
/// `<`, the operators on `ZTDataStream` and on `std::ostream`. A pointer to an object class
/// carries the class. An enumeration streams as its underlying integer.
///
/// @tparam T  without reference and `const` at the top
/// Cost: one load once it has been called. Threads: the first call for a type registers, so it
/// may not run beside other uses of types.
template <class T>
[[nodiscard]] const ZTMetaType& ztMetaType()
{
    static_assert(!std::is_reference_v<T> && !std::is_const_v<T> && !std::is_volatile_v<T>,
                  "ztMetaType<T>: T is a plain type, without reference and const at the top.");
    static const ZTMetaType& type = zt::detail::metaTypeOf<zt::detail::Canonical<T>>();
    return type;
}
