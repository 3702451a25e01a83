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
///
/// Some types are asked for in a way of their own:
/// - `std::string_view` and `const char*` look into the variant's block, without a copy, if it
///   holds text: good until the variant changes or dies. Hence none of a temporary.
/// - `ZTVariant` gives the variant as it is, or the one that is in it. Says nothing.
/// - `std::optional<U>` takes a `U`, too, and what converts to one. So a type without a default
///   value is retrieved with a conversion.
/// - A pointer to const comes from a pointer to what is not const.
/// - `ZTRef<C>` takes a pointer or another reference to an object that really is a `C`, and is
///   itself retrieved as such a pointer: null once the object is gone.
template <class T>
[[nodiscard]] zt::detail::RetrievedType<T> ztVariantValue(const ZTVariant& variant)
{
    using Result = zt::detail::RetrievedType<T>;
    static_assert(std::is_default_constructible_v<Result>,
                  "ztVariantValue<T>: T needs a default value for the case that the variant holds "
                  "no T. Use ztVariantPointer<T>, or ask for a std::optional<T>.");
    if (const auto* held = zt::detail::heldAs<zt::detail::Canonical<Result>>(variant))
        return static_cast<Result>(*held);
    return zt::detail::retrieveOtherwise<T>(variant).value;
}

template <class T>
    requires(zt::detail::isTextView<zt::detail::RetrievedType<T>>)
zt::detail::RetrievedType<T> ztVariantValue(const ZTVariant&&)
{
    static_assert(!std::is_same_v<T, T>,
                  "ztVariantValue: the text would be gone with the temporary variant. Keep the "
                  "variant, or ask for a std::string.");
    return {};
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
template <class T>
const T* ztVariantPointer(const ZTVariant&&)
{
    static_assert(!std::is_same_v<T, T>,
                  "ztVariantPointer: the value would be gone with the temporary variant. Keep the "
                  "variant, or ask for a copy with ztVariantValue.");
    return nullptr;
}
