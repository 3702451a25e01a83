#pragma once

#include <zintar/detail/values/containershapes.h>
#include <zintar/detail/values/shape.h>
#include <zintar/fwd.h>
#include <zintar/integers.h>

#include <string>
#include <type_traits>

/// @file
/// Which shape a type has. A shape is a constant of its type alone, so that every file of a program
/// finds the same one.

namespace zt::detail
{
/// Names a type to the function that `ZT_RECORD` declares beside it, or outside of all namespaces,
/// where the second argument has it looked for as well.
template <class T, class Global = ::ZTNone>
struct RecordOf {};

template <class T>
concept DeclaredRecord = requires
{
    ztRecordFields(RecordOf<T>());
};

template <class T>
inline constexpr bool isDeclaredRecord = DeclaredRecord<T>;

template <class T>
inline constexpr bool isReferenceType = false;
template <class T>
inline constexpr bool isReferenceType<ZTRef<T>> = true;
template <class T>
inline constexpr bool isReferenceType<ZTStrongRef<T>> = true;

/// The shapes of types without parts.
template <ZTKind::Value Kind, bool IsSigned = false, unsigned short Bits = 0>
inline constexpr Shape plainShape{{Kind, IsSigned, Bits}};

template <class Integer, ZTKind::Value Kind = ZTKind::Integer>
inline constexpr const Shape* integerShape =
    &plainShape<Kind, std::is_signed_v<Integer>, 8 * sizeof(Integer)>;

template <class T>
constexpr const Shape* shapeOfNumber()
{
    if constexpr (std::is_same_v<T, bool>)
        return &plainShape<ZTKind::Boolean>;
    else if constexpr (std::is_integral_v<T>)
        return integerShape<T>;
    else
        return &plainShape<ZTKind::Floating, true, 8 * sizeof(T)>;
}

template <class T>
inline constexpr SequenceShape sequenceShape = SequenceFunctions<T>::shape();
template <class T>
inline constexpr AssociationShape associationShape = AssociationFunctions<T>::shape();
template <class T>
inline constexpr OptionalShape optionalShape = OptionalFunctions<T>::shape();
template <class T>
inline constexpr RecordShape pairShape = PairFunctions<T>::shape();

/// Whether the type is a container to the library, by what it can do.
template <class T>
concept ContainerLike = std::is_class_v<T> && !DeclaredRecord<T> && isCopyable<T> &&
                        (SequenceLike<T> || AssociationLike<T> || OptionalLike<T> || PairLike<T>);

template <class T>
constexpr const Shape* shapeOfClass()
{
    if constexpr (std::is_same_v<T, std::string>)
        return &plainShape<ZTKind::Text>;
    else if constexpr (isReferenceType<T>)
        return &plainShape<ZTKind::Reference>;
    else if constexpr (DeclaredRecord<T>)
        return decltype(ztRecordFields(RecordOf<T>()))::shape();
    else if constexpr (!ContainerLike<T>)
        return nullptr;
    else if constexpr (SequenceLike<T>)
        return &sequenceShape<T>;
    else if constexpr (AssociationLike<T>)
        return &associationShape<T>;
    else if constexpr (OptionalLike<T>)
        return &optionalShape<T>;
    else
        return &pairShape<T>;
}

/// The shape of `T`; null for a type that keeps its parts to itself.
template <class T>
constexpr const Shape* shapeOf()
{
    if constexpr (std::is_void_v<T>)
        return &plainShape<ZTKind::Void>;
    else if constexpr (std::is_arithmetic_v<T>)
        return shapeOfNumber<T>();
    else if constexpr (std::is_enum_v<T>)
        return integerShape<std::underlying_type_t<T>, ZTKind::Enumeration>;
    else if constexpr (std::is_same_v<T, ZTLong> || std::is_same_v<T, ZTULong>)
        return shapeOfNumber<decltype(T::value)>();
    else if constexpr (std::is_class_v<T>)
        return shapeOfClass<T>();
    else
        return nullptr;
}
} // namespace zt::detail
