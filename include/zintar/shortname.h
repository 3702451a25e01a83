#pragma once

#include <zintar/export.h>
#include <zintar/fwd.h>

#include <string>
#include <string_view>

/// @file
/// The names of types as people write them, for what a program shows: a message, a column of an
/// editor, a listing of classes.
///
///     ztShortName(ztMetaType<std::string>())          "std::string"
///     ztShortName(ztMetaType<const Lamp*>())          "const Lamp*"
///     ztShortName(ztMetaType<std::map<int, Mode>>())  "std::map<int, house::Mode>"
///     ztShortName(Lamp::typeMetaClass())              "Lamp"
///
/// The words `struct`, `union` and `enum` are gone, and so are anonymous namespaces and the
/// template arguments that the standard library fills in; integers of 8 bytes are `long long`. Two
/// types may get one short name. Where a name has to be found again, store `name()`, not this.
///
/// Threads: any call on any thread.

/// The invalid type is called "invalid".
[[nodiscard]] ZT_EXPORT std::string ztShortName(const ZTMetaType& type);
/// The name of a class made at run time loses a keyword in front and is else as its builder chose
/// it.
[[nodiscard]] ZT_EXPORT std::string ztShortName(const ZTMetaClass& metaClass);
/// @param spelled  the name of a type as `ztTypeName` spells it; another text comes back with
///                 little changed, or not at all
[[nodiscard]] ZT_EXPORT std::string ztShortName(std::string_view spelled);
