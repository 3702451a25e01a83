#pragma once

#include <zintar/detail/values/abilities.h>
#include <zintar/detail/values/objectpointers.h>
#include <zintar/detail/values/shape.h>
#include <zintar/integers.h>

#include <concepts>
#include <cstddef>
#include <new>
#include <string_view>
#include <type_traits>
#include <utility>

/// @file
/// The functions behind the shapes of containers and of fields. Containers are known by what they
/// can do, and none of their headers is included here.

template <class T>
const ZTMetaType& ztMetaType();

namespace zt::detail
{
// Elements.

template <class E>
constexpr bool pointsToIncomplete()
{
    using Pointee = std::remove_pointer_t<E>;
    if constexpr (std::is_pointer_v<E> && std::is_class_v<Pointee>)
        return !Complete<Pointee>;
    else
        return false;
}

/// What can be an element of its own: a value that a variant holds.
template <class E>
concept Element = std::is_object_v<E> && !std::is_array_v<E> && !std::is_volatile_v<E> &&
                  !pointsToIncomplete<E>() && std::is_destructible_v<E> && isCopyable<E>;

/// Whether elements are shown where they are.
template <class Reference, class E>
inline constexpr bool isInPlace =
    std::is_lvalue_reference_v<Reference>&& std::is_same_v<Canonical<E>, E>;

/// What a container gives for an element of type `E`: the element, or what stands for a number.
template <class Reference, class E>
concept ShowsElement = (std::is_lvalue_reference_v<Reference> &&
                        std::is_same_v<std::remove_cvref_t<Reference>, E>) ||
                       (std::is_arithmetic_v<E> && sizeof(E) <= sizeof(Scratch) &&
                        std::is_convertible_v<Reference, E>);

template <class E, class Reference>
const void* show(Reference&& element, [[maybe_unused]] Scratch& scratch)
{
    if constexpr (isInPlace<Reference, E>)
        return __builtin_addressof(element);
    else
        return new (scratch.bytes) Canonical<E>(static_cast<E>(element));
}

template <class E>
decltype(auto) takeElement(void* value)
{
    if constexpr (std::is_same_v<Canonical<E>, E>)
        return std::move(*static_cast<E*>(value));
    else
        return static_cast<E>(*static_cast<Canonical<E>*>(value));
}

/// The key in the form of the container.
template <class E>
decltype(auto) asElement(const void* value)
{
    if constexpr (std::is_same_v<Canonical<E>, E>)
        return *static_cast<const E*>(value);
    else
        return static_cast<E>(*static_cast<const Canonical<E>*>(value));
}

template <class T>
void moveValue(void* target, void* source)
{
    *static_cast<T*>(target) = std::move(*static_cast<T*>(source));
}

template <class T>
constexpr auto moveFunction() -> void (*)(void*, void*)
{
    if constexpr (std::is_move_assignable_v<T>)
        return &moveValue<T>;
    else
        return nullptr;
}

// Iterators.

template <class T>
using IteratorOf = decltype(std::declval<const T&>().begin());

template <class T>
concept Walkable = requires(const T& container)
{
    typename T::value_type;
    container.begin();
    container.end();
    {
        container.size()
        } -> std::convertible_to<std::size_t>;
}
&&requires(IteratorOf<T> iterator)
{
    *iterator;
    ++iterator;
}
&&sizeof(IteratorOf<T>) <= sizeof(Cursor::iterator) &&
    alignof(IteratorOf<T>) <= alignof(void*) && std::is_trivially_destructible_v<IteratorOf<T>>;

template <class T>
concept SequenceLike = Walkable<T> && !IsMap<T> && !requires
{
    typename T::traits_type; // a text
}
&&!std::same_as<typename T::value_type, T> && Element<typename T::value_type> &&
    ShowsElement<decltype(*std::declval<IteratorOf<T>&>()), typename T::value_type>;

template <class T>
concept AssociationLike = Walkable<T> && IsMap<T> &&
    requires(const T& container, IteratorOf<T> iterator, const typename T::key_type& key)
{
    {
        iterator->first
        } -> std::same_as<const typename T::key_type&>;
    {
        container.find(key)
        } -> std::same_as<IteratorOf<T>>;
    iterator->second;
} && !std::same_as<typename T::mapped_type, T> && Element<typename T::key_type> &&
    Element<typename T::mapped_type>;

template <class T>
concept OptionalLike = MayHoldOne<T> && requires(T& optional)
{
    *optional;
    optional.reset();
} && Element<typename T::value_type> &&
    std::same_as < std::remove_cvref_t<decltype(*std::declval<T&>())>,
typename T::value_type > ;

template <class T>
concept PairLike = requires(T& pair)
{
    typename T::first_type;
    typename T::second_type;
    {
        pair.first
        } -> std::same_as<typename T::first_type&>;
    {
        pair.second
        } -> std::same_as<typename T::second_type&>;
}
&&Element<std::remove_const_t<typename T::first_type>>&&
    Element<std::remove_const_t<typename T::second_type>>;

/// What any shape begins with.
template <class T>
constexpr Shape shapeOfKind(ZTKind::Value kind, bool canFillParts)
{
    return {{kind},
            moveFunction<T>(),
            canFillParts && std::is_default_constructible_v<T> && std::is_move_assignable_v<T>};
}

template <class T>
struct Walk {
    using Iterator = IteratorOf<T>;

