#pragma once

#include <zintar/export.h>
#include <zintar/metatypeof.h>
#include <zintar/variant.h>

#include <optional>
#include <string>
#include <string_view>
#include <type_traits>

/// @file
/// How a typed value comes out of a variant: as it is, by a registered converter, or, for pointers
/// to objects, along the class tree.

namespace zt::detail
{
/// The type of which a value is retrieved when a host asks for `T`.
template <class T>
using RetrievedType = std::remove_cv_t<std::remove_reference_t<T>>;

/// The name of the asked type in a message: the reference is gone, the `const` of a value stays.
template <class T>
constexpr std::string_view askedName()
{
    using Asked = std::remove_reference_t<T>;
    if constexpr (std::is_pointer_v<Asked>)
        return ztTypeName<std::remove_const_t<Asked>>();
    else
        return ztTypeName<Asked>();
}

/// Logs that a default value stands in for what an invalid variant does not hold.
ZT_EXPORT void warnInvalidVariant(std::string_view askedType);
/// Logs that a default value stands in for what cannot be made of a value of type `from`.
ZT_EXPORT void warnFailedConversion(std::string_view askedType, const ZTMetaType& from);

/// Whether a pointer of the one type is handed on as one of the other, by the relation of their
/// classes.
[[nodiscard]] ZT_EXPORT bool comesAlongClassTree(const ZTMetaType& from, const ZTMetaType& to);

/// Whether the class tree relates the two types, pointers or references; as
/// `can_convert_meta_class` tells it of pointers.
bool classTreeSettles(const ZTMetaType& from, const ZTMetaType& to, bool& yieldsNull);

/// Whether the variant holds a pointer or a reference to an object, and to which one.
/// @param object  written when the result is true
[[nodiscard]] ZT_EXPORT bool hasObject(const ZTVariant& variant, void*& object);
/// Whether the variant holds a pointer or a reference to an object that is not null.
[[nodiscard]] ZT_EXPORT bool holdsPointer(const ZTVariant& variant);

/// Converts the variant's value into `*result` by a registered converter, or logs that a default
/// value takes its place.
ZT_EXPORT bool convertOrWarn(const ZTVariant& variant, const ZTMetaType& target, void* result,
                             std::string_view askedType);

/// The pointer that a variant of another type than `target` gives: by `nonConst`, the same
/// pointer type without the `const` of the pointee, if there is one; or by the class tree.
/// @return false when there is no such relation, with `result` untouched
bool retrieveRelated(const ZTVariant& variant, const ZTMetaType& target, const ZTMetaType* nonConst,
                     void*& result);
/// The same, or by a registered converter.
ZT_EXPORT bool retrievePointer(const ZTVariant& variant, const ZTMetaType& target,
                               const ZTMetaType* nonConst, void*& result,
                               std::string_view askedType);

/// The value of a variant that holds exactly a `Value`; null where it does not, or where that type
/// was never asked for.
template <class Value>
const Value* heldAs(const ZTVariant& variant)
{
    bool holds = &variant.type() == knownType<Value>.load(std::memory_order_acquire);
    return holds ? static_cast<const Value*>(variant.data()) : nullptr;
}

/// Text that somebody else keeps: retrieved, it looks into the variant.
template <class T>
inline constexpr bool isTextView =
    std::is_same_v<T, std::string_view> || std::is_same_v<T, const char*>;

template <class View>
View textOf(const std::string& text)
{
    if constexpr (std::is_pointer_v<View>)
        return text.c_str();
    else
        return text;
}

/// What is in an optional for which a value may stand; otherwise void.
template <class T>
struct OptionalValue {
    using type = void;
};
template <class T>
    requires(isCopyable<T> && !std::is_pointer_v<T> && std::is_same_v<T, std::decay_t<T>>)
struct OptionalValue<std::optional<T>> {
    using type = T;
};

/// What a retrieval gives.
template <class Value>
struct Retrieved {
    Value value;
    bool found; ///< no default value stands in, for a reason that is logged
};

/// A reference to the object to which the variant has a pointer or a reference. Unlike a pointer,
/// which is handed on by the relation of the classes, the object has to be one of the class.
template <class Reference>
Retrieved<Reference> retrieveReference(const ZTVariant& variant, std::string_view askedType)
{
    using Class = typename ReferredClass<Reference>::type;
    const ZTMetaType& target = ::ztMetaType<Reference>();
    void* object = nullptr;
    // A converter of the host knows better.
    if (variant.type().canConvert(target) || !hasObject(variant, object)) {
        Retrieved<Reference> result{Reference(), false};
        result.found = convertOrWarn(variant, target, addressOf(result.value), askedType);
        return result;
    }
    auto* referred = dynamic_cast<Class*>(static_cast<ZTBase*>(object));
    if (object && !referred) {
        warnFailedConversion(askedType, variant.type());
        return {Reference(), false};
    }
    return {Reference(referred), true};
}

/// The value that the variant holds, or that it converts to, in an optional.
template <class Optional>
bool retrieveInto(Optional& result, const ZTVariant& variant)
{
    using Value = typename Optional::value_type;
    using Known = Canonical<Value>;
    const ZTMetaType& target = ::ztMetaType<Known>();
    if (const Known* held = heldAs<Known>(variant)) {
        result.emplace(static_cast<Value>(*held));
        return true;
    }
    if constexpr (std::is_default_constructible_v<Known>) {
        Known converted{};
        if (!variant.type().convert(variant.data(), target, addressOf(converted)))
            return false;
        result.emplace(static_cast<Value>(std::move(converted)));
        return true;
    } else {
        return false;
    }
}

/// What `retrieve` does where `heldAs` gives null.
template <class T>
[[gnu::noinline]] Retrieved<RetrievedType<T>> retrieveOtherwise(const ZTVariant& variant)
{
    using Result = RetrievedType<T>;
    using Value = Canonical<Result>;
    if constexpr (std::is_same_v<Value, ZTVariant>) {
        const ZTMetaType& nested = ::ztMetaType<ZTVariant>();
        const bool isNested = &variant.type() == &nested && variant.data();
        return {isNested ? *static_cast<const ZTVariant*>(variant.data()) : variant, true};
    }
    if (!variant.isValid()) {
        warnInvalidVariant(askedName<T>());
        return {Result(), false};
    }
    const ZTMetaType& target = ::ztMetaType<Value>();
    if (const Value* held = heldAs<Value>(variant))
        return {static_cast<Result>(*held), true};
    if constexpr (isTextView<Value>) {
        if (&variant.type() == &::ztMetaType<std::string>() && variant.data())
            return {textOf<Value>(*static_cast<const std::string*>(variant.data())), true};
    }
    if constexpr (!std::is_void_v<typename OptionalValue<Value>::type>) {
        Value value;
        if (!variant.type().canConvert(target) && retrieveInto(value, variant))
            return {std::move(value), true};
    }
    if constexpr (isObjectReference<Value>) {
        return retrieveReference<Value>(variant, askedName<T>());
    } else if constexpr (isDataPointer<Value> && !std::is_same_v<Value, void*>) {
        using Pointee = std::remove_pointer_t<Value>;
        const ZTMetaType* nonConst = nullptr;
        if constexpr (std::is_const_v<Pointee> && !std::is_void_v<Pointee>)
            nonConst = &::ztMetaType<std::remove_const_t<Pointee>*>();
        void* pointer = nullptr;
        bool found = retrievePointer(variant, target, nonConst, pointer, askedName<T>());
        return {static_cast<Value>(pointer), found};
    } else if constexpr (std::is_same_v<Value, Result>) {
        Retrieved<Result> result{Result(), false};
        result.found = convertOrWarn(variant, target, addressOf(result.value), askedName<T>());
        return result;
    } else {
        Value converted{};
        bool found = convertOrWarn(variant, target, &converted, askedName<T>());
        return {static_cast<Result>(converted), found};
    }
}

/// Retrieves a value, or a default value where there is none.
template <class T>
Retrieved<RetrievedType<T>> retrieve(const ZTVariant& variant)
{
    if (const auto* held = heldAs<Canonical<RetrievedType<T>>>(variant))
        return {static_cast<RetrievedType<T>>(*held), true};
    return retrieveOtherwise<T>(variant);
}
} // namespace zt::detail
