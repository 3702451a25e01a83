#pragma once

#include <zintar/detail/values/typefunctions.h>
#include <zintar/export.h>
#include <zintar/fwd.h>
#include <zintar/typename.h>

#include <ostream>
#include <string>
#include <string_view>
#include <type_traits>
#include <typeinfo>

/// @file
/// `ZTRef` as a type of values: a pointer to an object that may be gone. Its type knows the class,
/// a pointer is retrieved as a reference, and a reference as a pointer.

namespace zt::detail
{
template <class T>
struct ReferredClass {
    using type = void;
};
template <class C>
struct ReferredClass<ZTRef<C>> {
    using type = C;
};

template <class T>
constexpr bool refersToObject()
{
    using Class = typename ReferredClass<T>::type;
    if constexpr (std::is_void_v<Class>)
        return false;
    else
        return isObjectPointer<Class*>;
}

template <class T>
inline constexpr bool isObjectReference = refersToObject<T>();

/// Gives the object to which the reference at that address refers, or null.
using ReferredFunction = void* (*)(const void* reference);
/// Lets the reference at that address refer to an object of the class, or to none.
using ReferFunction = void (*)(void* reference, void* object);

/// A type of references to objects of one class, and what the compiler made for it.
struct ObjectReference {
    const std::type_info* type;
    std::string_view name;
    ClassFunction findClass;
    ReferredFunction referred;
    ReferFunction refer;
    CreateFunction create;
    DestroyFunction destroy;
    CreateDefaultFunction createDefault;
    CompareFunction compare;
    PrintFunction print;
    unsigned int blockSize;
};

template <class T>
struct ReferenceFunctions {
    using Class = typename ReferredClass<T>::type;
    using Functions = TypeFunctions<T>;

    static void* referred(const void* reference)
    {
        // The `ZTBase` stands first in every object.
        return const_cast<std::remove_const_t<Class>*>(static_cast<const T*>(reference)->get());
    }
    static void refer(void* reference, void* object)
    {
        static_cast<T*>(reference)->reset(static_cast<Class*>(object));
    }
    static void print(std::ostream& stream, const void* reference)
    {
        stream << static_cast<const void*>(referred(reference));
    }
    static ObjectReference all()
    {
        return {&typeid(T),
                ztTypeName<T>(),
                objectPointer<Class*>.findClass,
                &referred,
                &refer,
                Functions::create(),
                Functions::destroy(),
                Functions::createDefault(),
                Functions::compare(),
                &print,
                sizeof(BlockOf<T>)};
    }
};

/// Registers the type, or adds the alias to it.
ZT_EXPORT const ZTMetaType& registerReference(const ObjectReference& reference,
                                              const std::string& alias = {});

/// Whether values of the type are references to objects. Their class is that of the type, but they
/// are no pointers.
[[nodiscard]] ZT_EXPORT bool isReference(const ZTMetaType& type);
} // namespace zt::detail
