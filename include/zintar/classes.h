#pragma once

#include <zintar/export.h>
#include <zintar/fwd.h>

#include <string_view>
#include <vector>

/// @file
/// The classes that the process knows, by their names:
///
///     const ZTMetaClass* found = ztClass("house::Thermostat");
///     for (const ZTMetaClass* known : ztClasses())
///         std::cout << ztShortName(*known) << "\n";
///
/// A declared class is known from the moment at which its program or plugin is loaded to the end of
/// the process, a class made at run time as long as a `ZTClassStore` holds it.
///
/// Threads: any call on any thread. Whoever takes classes out of a store sees to it that no other
/// thread still uses what it found.

/// The class with that name, or null.
///
/// A declared class is found by its full name ("house::Thermostat"), by its `typeName()` ("struct
/// house::Thermostat"), and by the last part alone ("Thermostat"), if no other declared class has
/// the same last part: a name that could mean two classes finds none of them. One that is the full
/// name of a class means that class. A class in an anonymous namespace is found as if it stood
/// beside the namespace, but its full name counts as a last part does. A class made at run time is
/// found by its `typeName()`, if no declared class is found by it.
///
/// Of two declared classes with one full name, which two plugins may bring, the one that was loaded
/// first is found. Loading the second is told in the log. Logs nothing itself.
[[nodiscard]] ZT_EXPORT const ZTMetaClass* ztClass(std::string_view name);

/// All of them: the declared ones, and behind them those made at run time. A super class stands
/// before the classes that build on it.
[[nodiscard]] ZT_EXPORT std::vector<const ZTMetaClass*> ztClasses();
