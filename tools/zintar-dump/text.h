#pragma once

#include <string>
#include <string_view>

namespace dump
{
/// The text with everything escaped that a terminal would act on rather than show: control and
/// format characters, the bytes of broken UTF-8, and the backslash that starts an escape.
[[nodiscard]] std::string escaped(std::string_view text);

/// A JSON string, in which JSON's own escapes stand for the same characters.
[[nodiscard]] std::string escapedJson(std::string_view json);

/// The bytes as " 00 ff".
[[nodiscard]] std::string hex(std::string_view bytes);

/// The escaped text in double quotes.
[[nodiscard]] std::string quoted(std::string_view text);

/// A name as a reader wants it: as it is where that is plain, quoted where it is empty or odd.
[[nodiscard]] std::string shownName(std::string_view name);

/// The same, cut where it is long, for places that repeat a name. A damaged stream may hold one
/// long name and ten thousand references to it.
[[nodiscard]] std::string shownReference(std::string_view name);

/// A type by its name on the stream. Only the text type, whose full name nobody wants to read, has
/// its short one.
[[nodiscard]] std::string shownType(std::string_view name);

/// The name as it is, cut where it is long.
[[nodiscard]] std::string shortened(std::string_view name);
} // namespace dump
