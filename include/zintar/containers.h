#pragma once

#include <zintar/datastream.h>
#include <zintar/detail/values/containerforms.h>
#include <zintar/detail/values/typefunctions.h>
#include <zintar/integers.h>
#include <zintar/metatypeof.h>

#include <concepts>
#include <type_traits>

/// @file
/// Stream and print forms of the containers of the standard library, and of all that work alike:
/// sequences, associations, optionals and pairs, however deep. `docs/formats.md` has the bytes.
///
///     stream << std::vector<std::string>{"hall", "porch"};
///     std::cout << ZTVariant(std::map<int, bool>{{1, true}}); // ZTVariant(..., {1: 1})
///
/// The operators serve the containers themselves. Beyond that this header, once a single file of a
/// process includes it, gives a form to every variant that holds such a container, wherever its
/// type was registered; so `zintar.h` leaves it out. Operators that a host has for a container come
/// first. An element may be whatever streams or prints in a variant, and any record.
///
/// Threads: as those of the stream.

namespace zt::detail
{
inline const bool containerFormsAreInUse = (useContainerForms(), true);

/// Whether the parts have a form on the stream, too.
template <template <class> class Test, class T, class... Outer>
constexpr bool streams()
{
    if constexpr ((std::is_same_v<T, Outer> || ...) || Test<T>::alone) {
        return true;
    } else if constexpr (!Test<T>::byParts()) {
        return false;
    } else if constexpr (DeclaredRecord<T>) {
        return decltype(ztRecordFields(RecordOf<T>()))::template stream<Test, T, Outer...>();
    } else if constexpr (!ContainerLike<T>) {
        return false;
    } else if constexpr (AssociationLike<T>) {
        return streams<Test, typename T::key_type, T, Outer...>() &&
               streams<Test, typename T::mapped_type, T, Outer...>();
    } else if constexpr (PairLike<T>) {
        return streams<Test, std::remove_const_t<typename T::first_type>, T, Outer...>() &&
               streams<Test, std::remove_const_t<typename T::second_type>, T, Outer...>();
    } else {
        return streams<Test, std::remove_const_t<typename T::value_type>, T, Outer...>();
    }
}

// What a type can do alone, and whether it could by its parts.

template <class T>
struct IsWritten {
    // That one has no form, though it passes as the integer that it holds.
    static constexpr bool alone =
        TypeFunctions<Canonical<T>>::isWritten && !std::is_same_v<T, ZTULong>;
    static constexpr bool byParts() { return true; }
};
template <class T>
struct IsRead {
    static constexpr bool alone = TypeFunctions<Canonical<T>>::isRead;
    static constexpr bool byParts()
    {
        if constexpr (DeclaredRecord<T> || ContainerLike<T>)
            return shapeOf<T>()->canFill;
        else
            return false;
    }
};
} // namespace zt::detail

/// Writes the container element by element. Cost: a call through a pointer for each.
template <std::derived_from<ZTDataStream> Stream, zt::detail::ContainerLike T>
    requires(!zt::detail::OwnInsertion<T>)
ZTDataStream& operator<<(Stream& stream, const T& container)
{
    constexpr bool streams = zt::detail::streams<zt::detail::IsWritten, T>();
    static_assert(streams, "A container is written element by element, and one of what is in it "
                           "has no operator<< on ZTDataStream.");
    if constexpr (streams)
        zt::detail::writeContainer(stream, ztMetaType<T>(), zt::detail::addressOf(container));
    return stream;
}

/// Reads a container in place of the one that is there, which stays as it was when the stream does
/// not hold all of the new one: then the stream fails. A number of elements that exceeds the bytes
/// which the stream still holds is refused at once, so no memory is taken for it.
template <std::derived_from<ZTDataStream> Stream, zt::detail::ContainerLike T>
    requires(!zt::detail::OwnExtraction<T>)
ZTDataStream& operator>>(Stream& stream, T& container)
{
    constexpr bool streams = zt::detail::streams<zt::detail::IsRead, T>();
    static_assert(streams, "A container is read element by element, and one of what is in it has "
                           "no operator>> on ZTDataStream, or no default value.");
    if constexpr (streams)
        zt::detail::readContainer(stream, ztMetaType<T>(), zt::detail::addressOf(container));
    return stream;
}
