#pragma once

#include <zintar/metaclass.h>

#include <string>
#include <string_view>
#include <vector>

/// @file
/// Finding the members of a class by their names alone, and naming what was found.

namespace scene
{
/// The library's short names, but for text: a file calls it "string".
std::string nameOf(const ZTMetaClass& metaClass);
/// "int", "string", "Thermostat::Mode", "ZTBase*".
std::string nameOf(const ZTMetaType& type);
/// "(string, double celsius = 20)"
std::string parametersOf(const ZTMetaInvokable& invokable);
/// "parameter "celsius" of program", or the number of one without a name.
std::string nameOf(const ZTMetaInvokable& invokable, unsigned int parameter);

enum class Kind { Method, Event };

/// The methods, or the events, of that name: the class's own before those that it inherits.
std::vector<const ZTMetaInvokable*> invokablesNamed(const ZTMetaClass& metaClass, Kind kind,
                                                    std::string_view name);

/// Why a class has no method or event of that name, with those that it has.
std::string unknownInvokable(const ZTMetaClass& metaClass, Kind kind, std::string_view name);

/// Whether a handler can take what an event sends: its parameters are the event's leading ones.
bool takes(const ZTMetaInvokable& handler, const ZTMetaInvokable& event);

/// The text without what would end its line.
std::string onOneLine(std::string text);

/// "one, two, three"
std::string listed(const std::vector<std::string>& names, std::string_view between = ", ");
} // namespace scene