    static std::size_t size(const void* container)
    {
        return static_cast<std::size_t>(static_cast<const T*>(container)->size());
    }
    static void begin(const void* container, Cursor& cursor)
    {
        new (cursor.iterator) Iterator(static_cast<const T*>(container)->begin());
    }
    static Iterator& at(Cursor& cursor)
    {
        return *std::launder(static_cast<Iterator*>(static_cast<void*>(cursor.iterator)));
    }
    /// The iterator of a place, counted from the nearer end where the container can do so.
    template <class Container>
    static auto iteratorAt(Container& container, std::size_t index)
    {
        auto iterator = container.begin();
        if constexpr (requires { iterator + std::ptrdiff_t(); }) {
            return iterator + static_cast<std::ptrdiff_t>(index);
        } else {
            if (index == static_cast<std::size_t>(container.size()))
                return container.end();
            for (; index > 0; --index)
                ++iterator;
            return iterator;
        }
    }
};

template <class T>
struct SequenceFunctions : Walk<T> {
    using E = typename T::value_type;
    using Known = Canonical<E>;
    using ReferenceToConst = decltype(*std::declval<IteratorOf<T>&>());
    using Reference = decltype(*std::declval<T&>().begin());

    static T& of(void* sequence) { return *static_cast<T*>(sequence); }

    static const void* next(Cursor& cursor)
    {
        auto& iterator = Walk<T>::at(cursor);
        const void* element = show<E, ReferenceToConst>(*iterator, cursor.scratch);
        ++iterator;
        return element;
    }
    static const void* at(const void* sequence, std::size_t index, Scratch& scratch)
    {
        const T& container = *static_cast<const T*>(sequence);
        return show<E, ReferenceToConst>(*Walk<T>::iteratorAt(container, index), scratch);
    }
    static void set(void* sequence, std::size_t index, void* value)
    {
        *Walk<T>::iteratorAt(of(sequence), index) = takeElement<E>(value);
    }
    static void insertAt(void* sequence, std::size_t index, void* value)
    {
        T& container = of(sequence);
        container.insert(Walk<T>::iteratorAt(container, index), takeElement<E>(value));
    }
    static void insertSomewhere(void* sequence, std::size_t, void* value)
    {
        of(sequence).insert(takeElement<E>(value));
    }
    static void erase(void* sequence, std::size_t index)
    {
        T& container = of(sequence);
        container.erase(Walk<T>::iteratorAt(container, index));
    }
    static void clear(void* sequence) { of(sequence).clear(); }

    /// A container that orders its elements, or hashes them.
    static constexpr bool isSet = requires { typename T::key_type; };
    static constexpr bool canSet = !isSet && requires(Reference reference, E element)
    {
        static_cast<Reference&&>(reference) = std::move(element);
    };
    /// A row has to move its elements about; that it could not only tells when it is compiled.
    static constexpr bool isMovedAbout = std::is_move_assignable_v<E>;
    static constexpr bool canInsert = []() {
        if constexpr (isSet)
            return requires(T & container, E element) { container.insert(std::move(element)); };
        else
            return isMovedAbout && requires(T & container, E element)
            {
                container.insert(container.begin(), std::move(element));
            };
    }();
    static constexpr bool canErase = (isSet || isMovedAbout) && requires(T & container)
    {
        container.erase(container.begin());
        container.clear();
    };
    static constexpr bool isInRow = isInPlace<ReferenceToConst, E> && requires(const T& container)
    {
        {
            container.data()
            } -> std::convertible_to<const E*>;
    };

    static constexpr bool canFill = IsTuple<T> ? canSet : canInsert && canErase;

    static constexpr auto insertFunction() -> void (*)(void*, std::size_t, void*)
    {
        if constexpr (!canInsert)
            return nullptr;
        else if constexpr (isSet)
            return &insertSomewhere;
        else
            return &insertAt;
    }
    static constexpr auto setFunction() -> void (*)(void*, std::size_t, void*)
    {
        if constexpr (canSet)
            return &set;
        else
            return nullptr;
    }
    static constexpr SequenceShape shape()
    {
        SequenceShape made{};
        static_cast<Shape&>(made) = shapeOfKind<T>(ZTKind::Sequence, canFill);
        made.elementType = &::ztMetaType<Known>;
        made.stride = isInRow ? sizeof(E) : 0;
        made.hasPositions = !isSet;
        made.isFixed = IsTuple<T>;
        made.size = &Walk<T>::size;
        made.begin = &Walk<T>::begin;
        made.next = &next;
        made.at = &at;
        made.set = setFunction();
        made.insert = insertFunction();
        if constexpr (canErase) {
            made.erase = &erase;
            made.clear = &clear;
        }
        return made;
    }
};

template <class T>
struct AssociationFunctions : Walk<T> {
    using Key = typename T::key_type;
    using Value = typename T::mapped_type;
    using ReferenceToConst = const Value&;

