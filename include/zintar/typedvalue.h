#pragma once

#include <zintar/detail/values/retrieval.h>
#include <zintar/metatypeof.h>
#include <zintar/variant.h>

#include <type_traits>

/// The value that the variant holds, as a `T`.
///
/// Of another type the value comes by a registered converter; a pointer to an object comes along
/// the class tree in both directions, unchanged, by the relation of the two classes alone: no look
/// is taken at what the object really is, and unrelated classes give null.
///
/// @return a copy. When the variant is invalid or holds what cannot be converted: a default value,
///         and one line on standard output; a null pointer from unrelated classes says nothing.
///         Ask `type()` or `canConvert()` first where the difference matters.
template <class T>
[[nodiscard]] zt::detail::RetrievedType<T> ztVariantValue(const ZTVariant& variant)
{
    using Result = zt::detail::RetrievedType<T>;
    static_assert(std::is_default_constructible_v<Result>,
                  "ztVariantValue<T>: T needs a default value for the case that the variant holds "
                  "no T. Use ztVariantPointer<T> otherwise.");
    if (const auto* held = zt::detail::heldAs<zt::detail::Canonical<Result>>(variant))
        return static_cast<Result>(*held);
    return zt::detail::retrieveOtherwise<T>(variant).value;
}

/// The value in the variant's block, without a copy; null when the variant holds another type.
/// Logs nothing and converts nothing. Good until the variant changes.
///
///     if (auto* text = ztVariantPointer<std::string>(value))
///         text->append("!");
///
/// A pointer to an object is found as the very type of pointer that the variant holds: `Lamp*` is
/// not found as a `ZTBase*`. That is what `ztVariantValue` does.
template <class T>
[[nodiscard]] T* ztVariantPointer(ZTVariant& variant)
{
    using Value = std::remove_cv_t<T>;
    static_assert(std::is_same_v<zt::detail::Canonical<Value>, Value>,
                  "ztVariantPointer<T>: an 8-byte long is held as a long long. Ask for a pointer "
                  "to that.");
    bool holds = variant.data() && &variant.type() == &ztMetaType<Value>();
    return holds ? static_cast<T*>(variant.data()) : nullptr;
}
template <class T>
[[nodiscard]] const T* ztVariantPointer(const ZTVariant& variant)
{
    return ztVariantPointer<const T>(const_cast<ZTVariant&>(variant));
}
