#pragma once

#include <zintar/base.h>
#include <zintar/detail/constructors.h>
#include <zintar/detail/lifewatch.h>
#include <zintar/export.h>
#include <zintar/fwd.h>
#include <zintar/variant.h>

#include <array>
#include <memory>
#include <span>
#include <type_traits>
#include <utility>

/// @file
/// Objects from classes that are known at run time only:
///
///     if (const ZTMetaClass* found = ztClass(name)) {        // classes.h
///         std::unique_ptr<ZTBase> lamp = ztCreate(*found);   // on its own
///         ZTBase* other = ztCreate(*found, &room);           // the room deletes it
///         ZTBase* third = ztCreate(*found, &room, 0.5, "desk");
///     }
///
/// Whoever writes the class down uses `ztMake<Lamp>(&room, 0.5)` where somebody watches the tree:
/// `new Lamp(&room)` joins the room when the object is no more than a `ZTBase`, and `childAdded`
/// shows it in that state.
///
/// A declared class offers its public constructors `C()` or `C(ZTBase*)`, called with null, and
/// those that it lists by `zt::constructor`; an abstract class offers none. An object of a class
/// made at run time is one of the nearest declared class above it, which must derive from
/// `ZTDynamicBase`, and is given its class before it joins its parent; a constructor may have done
/// so already.
///
/// An argument fits a parameter of its own type, a pointer to an object also one to a class that
/// the object is of, any argument a `ZTVariant`, and otherwise one into which a registered
/// converter turns it. Of several constructors the one is called that needs the least of this;
/// among equals, the one that is listed first.
///
/// Where no constructor fits, the result is null and one line in the log tells what there is. What
/// a constructor throws passes through.
///
/// Threads: any; the objects belong to the thread like all others. Cost: that of the constructor,
/// without arguments; with arguments also their copies.

/// An object that the caller owns.
[[nodiscard]] ZT_EXPORT std::unique_ptr<ZTBase> ztCreate(const ZTMetaClass& metaClass);

/// An object as a child of `parent`, which hears `childAdded` when it is complete.
/// @param parent  null for a root object, which the caller owns then
/// @return null also when the object is gone by then: a handler deleted it, or code of the host
///         ended the parent while the object was made
ZT_EXPORT ZTBase* ztCreate(const ZTMetaClass& metaClass, ZTBase* parent,
                           std::span<const ZTVariant> arguments);

/// The same with arguments as they are written; one that is a `ZTVariant` goes as what it holds.
template <class... Arguments>
    requires(!(sizeof...(Arguments) == 1 &&
               (std::is_convertible_v<Arguments, std::span<const ZTVariant>> && ...)))
ZTBase* ztCreate(const ZTMetaClass& metaClass, ZTBase* parent, Arguments&&... arguments)
{
    const std::array<ZTVariant, sizeof...(Arguments)> values{
        ZTVariant(std::forward<Arguments>(arguments))...};
    return ztCreate(metaClass, parent, std::span<const ZTVariant>(values));
}

namespace zt::detail
{
/// Puts a complete object under the parent.
/// @param watch  began to watch the parent before the object was made
/// @return null when one of the two is gone
ZT_EXPORT ZTBase* joinParent(std::unique_ptr<ZTBase> object, ZTBase* parent,
                             const ZTLifeWatch& watch);
} // namespace zt::detail

/// A `T` made from the arguments, by a constructor that may have a parent behind them, as a child
/// of `parent`, which hears `childAdded` when the object is complete.
/// @param parent  null for a root object, which the caller owns then
/// @return null when the object is gone by then, like `ztCreate`
template <class T, class... Arguments>
T* ztMake(ZTBase* parent, Arguments&&... arguments)
{
    using namespace zt::detail;
    constexpr bool isPlain = canMake<T, Arguments...>;
    constexpr bool takesParent = !isPlain && canMakeWithParent<T, Arguments...>;
    static_assert(std::is_base_of_v<ZTBase, T>, "ztMake<T>: T derives from ZTBase.");
    static_assert(
        isPlain || takesParent,
        "ztMake<T>: T is abstract, or has no public constructor that takes the arguments, "
        "or the arguments and a ZTBase* behind them.");
    const ZTLifeWatch watch(parent);
    std::unique_ptr<ZTBase> made;
    if constexpr (isPlain)
        made.reset(new T(std::forward<Arguments>(arguments)...));
    else if constexpr (takesParent)
        made.reset(new T(std::forward<Arguments>(arguments)..., static_cast<ZTBase*>(nullptr)));
    return static_cast<T*>(joinParent(std::move(made), parent, watch));
}
