#pragma once

#include <zintar/export.h>
#include <zintar/metatypeof.h>
#include <zintar/variant.h>

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

/// Whether the variant holds a pointer to an object that is not null.
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

/// What a retrieval gives.
template <class Value>
struct Retrieved {
    Value value;
    bool found; ///< no default value stands in, for a reason that is logged
};

/// What `retrieve` does where `heldAs` gives null.
template <class T>
[[gnu::noinline]] Retrieved<RetrievedType<T>> retrieveOtherwise(const ZTVariant& variant)
{
    using Result = RetrievedType<T>;
    using Value = Canonical<Result>;
    if (!variant.isValid()) {
        warnInvalidVariant(askedName<T>());
        return {Result(), false};
    }
    const ZTMetaType& target = ::ztMetaType<Value>();
    if (const Value* held = heldAs<Value>(variant))
        return {static_cast<Result>(*held), true};
    if constexpr (isDataPointer<Value> && !std::is_same_v<Value, void*>) {
        using Pointee = std::remove_pointer_t<Value>;
        const ZTMetaType* nonConst = nullptr;
        if constexpr (std::is_const_v<Pointee> && std::is_class_v<Pointee>)
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
