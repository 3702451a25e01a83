#pragma once

#include <zintar/fwd.h>
#include <zintar/metatypeof.h>

#include <cstddef>
#include <initializer_list>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

/// @file
/// As what a variant holds what a host gives it.

namespace zt::detail
{
template <class T>
inline constexpr bool isText = std::is_same_v<T, const char*> || std::is_same_v<T, char*> ||
                               std::is_same_v<T, std::string_view>;

/// The type as which a variant holds a value of type `T`: text is held as a `std::string`, since
/// a variant outlives what a view looks at.
template <class T>
using ValueType =
    std::conditional_t<isText<std::decay_t<T>>, std::string, Canonical<std::decay_t<T>>>;

struct Lending;

template <class T>
concept VariantValue = !std::is_same_v<std::remove_cvref_t<T>, ZTVariant>;

/// What a variant is compared with as a value, and not as a variant.
template <class T>
concept ComparedValue =
    VariantValue<T> && !std::is_convertible_v<const T&, const ZTVariant&> && !std::is_void_v<T>;

/// Whether the variant holds that value.
template <class T>
bool isEqual(const ZTVariant& variant, const T& given);

template <class T>
inline constexpr bool isInitializerList = false;
template <class T>
inline constexpr bool isInitializerList<std::initializer_list<T>> = true;

/// The text in an array, which nothing needs to end but the array.
template <std::size_t Size>
std::string_view textIn(const char (&array)[Size])
{
    const char* end = std::char_traits<char>::find(array, Size, '\0');
    return {array, end ? static_cast<std::size_t>(end - array) : Size};
}

/// What a host wrote, as the value that a variant holds; a null text is an empty one.
template <class T>
decltype(auto) asValue(T&& value)
{
    if constexpr (std::is_array_v<std::remove_reference_t<T>> && isText<std::decay_t<T>>) {
        return textIn(value);
    } else if constexpr (std::is_pointer_v<std::decay_t<T>> && isText<std::decay_t<T>>) {
        const char* text = value;
        return text ? text : "";
    } else if constexpr (!std::is_same_v<std::decay_t<T>, ValueType<T>>) {
        return static_cast<ValueType<T>>(value);
    } else {
        return std::forward<T>(value);
    }
}

/// The value in memory that the functions of its type can destroy.
template <class Value, class Source>
void* makeValue(const ZTMetaType& type, Source&& source)
{
    // The library itself registers the built-in types.
    if constexpr (!std::is_arithmetic_v<Value> && !std::is_same_v<Value, std::string>) {
        if (!knownToBeInBlocks<Value>.load(std::memory_order_relaxed)) [[unlikely]] {
            const Value& value = source;
            return type.create(addressOf(value));
        }
    }
    return TypeFunctions<Value>::make(std::forward<Source>(source));
}

/// Tells the mistakes of a host that makes a variant from a `T`.
template <class T>
constexpr void assertHoldable()
{
    using Given = std::remove_reference_t<T>;
    using Value = ValueType<T>;
    static_assert(!std::is_array_v<Given> || isText<std::decay_t<T>>,
                  "A variant cannot hold an array, nor text of other characters than char: use a "
                  "std::array, a std::vector or a string.");
    static_assert(!isInitializerList<Value>,
                  "A variant cannot hold a std::initializer_list, which does not own what is in "
                  "it: use a std::vector.");
    static_assert(!std::is_same_v<Value, void*>,
                  "A variant cannot hold a void*: the type says nothing of what it points to. Use "
                  "a pointer to a class, or a type of your own around it.");
    static_assert(isCopyable<Value>,
                  "A variant copies what it holds: the type of the value must be copyable.");
}
} // namespace zt::detail
