#pragma once

#include <zintar/zintar.h>

#include <string>

/// A value as the inspector shows it, whatever it is. Objects are shown by their paths.
std::string textOf(const ZTVariant& value);
/// "house/kitchen/lamp"
std::string pathOf(const ZTBase* object);
/// What a person wrote, as a value for that type: a path becomes an object, all else is a text that
/// the library converts.
ZTVariant valueOf(const std::string& text, const ZTMetaType& type, ZTBase& root);
