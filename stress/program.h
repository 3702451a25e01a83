#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

/// @file
/// A random program: a main script, and scripts that code of the host runs where the library calls,
/// copies, compares or destroys it. It stands in a text as
///
///     main: new a - 1 actor; listen a b said callable 0 0 0 -
///     1: delete a
///
/// Every operation means something in every place, so that any of them can be left out.

namespace stress
{
enum class Event { Said, Told, Shifted, Destroyed, ChildAdded, ChildRemoved, PropertyChanged };

/// Of handlers. A twin stands in front of a listener, and hears what that one records.
enum class Kind { Callable, ArrayCallable, Function, Scoped, Member, LeadMember, Descriptor, Twin };
/// Of classes; the class of a shifter is another one later.
enum class Class { Actor, Lead, Shifter };
/// What the event of a shifter's class carries.
enum class Sort { Nothing, Number, Text };
enum class Way { Typed, ByIndex, ByName };
enum class Form { All, OfEvent, OfMember, OfDescriptor, AnyMember, AnyDescriptor };

constexpr int scriptCount = 6; ///< 0 is the main one; as an operand it is none
constexpr int objectCount = 6;
constexpr int holderCount = 4; ///< handles, scoped handles, references, blockers, each
constexpr int nameCount = 3;   ///< of dynamic properties
constexpr int nobody = objectCount;

class World;
using Operands = std::array<int, 8>;

/// Programs that look for faults of one kind.
constexpr std::string_view profiles[] = {"events", "objects", "deaths", "memory", "classes"};

/// What an operation is: a row of the table in rules.cpp.
struct Rule {
    std::string_view name;
    std::string_view shape; ///< of the operands, by a letter each
    void (World::*run)(const Operands&);
    std::array<int, std::size(profiles)> weights; ///< how often it is to come, by profile
};
std::span<const Rule> rules();

struct Operation {
    const Rule* rule = nullptr;
    Operands operands{};
};

using Script = std::vector<Operation>;

struct Program {
    std::array<Script, scriptCount> scripts;

    [[nodiscard]] std::size_t size() const;
};

/// Whether the operand only tells one thing from the others.
bool isName(char letter);

Program makeProgram(unsigned int seed, std::size_t profile);
std::string textOf(const Program& program);
/// None when the text is no program.
std::optional<Program> programOf(const std::string& text);
} // namespace stress
