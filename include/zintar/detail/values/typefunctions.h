#pragma once

#include <zintar/datastream.h>
#include <zintar/detail/blocks.h>
#include <zintar/detail/values/abilities.h>
#include <zintar/detail/values/objectpointers.h>
#include <zintar/detail/values/shapes.h>
#include <zintar/metatype.h>

#include <concepts>
#include <cstdint>
#include <ostream>
#include <type_traits>
#include <utility>

/// @file
/// What the library can do with values of a C++ type, turned into the functions of a meta type.
/// A function that the type cannot have is a null pointer.

namespace zt::detail
{
template <class T>
inline constexpr bool isDataPointer =
    std::is_pointer_v<T> && !std::is_function_v<std::remove_pointer_t<T>>;

/// An integer on the stream that has the size and the sign of `T`, an enumeration's type.
template <class T>
using StreamInteger = std::conditional_t<
    sizeof(T) == 1, std::conditional_t<std::is_signed_v<T>, signed char, unsigned char>,
    std::conditional_t<
        sizeof(T) == 2, std::conditional_t<std::is_signed_v<T>, short, unsigned short>,
        std::conditional_t<
            sizeof(T) == 4, std::conditional_t<std::is_signed_v<T>, int, unsigned int>,
            std::conditional_t<std::is_signed_v<T>, long long, unsigned long long>>>>;

/// Passes as a stream to the operators that a host writes, and not to those of `containers.h`:
/// otherwise what a type can do would hang on whether a file includes that.
template <class Stream>
struct HostStream {
    operator Stream&() const;
};
template <class T>
using StreamOfOperators =
    std::conditional_t<ContainerLike<T>, HostStream<ZTDataStream>, ZTDataStream>;

template <class T>
concept OwnInsertion = requires(StreamOfOperators<T>& stream, const T& value)
{
    {
        stream << value
        } -> std::convertible_to<ZTDataStream&>;
};
template <class T>
concept Extraction = requires(StreamOfOperators<T>& stream, T& value)
{
    {
        stream >> value
        } -> std::convertible_to<ZTDataStream&>;
};
/// Stands for a `T`, and for nothing else.
template <class T>
struct OnlyThis {
    template <class U>
        requires std::same_as<U, T>
    operator U&() const;
};
/// Stands for what a `T` passes as: its base classes, and what it converts to.
template <class T>
struct OnlyOthers {
    template <class U>
        requires(!std::same_as<U, T> && std::convertible_to<T&, U&>)
    operator U&() const;
};
/// Whether an operator takes a `T` itself. One for a base class would leave the rest unread, and
/// nobody would notice. (A template that deduces takes neither of the two that stand for it.)
template <class T>
concept OwnExtraction = Extraction<T> &&(
    requires(StreamOfOperators<T>& stream) { stream >> OnlyThis<T>(); } ||
    !requires(StreamOfOperators<T> & stream) { stream >> OnlyOthers<T>(); });
template <class T>
concept Printable = requires(std::ostream& stream, const T& value)
{
    stream << value;
};

/// A descriptor's address says nothing to a reader, and a function's would print as true.
template <class T>
inline constexpr bool isPrintedAsAddress =
    isDataPointer<T> && !std::is_volatile_v<std::remove_pointer_t<T>> &&
    !std::is_same_v<std::remove_cv_t<std::remove_pointer_t<T>>, ZTMetaClass>;

/// How a variant in a variant compares with another: as its `==` and `<` tell, but without asking
/// twice at each depth.
[[nodiscard]] ZT_EXPORT ZTPartialOrdering compareNested(const ZTVariant& left,
                                                        const ZTVariant& right);

/// The functions of the meta type of `T`, and the blocks in which a variant holds its values.
template <class T>
struct TypeFunctions {
    template <class... Arguments>
    static void* make(Arguments&&... arguments)
    {
        return addressOf((new BlockOf<T>(std::forward<Arguments>(arguments)...))->value);
    }
    static void* makeCopy(const void* source) { return make(*static_cast<const T*>(source)); }
    static void* makeDefault() { return make(); }
    // The value is the first thing in its block.
    static void destroyBlock(void* block) { delete static_cast<BlockOf<T>*>(block); }

    static void assignValue(void* target, const void* source)
    {
        *static_cast<T*>(target) = *static_cast<const T*>(source);
    }

    /// Without one of the two a variant of the type may have no block, and say so with null.
    static constexpr bool mayLackBlock = !isCopyable<T> || !std::is_default_constructible_v<T>;

