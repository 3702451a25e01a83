#pragma once

#include <string>

/// @file
/// What a host might have put on a stream, as bytes.

namespace samples
{
/// A class that the program declares, with a member of every kind.
std::string device();
/// A class made at run time, below `device()`, with types that no reader knows.
std::string thermostat();
/// Classes with nothing above them, with names above them that lead nowhere or in a circle.
std::string strangers();
/// A class below another of the same name, and one below a class without a name.
std::string namesakes();
/// Names that a terminal, JSON or Graphviz would stumble over.
std::string oddNames();
/// Values of types that are known everywhere.
std::string values();
/// Values that cannot be read back, with one behind them that can.
std::string oneWayValues();
/// Two values, and one of a type that only the host has.
std::string hostValues();
} // namespace samples
