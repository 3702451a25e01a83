#pragma once

#include <zintar/export.h>

/// Registers the conversions that most hosts want. Without this call there are none.
///
/// | from | to | refused |
/// |---|---|---|
/// | any arithmetic type | any other | a value that the other type cannot hold exactly |
/// | a number | text | nothing: the shortest text that reads as the same number |
/// | text | a number | all that is not one number from the first character to the last |
/// | `bool` | text | nothing: "true", "false" |
/// | text | `bool` | all but these two |
/// | `char` | text | nothing: the character |
/// | text | `char` | text of any other length than one |
/// | `nullptr` | a pointer or `ZTRef` to an object | nothing |
///
/// The arithmetic types are `bool`, the four kinds of integers with and without sign, `ZTLong` and
/// `ZTULong`, `char` (to other numbers by its code), `signed char`, `unsigned char`, `float`,
/// `double` and `long double`. Exactly means that nothing at all is lost: 2.0 becomes an `int`, 2.5
/// does not, nor 300 an `unsigned char`, nor 0.1 a `float`. A host that would rather round
/// registers `[](double value) { return float(value); }`. Text is written and read as
/// `std::to_chars` and `std::from_chars` do it, in no language.
///
/// A conversion that the host has registered between two of the types stays, and one that it
/// registers later takes the place of the one from here. A further call adds nothing.
/// Threads: any call on any thread.
ZT_EXPORT void ztRegisterStandardConverters();
