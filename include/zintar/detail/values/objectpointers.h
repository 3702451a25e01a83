#pragma once

#include <zintar/detail/values/untyped.h>
#include <zintar/export.h>
#include <zintar/fwd.h>
#include <zintar/typename.h>

#include <string>
#include <string_view>
#include <type_traits>
#include <typeinfo>

/// @file
/// Pointers to objects as types. One differs from another in its class alone, so they share the
/// functions of a pointer, and everything that works on them is compiled once, in the library.

namespace zt::detail
{
template <class T>
concept Complete = requires
{
    sizeof(T);
};

/// A type of pointers to objects of one class, or to const ones.
struct ObjectPointer {
    const std::type_info* type;
    std::string_view className; ///< as the library spells it
    ClassFunction findClass;
    const ObjectPointer* nonConst; ///< null unless the objects are const
    bool isInAnonymousScope;
};

template <class T>
constexpr bool pointsToObject()
{
    using Pointee = std::remove_pointer_t<T>;
    using Class = std::remove_const_t<Pointee>;
    if constexpr (!std::is_pointer_v<T> || !std::is_class_v<Class> || std::is_volatile_v<Pointee>)
        return false;
    else if constexpr (!Complete<Class>)
        return false;
    else
        return std::is_base_of_v<ZTBase, Class>;
}

template <class T>
inline constexpr bool isObjectPointer = pointsToObject<T>();

/// What finds the class is not called here: classes name each other in the types of their members.
template <class C>
const ZTMetaClass& classOf()
{
    return C::typeMetaClass();
}

template <class T>
inline constexpr ObjectPointer objectPointer{
    &typeid(T), ztTypeName<std::remove_pointer_t<T>>(), &classOf<std::remove_pointer_t<T>>, nullptr,
    isInAnonymousScope(ztTypeName<std::remove_pointer_t<T>>())};
template <class C>
inline constexpr ObjectPointer objectPointer<const C*>{
    &typeid(const C*), objectPointer<C*>.className, objectPointer<C*>.findClass, &objectPointer<C*>,
    objectPointer<C*>.isInAnonymousScope};

/// The name of the type, as the library spells it.
[[nodiscard]] ZT_EXPORT std::string nameOf(const ObjectPointer& pointer);

/// Registers the type, or adds the alias to it.
ZT_EXPORT const ZTMetaType& registerPointer(const ObjectPointer& pointer,
                                            const std::string& alias = {});
/// The registered type.
ZT_EXPORT const ZTMetaType& typeOf(const ObjectPointer& pointer);
} // namespace zt::detail
