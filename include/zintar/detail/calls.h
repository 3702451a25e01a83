#pragma once

#include <zintar/base.h>
#include <zintar/detail/signature.h>
#include <zintar/typedvalue.h>

#include <atomic>
#include <cstddef>
#include <tuple>
#include <type_traits>
#include <typeinfo>
#include <utility>

/// @file
/// Typed functions behind the untyped forms in which descriptors call them: what is common to the
/// members of a declared class and to the functions of a class made at run time.

namespace zt::detail
{
template <class C>
inline constexpr bool isObjectClass = std::is_base_of_v<ZTBase, C>;

/// The same of what may be no class at all, or one that is not complete.
template <class C>
constexpr bool canBeSuperClass()
{
    if constexpr (Complete<C>)
        return std::is_base_of_v<ZTBase, C>;
    else
        return false;
}

/// Where the objects come from that a function takes, as variants.
///
/// The way of an object into a function goes through two questions, each of which remembers the
/// last answer that was yes: whether the pointer may come along the class tree, and whether the
/// object really is one of the class.
struct ObjectSource {
    const ObjectPointer& pointer; ///< what the function takes
    bool (*isOf)(const ZTBase&);  ///< whether an object is of the class; null for the root
    std::atomic<const ZTMetaType*> knownPointer = nullptr;
    std::atomic<const std::type_info*> knownClass = nullptr;
};

template <class Class>
bool isObjectOf(const ZTBase& object)
{
    return dynamic_cast<const Class*>(&object) != nullptr;
}

/// @tparam Object  the class, `const` for a function that leaves the object unchanged
template <class Object>
inline constinit ObjectSource objectSource{objectPointer<Object*>, &isObjectOf<Object>};
template <>
inline constinit ObjectSource objectSource<ZTBase>{objectPointer<ZTBase*>, nullptr};
template <>
inline constinit ObjectSource objectSource<const ZTBase>{objectPointer<const ZTBase*>, nullptr};

/// What `objectIn` does when one of the two questions has to be asked anew.
[[nodiscard]] ZT_EXPORT ZTBase* objectOtherwise(const ZTVariant& object, ObjectSource& source);

/// The object that a variant points to, as the class that declares the member; null, which is told
/// in the log, when there is no such object.
///
/// A pointer goes along the class tree unchanged, so it may be to an object of another class, or to
/// one whose destruction has come as far as `ZTBase`.
[[nodiscard]] inline ZTBase* objectIn(const ZTVariant& object, ObjectSource& source)
{
    const bool isKnown = &object.type() == source.knownPointer.load(std::memory_order_relaxed);
    if (isKnown && object.data()) [[likely]] {
        // The `ZTBase` stands first in every object.
        ZTBase* base = *static_cast<ZTBase* const*>(object.data());
        if (base && &typeid(*base) == source.knownClass.load(std::memory_order_relaxed)) [[likely]]
            return base;
    }
    return objectOtherwise(object, source);
}
template <class Object>
[[nodiscard]] Object* objectIn(const ZTVariant& object)
{
    return static_cast<Object*>(objectIn(object, objectSource<Object>));
}

/// What a function gives, as a variant.
template <class Result>
ZTVariant boxResult(Result&& result)
{
    return ZTVariant(std::forward<Result>(result));
}

template <class Result>
const ZTMetaType& resultType()
{
    if constexpr (std::is_void_v<Result>)
        return ::ztMetaType<void>();
    else
        return ::ztMetaType<Held<Result>>();
}

/// An argument of a call; a parameter of type `ZTVariant` takes the variant as it is.
template <class P>
decltype(auto) unboxed(const ZTVariant& argument)
{
    if constexpr (std::is_same_v<Held<P>, ZTVariant>)
        return (argument);
    else
        return ztVariantValue<Asked<P>>(argument);
}

/// Whether an argument comes out of a variant without any code of the host.
template <class P>
bool isPlainArgument([[maybe_unused]] const ZTVariant& argument)
{
    using Value = Held<P>;
    if constexpr (std::is_same_v<Value, ZTVariant>)
        return true;
    else if constexpr (isPlainCopy<Value, Value>)
        return heldAs<Canonical<Value>>(argument) != nullptr;
    else
        return false;
}

/// What such an argument holds.
template <class P>
decltype(auto) plainValue(const ZTVariant& argument)
{
    using Value = Held<P>;
    if constexpr (std::is_same_v<Value, ZTVariant>)
        return (argument);
    else
        return static_cast<Value>(*static_cast<const Canonical<Value>*>(argument.data()));
}

/// Calls with the values, and packs the result.
template <class Result, class Call, class... Values>
[[gnu::always_inline]] inline ZTVariant callPacked(const Call& call, Values&&... values)
{
    if constexpr (std::is_void_v<Result>) {
        call(std::forward<Values>(values)...);
        return ZTVariant();
    } else {
        return boxResult<Result>(call(std::forward<Values>(values)...));
    }
}

/// What unpacks the arguments may be code of the host that ends the object; then there is no call.
template <class Result, class Call, class... P, std::size_t... I>
[[gnu::noinline]] ZTVariant callWatched(const ZTBase& object, Call call,
                                        const ZTArgumentArray& arguments, Parameters<P...>,
                                        std::index_sequence<I...>)
{
    const ZTLifeWatch watch(&object);
    const std::tuple<decltype(unboxed<P>(arguments[I]))...> values(unboxed<P>(arguments[I])...);
    if (!watch.isStill(&object))
        return {};
    return callPacked<Result>(call, passAs<P>(std::get<I>(values))...);
}

template <class Result, class Call, class... P, std::size_t... I>
[[gnu::always_inline]] inline ZTVariant
callUnpacked(const ZTBase& object, const Call& call, const ZTArgumentArray& arguments,
             Parameters<P...> parameters, std::index_sequence<I...> positions)
{
    if ((isPlainArgument<P>(arguments[I]) && ...)) [[likely]]
        return callPacked<Result>(call, passAs<P>(plainValue<P>(arguments[I]))...);
    return callWatched<Result>(object, call, arguments, parameters, positions);
}

/// Calls with the arguments unpacked, and packs the result.
template <class Result, class Call, class... P>
[[gnu::always_inline]] inline ZTVariant callBoxed(const ZTBase& object, const Call& call,
                                                  const ZTArgumentArray& arguments,
                                                  Parameters<P...> parameters)
{
    if constexpr (sizeof...(P) == 0)
        return callPacked<Result>(call);
    else
        return callUnpacked<Result>(object, call, arguments, parameters,
                                    std::index_sequence_for<P...>());
}

/// What takes the value out may be code of the host that ends the object; then nothing is stored.
template <class P, class Store>
[[gnu::noinline]] void storeWatched(ZTBase& self, const ZTVariant& value, Store store)
{
    const ZTLifeWatch watch(&self);
    const auto [held, found] = retrieve<Asked<P>>(value);
    if (!found || !watch.isStill(&self))
        return;
    if constexpr (isDataPointer<Held<P>>) {
        // Of an unrelated class: it came out as null, in silence.
        if (!held && holdsPointer(value)) {
            warnFailedConversion(askedName<Asked<P>>(), value.type());
            return;
        }
    }
    store(self, held);
}

/// Calls `store` with the object and the value. A value that does not fit is told in the log and
/// goes no further, so that the property keeps what it has.
template <class P, class Store>
[[gnu::always_inline]] inline ZTVariant storeUnboxed(const ZTVariant& object,
                                                     const ZTVariant& value, ObjectSource& source,
                                                     const Store& store)
{
    using Value = Held<P>;
    ZTBase* self = objectIn(object, source);
    if (!self)
        return {};
    if constexpr (std::is_same_v<Value, ZTVariant>) {
        store(*self, value);
    } else {
        static_assert(std::is_default_constructible_v<Value>,
                      "The type of a property that can be set needs a default value.");
        if (isPlainArgument<P>(value)) [[likely]] {
            const Value held = plainValue<P>(value);
            store(*self, held);
        } else {
            storeWatched<P>(*self, value, store);
        }
    }
    return {};
}
} // namespace zt::detail