    static ZTPartialOrdering compareValues(const void* left, const void* right)
    {
        if (mayLackBlock && (!left || !right))
            return left == right ? ZTPartialOrdering::Equivalent : ZTPartialOrdering::Unordered;
        const T& a = *static_cast<const T*>(left);
        const T& b = *static_cast<const T*>(right);
        if constexpr (std::is_same_v<T, ZTVariant>) {
            return compareNested(a, b);
        } else if constexpr (isDataPointer<T>) {
            auto addressA = reinterpret_cast<std::uintptr_t>(a);
            auto addressB = reinterpret_cast<std::uintptr_t>(b);
            return addressA == addressB  ? ZTPartialOrdering::Equivalent
                   : addressA < addressB ? ZTPartialOrdering::Less
                                         : ZTPartialOrdering::Greater;
        } else if constexpr (hasOrder<T>) {
            return a == b  ? ZTPartialOrdering::Equivalent
                   : a < b ? ZTPartialOrdering::Less
                           : ZTPartialOrdering::Greater;
        } else {
            return a == b ? ZTPartialOrdering::Equivalent : ZTPartialOrdering::Unordered;
        }
    }

    static void write(ZTDataStream& stream, const void* source)
    {
        if (mayLackBlock && !source)
            return;
        const T& value = *static_cast<const T*>(source);
        if constexpr (std::is_pointer_v<T>)
            stream << (value != nullptr);
        else if constexpr (std::is_enum_v<T>)
            stream << static_cast<StreamInteger<std::underlying_type_t<T>>>(value);
        else
            stream << value;
    }

    static void read(ZTDataStream& stream, void* target)
    {
        T& value = *static_cast<T*>(target);
        if constexpr (std::is_enum_v<T>) {
            auto number = static_cast<StreamInteger<std::underlying_type_t<T>>>(value);
            stream >> number;
            value = static_cast<T>(static_cast<std::underlying_type_t<T>>(number));
        } else {
            stream >> value;
        }
    }

    static void printValue(std::ostream& stream, const void* source)
    {
        if (mayLackBlock && !source)
            return;
        const T& value = *static_cast<const T*>(source);
        if constexpr (isDataPointer<T>)
            stream << static_cast<const void*>(value);
        else
            stream << value;
    }

    static constexpr CreateFunction create()
    {
        if constexpr (isCopyable<T>)
            return &makeCopy;
        else
            return nullptr;
    }
    static constexpr CreateDefaultFunction createDefault()
    {
        if constexpr (std::is_default_constructible_v<T>)
            return &makeDefault;
        else
            return nullptr;
    }
    static constexpr DestroyFunction destroy()
    {
        if constexpr (std::is_destructible_v<T>)
            return &destroyBlock;
        else
            return nullptr;
    }
    static constexpr AssignFunction assign()
    {
        if constexpr (std::is_trivially_copyable_v<T> && std::is_copy_assignable_v<T>)
            return &assignValue;
        else
            return nullptr;
    }
    static constexpr CompareFunction compare()
    {
        if constexpr (hasEquality<T>)
            return &compareValues;
        else
            return nullptr;
    }
    static constexpr bool isWritten = std::is_pointer_v<T> || std::is_enum_v<T> || OwnInsertion<T>;
    // What is read goes into a default value.
    static constexpr bool isRead = !std::is_pointer_v<T> && std::is_default_constructible_v<T> &&
                                   (std::is_enum_v<T> || OwnExtraction<T>);

    static constexpr SerializeFunction serialize()
    {
        if constexpr (isWritten)
            return &write;
        else
            return nullptr;
    }
    static constexpr DeserializeFunction deserialize()
    {
        if constexpr (isRead)
            return &read;
        else
            return nullptr;
    }
    static constexpr PrintFunction print()
    {
        if constexpr (std::is_pointer_v<T> ? isPrintedAsAddress<T> : Printable<T>)
            return &printValue;
        else
            return nullptr;
    }
};

/// What finds the class that a pointer type points to, for a pointer to an object class; otherwise
/// null. The class is not asked for here: classes name each other in the types of their members.
template <class T>
constexpr ClassFunction findClassOfPointer()
{
    if constexpr (std::is_pointer_v<T>) {
        using Pointee = std::remove_cv_t<std::remove_pointer_t<T>>;
        if constexpr (std::is_class_v<Pointee> && !std::is_same_v<Pointee, ZTMetaClass>) {
            static_assert(Complete<Pointee>,
                          "The class behind a pointer type must be complete where the type is "
                          "used as a value: include its header, so that the library can see "
                          "whether it is an object class.");
            if constexpr (std::is_base_of_v<ZTBase, Pointee>)
                return &classOf<Pointee>;
        }
    }
    return nullptr;
}
} // namespace zt::detail