    static T& of(void* association) { return *static_cast<T*>(association); }

    static Entry next(Cursor& cursor)
    {
        auto& iterator = Walk<T>::at(cursor);
        const Entry entry{show<Key, const Key&>(iterator->first, cursor.scratch),
                          show<Value, const Value&>(iterator->second, cursor.second)};
        ++iterator;
        return entry;
    }
    static const void* find(const void* association, const void* key, Scratch& scratch)
    {
        const T& container = *static_cast<const T*>(association);
        const auto found = container.find(asElement<Key>(key));
        if (found == container.end())
            return nullptr;
        return show<Value, const Value&>(found->second, scratch);
    }
    static void add(void* association, void* key, void* value)
    {
        of(association).emplace(takeElement<Key>(key), takeElement<Value>(value));
    }
    static bool replace(void* association, const void* key, void* value)
    {
        T& container = of(association);
        const auto found = container.find(asElement<Key>(key));
        if (found != container.end())
            found->second = takeElement<Value>(value);
        return found != container.end();
    }
    static bool erase(void* association, const void* key)
    {
        T& container = of(association);
        const auto found = container.find(asElement<Key>(key));
        const bool isThere = found != container.end();
        if (isThere)
            container.erase(found);
        return isThere;
    }
    static void clear(void* association) { of(association).clear(); }

    static constexpr bool canChange = requires(T & container, Key key, Value value)
    {
        container.emplace(std::move(key), std::move(value));
        container.find(key)->second = std::move(value);
        container.erase(container.find(key));
        container.clear();
    };

    static constexpr AssociationShape shape()
    {
        AssociationShape made{};
        static_cast<Shape&>(made) = shapeOfKind<T>(ZTKind::Association, canChange);
        made.keyType = &::ztMetaType<Canonical<Key>>;
        made.valueType = &::ztMetaType<Canonical<Value>>;
        made.size = &Walk<T>::size;
        made.begin = &Walk<T>::begin;
        made.next = &next;
        made.find = &find;
        if constexpr (canChange) {
            made.add = &add;
            made.replace = &replace;
            made.erase = &erase;
            made.clear = &clear;
        }
        return made;
    }
};

template <class T>
struct OptionalFunctions {
    using V = typename T::value_type;

    static const void* get(const void* optional, Scratch& scratch)
    {
        const T& holder = *static_cast<const T*>(optional);
        return holder.has_value() ? show<V, const V&>(*holder, scratch) : nullptr;
    }
    static void set(void* optional, void* value)
    {
        *static_cast<T*>(optional) = takeElement<V>(value);
    }
    static void reset(void* optional) { static_cast<T*>(optional)->reset(); }

    static constexpr OptionalShape shape()
    {
        OptionalShape made{};
        static_cast<Shape&>(made) = shapeOfKind<T>(ZTKind::Optional, std::is_assignable_v<T&, V>);
        made.valueType = &::ztMetaType<Canonical<V>>;
        made.get = &get;
        if constexpr (std::is_assignable_v<T&, V>)
            made.set = &set;
        made.reset = &reset;
        return made;
    }
};

/// One field, by a pointer to it.
template <class T, auto Member>
struct FieldFunctions {
    using Declared = std::remove_reference_t<decltype(std::declval<T&>().*Member)>;
    using F = std::remove_const_t<Declared>;
    static constexpr bool canSet = std::is_assignable_v<Declared&, F>;

    static const void* get(const void* record, Scratch& scratch)
    {
        return show<F, const F&>(static_cast<const T*>(record)->*Member, scratch);
    }
    static void set(void* record, void* value)
    {
        static_cast<T*>(record)->*Member = takeElement<F>(value);
    }
    static constexpr RecordField field(std::string_view name)
    {
        RecordField made{name, &::ztMetaType<Canonical<F>>, &get, nullptr};
        if constexpr (canSet)
            made.set = &set;
        return made;
    }
};

template <class T>
struct PairFunctions {
    using First = FieldFunctions<T, &T::first>;
    using Second = FieldFunctions<T, &T::second>;

    static constexpr RecordField fields[] = {First::field("first"), Second::field("second")};
    static constexpr RecordShape shape()
    {
        return {shapeOfKind<T>(ZTKind::Record, First::canSet && Second::canSet), fields, 2, false};
    }
};
} // namespace zt::detail
