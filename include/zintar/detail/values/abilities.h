#pragma once

#include <concepts>
#include <cstddef>
#include <type_traits>
#include <utility>

/// @file
/// Whether values of a type can be copied and compared.
///
/// Asking the type is not enough. A container, a tuple and a variant of the standard library, and
/// most that are written after them, claim to be able to do it whatever is in them, and the
/// compiler fails when it is put to the test. So what is in them is asked as well: of instances of
/// class templates alone, since any other class speaks for itself.

namespace zt::detail
{
template <class... T>
struct TypeList {};

/// An instance of a class template, with the types among its arguments.
template <class T, class... Arguments>
struct TemplateInstance {
    using type = T;
};

// What `T` is an instance of, or derives from. A value among the arguments may stand second.
template <template <class...> class Template, class... Arguments>
TemplateInstance<Template<Arguments...>, Arguments...> instanceOf(const Template<Arguments...>*);
template <template <class, auto, class...> class Template, class First, auto Value, class... Others>
TemplateInstance<Template<First, Value, Others...>, First, Others...>
instanceOf(const Template<First, Value, Others...>*);

template <class T>
concept HasInstance = std::is_class_v<T> && requires(const T* value)
{
    instanceOf(value);
};

template <class T>
concept HasElements = requires(const T& container)
{
    typename T::value_type;
    container.begin();
    container.end();
};
template <class T>
concept IsAdaptor = requires
{
    typename T::value_type;
    typename T::container_type;
};
template <class T>
concept MayHoldOne = requires(const T& optional)
{
    typename T::value_type;
    optional.has_value();
};
template <class T>
concept HoldsOneOfSeveral = requires(const T& variant)
{
    variant.valueless_by_exception();
};
template <class T>
concept IsTuple = requires
{
    std::tuple_size<T>::value;
};
template <class T>
concept IsMap = requires
{
    typename T::mapped_type;
};

template <class Tuple, std::size_t... I>
TypeList<std::tuple_element_t<I, Tuple>...> elementsOf(std::index_sequence<I...>);

/// The types of which values of the instance consist, so that they decide what it can do.
template <class T, class... Arguments>
constexpr auto partsOf(TemplateInstance<T, Arguments...>)
{
    if constexpr (HasElements<T> || IsAdaptor<T> || MayHoldOne<T>) {
        // Of another type than the arguments say, it is no mere container.
        using Value = typename T::value_type;
        if constexpr (IsMap<T> || (std::is_same_v<Value, Arguments> || ...))
            return TypeList<Value>();
        else
            return TypeList<>();
    } else if constexpr (HoldsOneOfSeveral<T>) {
        return TypeList<Arguments...>();
    } else if constexpr (IsTuple<T>) {
        return decltype(elementsOf<T>(std::make_index_sequence<std::tuple_size<T>::value>()))();
    } else {
        return TypeList<>();
    }
}

/// Passes as a `T`, and not as one of its base classes.
template <class T>
struct JustThis {
    template <class U>
        requires std::same_as<U, T>
    operator const U&() const;
};

template <class T>
concept Equal = requires(const T& a, const T& b)
{
    {
        a == b
        } -> std::convertible_to<bool>;
};
template <class T>
concept Ordered = requires(const T& a, const T& b)
{
    {
        a < b
        } -> std::convertible_to<bool>;
};
template <class T>
concept HasOwnEqual = requires(const T& a, const JustThis<T>& b)
{
    a == b;
}
|| requires(const JustThis<T>& a, const JustThis<T>& b) { a == b; };
template <class T>
concept HasOwnOrder = requires(const T& a, const JustThis<T>& b)
{
    a < b;
}
|| requires(const JustThis<T>& a, const JustThis<T>& b) { a < b; };

// What is asked of a type that is, or derives from, `Instance`. Where the answer is `own` it does
// not hang on what is in there: a class that derives from a container may compare by itself, and a
// view copies nothing of what it shows.

template <class T>
struct TestEqual {
    static constexpr bool value = Equal<T>;
    template <class Instance>
    static constexpr bool own = !std::is_same_v<T, Instance> && HasOwnEqual<T>;
};
template <class T>
struct TestLess {
    static constexpr bool value = Ordered<T>;
    template <class Instance>
    static constexpr bool own = !std::is_same_v<T, Instance> && HasOwnOrder<T>;
};
template <class T>
struct TestCopy {
    static constexpr bool value = std::is_copy_constructible_v<T>;
    template <class Instance>
    static constexpr bool own = std::is_trivially_copyable_v<T>;
};

template <template <class> class Test, class T, class... Outer>
constexpr bool holdsThroughout();

template <template <class> class Test, class... Outer, class... Parts>
constexpr bool holdsForAll(TypeList<Parts...>)
{
    return (holdsThroughout<Test, std::remove_cv_t<Parts>, Outer...>() && ...);
}

/// Whether `Test` holds for `T` and for what it contains. `Outer` are the types that contain `T`,
/// which a class may do for itself.
template <template <class> class Test, class T, class... Outer>
constexpr bool holdsThroughout()
{
    if constexpr ((std::is_same_v<T, Outer> || ...)) {
        return true;
    } else if constexpr (!Test<T>::value) {
        return false;
    } else if constexpr (HasInstance<T>) {
        using Instance = decltype(instanceOf(static_cast<const T*>(nullptr)));
        if constexpr (Test<T>::template own<typename Instance::type>)
            return true;
        else
            return holdsForAll<Test, T, Outer...>(partsOf(Instance()));
    } else {
        return true;
    }
}

template <class T, class... Outer>
constexpr bool isRecursive();

template <class... Outer, class... Parts>
constexpr bool isAnyRecursive(TypeList<Parts...>)
{
    return (isRecursive<std::remove_cv_t<Parts>, Outer...>() || ...);
}

/// Whether something in `T` contains itself, like a variant that may hold a vector of its own kind.
template <class T, class... Outer>
constexpr bool isRecursive()
{
    if constexpr ((std::is_same_v<T, Outer> || ...))
        return true;
    else if constexpr (HasInstance<T>)
        return isAnyRecursive<T, Outer...>(
            partsOf(decltype(instanceOf(static_cast<const T*>(nullptr)))()));
    else
        return false;
}

template <class T>
constexpr bool comparesByOrder()
{
    // The mere question for `<` may have no end then, and not compile.
    if constexpr (isRecursive<T>())
        return HasOwnOrder<T>;
    else
        return holdsThroughout<TestLess, T>();
}

template <class T>
inline constexpr bool isCopyable = holdsThroughout<TestCopy, T>();
template <class T>
inline constexpr bool hasEquality = holdsThroughout<TestEqual, T>();
template <class T>
inline constexpr bool hasOrder = comparesByOrder<T>();
} // namespace zt::detail
