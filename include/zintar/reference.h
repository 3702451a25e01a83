#pragma once

#include <zintar/base.h>
#include <zintar/detail/controlblocks.h>

#include <cstddef>
#include <functional>
#include <type_traits>
#include <utility>

/// @file
/// References to objects from outside the tree. `ZTRef` tells whether the object is still there
/// and never keeps it alive; `ZTStrongRef` shares ownership: the object dies when the last one
/// goes.
///
/// Both follow an object that is moved, and read null once it has died by any means. Unlike
/// `weak_ptr` a `ZTRef` can be made from a plain pointer at any time, needs no lock to be read, and
/// still yields the object while `destroyed` is being delivered. An object that nobody ever
/// referred to pays two null pointers.
///
/// Do not hold a child by strong references: its parent deletes it all the same, which is told in
/// the log.
///
/// Threads: references may be copied, tested and dropped on any thread, also while the object dies,
/// is moved, or gets further references on its own thread. Only the last strong reference must go
/// where the object may be deleted. Making a reference from a pointer and using the object belong
/// to the thread of the object: elsewhere a test that says yes is old when it arrives.

namespace zt::detail
{
template <class U, class T>
concept ReferableAs = std::is_convertible_v<U*, T*>;

/// What both references offer.
template <class T, class Impl>
class TypedReference
{
public:
    TypedReference() noexcept = default;
    explicit TypedReference(T* object) : m_reference(object)
    {
        static_assert(std::is_base_of_v<ZTBase, T>, "A reference refers to an object.");
    }

    /// Null for an empty reference and for a dead object.
    [[nodiscard]] T* get() const noexcept
    {
        // Not a cast along the classes: during `destroyed` the object is no `T` any more. The
        // `ZTBase` stands first in every object.
        return static_cast<T*>(static_cast<void*>(m_reference.object()));
    }
    // Not to be used on a reference that reads null.
    [[nodiscard]] T* operator->() const noexcept { return get(); }
    [[nodiscard]] T& operator*() const noexcept { return *get(); }
    [[nodiscard]] explicit operator bool() const noexcept { return get() != nullptr; }

    void reset() noexcept { m_reference = Reference<Impl>(); }
    /// Refers to another object; null empties the reference.
    void reset(T* object) { m_reference = Reference<Impl>(object); }

protected:
    template <class U, class OtherImpl>
    friend class TypedReference;
    friend struct ReferenceOrder;

    /// The object, if this was the only reference to it.
    T* release() noexcept { return static_cast<T*>(static_cast<void*>(m_reference.release())); }

    template <class U>
    explicit TypedReference(const TypedReference<U, Impl>& other) noexcept
        : m_reference(other.m_reference)
    {}
    template <class U>
    explicit TypedReference(TypedReference<U, Impl>&& other) noexcept
        : m_reference(std::move(other.m_reference))
    {}

private:
    Reference<Impl> m_reference;
};

/// The order of references, which outlives the objects.
struct ReferenceOrder {
    template <class T, class Impl>
    [[nodiscard]] bool operator()(const TypedReference<T, Impl>& a,
                                  const TypedReference<T, Impl>& b) const noexcept
    {
        return std::less<const Impl*>()(a.m_reference.block(), b.m_reference.block());
    }
};
} // namespace zt::detail

template <class T>
class ZTStrongRef;

/// A weak reference: see the top of this file. `T` may be const.
///
///     ZTRef<Lamp> lamp(room.findLamp());
///     ...
///     if (lamp)             // still there
///         lamp->toggle();
///
/// Cost: one allocation for the first reference to an object; a pointer and a counter later.
template <class T>
class ZTRef : public zt::detail::TypedReference<T, zt::detail::ZTRefImpl>
{
    using Base = zt::detail::TypedReference<T, zt::detail::ZTRefImpl>;

public:
    ZTRef() noexcept = default;
    ZTRef(std::nullptr_t) noexcept {}
    ZTRef(T* object) : Base(object) {}
    /// From a reference to a derived class.
    template <zt::detail::ReferableAs<T> U>
    ZTRef(const ZTRef<U>& other) noexcept : Base(other)
    {}
    template <zt::detail::ReferableAs<T> U>
    ZTRef(ZTRef<U>&& other) noexcept : Base(std::move(other))
    {}
    /// To the object of a strong reference, without a share in it; like one from a pointer.
    template <zt::detail::ReferableAs<T> U>
    ZTRef(const ZTStrongRef<U>& owner) : Base(owner.get())
    {}
};

/// A strong reference: see the top of this file. The object must have been made with `new`, and
/// nobody else may delete it: that is survived, and told in the log.
///
///     ZTStrongRef<Recipe> recipe(new Recipe);
///     kitchen.cook(recipe);     // whoever drops it last deletes it
template <class T>
class ZTStrongRef : public zt::detail::TypedReference<T, zt::detail::ZTStrongRefImpl>
{
    using Base = zt::detail::TypedReference<T, zt::detail::ZTStrongRefImpl>;

public:
    ZTStrongRef() noexcept = default;
    ZTStrongRef(std::nullptr_t) noexcept {}
    explicit ZTStrongRef(T* object) : Base(object) {}
    template <zt::detail::ReferableAs<T> U>
    ZTStrongRef(const ZTStrongRef<U>& other) noexcept : Base(other)
    {}
    template <zt::detail::ReferableAs<T> U>
    ZTStrongRef(ZTStrongRef<U>&& other) noexcept : Base(std::move(other))
    {}

    /// Gives the object away: the caller, or the parent that it gets, deletes it from now on.
    ///
    ///     shelf.take(recipe.release());
    ///
    /// @return null, and nothing has changed, when other strong references share the object, which
    ///         would delete it all the same; also for an empty reference and a dead object
    /// Threads: where the object may be deleted.
    [[nodiscard]] T* release() noexcept { return Base::release(); }
};

// References compare by the object, and with pointers to it.
template <class T, class U, class ImplT, class ImplU>
[[nodiscard]] bool operator==(const zt::detail::TypedReference<T, ImplT>& a,
                              const zt::detail::TypedReference<U, ImplU>& b) noexcept
{
    return static_cast<const void*>(a.get()) == static_cast<const void*>(b.get());
}
template <class T, class Impl>
[[nodiscard]] bool operator==(const zt::detail::TypedReference<T, Impl>& a,
                              const ZTBase* b) noexcept
{
    return static_cast<const void*>(a.get()) == static_cast<const void*>(b);
}
template <class T, class Impl>
[[nodiscard]] bool operator==(const zt::detail::TypedReference<T, Impl>& a, std::nullptr_t) noexcept
{
    return a.get() == nullptr;
}

/// Hashes the object as it is now: null once it has died, so do not key a map by references to
/// objects that may die.
template <class T>
struct std::hash<ZTRef<T>> {
    std::size_t operator()(const ZTRef<T>& reference) const noexcept
    {
        return std::hash<T*>()(reference.get());
    }
};
template <class T>
struct std::hash<ZTStrongRef<T>> {
    std::size_t operator()(const ZTStrongRef<T>& reference) const noexcept
    {
        return std::hash<T*>()(reference.get());
    }
};

/// The order of keys in a container: any order, but one that stays as it is when an object dies or
/// moves. So objects that may die can be keys; `==` and `std::hash` look at the object.
template <class T>
struct std::less<ZTRef<T>> : zt::detail::ReferenceOrder {};
template <class T>
struct std::less<ZTStrongRef<T>> : zt::detail::ReferenceOrder {};
