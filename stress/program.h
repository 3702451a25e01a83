#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <random>
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
enum class Code {
    New,
    Delete,
    Parent,
    Move,
    Assign,
    Listen,
    Scope,
    End,
    Drop,
    Keep,
    Take,
    Let,
    Unsubscribe,
    Raise,
    Change,
    Throw,
    Block,
    Unblock,
    Weak,
    Strong,
    Set,
    Get,
    Put,
    Fail
};
constexpr int codeCount = int(Code::Fail) + 1;

enum class Event { Said, Told, Destroyed, ChildAdded, ChildRemoved, PropertyChanged };

/// Of handlers.
enum class Kind { Callable, ArrayCallable, Function, Scoped, Member, LeadMember, Descriptor };
enum class Way { Typed, ByIndex, ByName };
enum class Form { All, OfEvent, OfMember, OfDescriptor };

constexpr int scriptCount = 6; ///< 0 is the main one; as an operand it is none
constexpr int objectCount = 6;
constexpr int holderCount = 4; ///< handles, scoped handles, references, blockers, each
constexpr int nameCount = 3;   ///< of dynamic properties
constexpr int nobody = objectCount;

struct Operation {
    Code code = Code::Throw;
    std::array<int, 8> operands{};
};

using Script = std::vector<Operation>;

struct Program {
    std::array<Script, scriptCount> scripts;

    [[nodiscard]] std::size_t size() const;
};

/// How often each operation is to come; by `Code`.
using Weights = std::array<double, codeCount>;

/// What the operands are, by a letter each.
///
///     o an object        O an object or nobody   s a script    e an event   r an event to raise
///     k a kind of        w a way to raise        f a form of   v a value: nothing, a number or
///       handler            it                      unsubscribe   one that runs scripts
///     h a holder         p a property            n a number    c an actor or a lead
///     d what is blocked
std::string_view shapeOf(Code code);
/// Whether the operand only tells one thing from the others.
bool isName(char letter);

Program makeProgram(unsigned int seed, const Weights& weights);
std::string textOf(const Program& program);
/// None when the text is no program.
std::optional<Program> programOf(const std::string& text);
std::optional<Code> codeOf(std::string_view name);
} // namespace stress
