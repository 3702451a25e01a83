#pragma once

#include <zintar/base.h>
#include <zintar/export.h>

#include <string>
#include <string_view>

/// @file
/// Objects by their names. The name of an object is its property "name", a text: one that its class
/// declares, or a dynamic one.
///
///     lamp->setProperty("name", "lamp", true);
///     auto* lamp = ztFind<Lamp>(&house, "kitchen/lamp");
///
/// Names need not be unique, and the library gives none.

/// Empty for null, and for an object that has no such property.
[[nodiscard]] ZT_EXPORT std::string ztObjectName(const ZTBase* object);

/// The object that a path leads to: from each object to its first child of the next name, in the
/// order of joining.
/// @param root  where the path begins; its own name is not in it
/// @param path  names with "/" between them; an empty one leads to the root
/// @return null when there is none
/// Cost: reads the name of each child that the path passes.
[[nodiscard]] ZT_EXPORT ZTBase* ztFind(ZTBase* root, std::string_view path);

/// The same; null as well when the object is no `T`.
template <class T>
[[nodiscard]] T* ztFind(ZTBase* root, std::string_view path)
{
    return dynamic_cast<T*>(ztFind(root, path));
}
