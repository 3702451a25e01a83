#pragma once

#include <zintar/detail/values/knowntypes.h>
#include <zintar/metatype.h>
#include <zintar/typename.h>

#include <atomic>
#include <type_traits>

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
