#include "text.h"

#include <zintar/typename.h>

#include <algorithm>
#include <cstddef>

namespace dump
{
namespace
{
constexpr std::size_t longestReference = 200;

unsigned int byteAt(std::string_view text, std::size_t index)
{
    return static_cast<unsigned char>(text[index]);
}

bool isContinuation(unsigned int byte) { return (byte & 0xC0) == 0x80; }

/// How many bytes the character at the front takes; 0 when they are no UTF-8.
std::size_t characterLength(std::string_view text)
{
    unsigned int first = byteAt(text, 0);
    if (first < 0x80)
        return 1;
    std::size_t length = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : 2;
    if (first < 0xC2 || first > 0xF4 || text.size() < length)
        return 0;
    for (std::size_t i = 1; i < length; ++i)
        if (!isContinuation(byteAt(text, i)))
            return 0;
    unsigned int second = byteAt(text, 1);
    bool overlong = (first == 0xE0 && second < 0xA0) || (first == 0xF0 && second < 0x90);
    bool surrogate = first == 0xED && second > 0x9F;
    bool beyondLast = first == 0xF4 && second > 0x8F;
    return overlong || surrogate || beyondLast ? 0 : length;
}

/// The control characters of ASCII, and those that Unicode has behind it.
bool isControl(std::string_view character)
{
    unsigned int first = byteAt(character, 0);
    return first < 0x20 || first == 0x7F || (first == 0xC2 && byteAt(character, 1) < 0xA0);
}

std::string hexOf(std::string_view bytes, std::string_view before)
{
    constexpr std::string_view digits = "0123456789abcdef";
    std::string text;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        text += before;
        text += digits[byteAt(bytes, i) >> 4];
        text += digits[byteAt(bytes, i) & 0xF];
    }
    return text;
}

void appendEscaped(std::string& text, std::string_view character, std::size_t length)
{
    if (character == "\n")
        text += "\\n";
    else if (character == "\t")
        text += "\\t";
    else if (character == "\\")
        text += "\\\\";
    else if (length == 0 || isControl(character))
        text += hexOf(character, "\\x");
    else
        text += character;
}
} // namespace

std::string escaped(std::string_view text)
{
    std::string result;
    result.reserve(text.size());
    while (!text.empty()) {
        std::size_t length = characterLength(text);
        std::string_view character = text.substr(0, std::max<std::size_t>(length, 1));
        appendEscaped(result, character, length);
        text.remove_prefix(character.size());
    }
    return result;
}

std::string hex(std::string_view bytes) { return hexOf(bytes, " "); }

std::string quoted(std::string_view text)
{
    std::string result = "\"";
    for (char c : escaped(text)) {
        if (c == '"')
            result += '\\';
        result += c;
    }
    return result + "\"";
}

std::string shownName(std::string_view name)
{
    bool plain = !name.empty() && name.find('"') == std::string_view::npos && name.front() != ' ' &&
                 name.back() != ' ' && escaped(name) == name;
    return plain ? std::string(name) : quoted(name);
}

std::string shownReference(std::string_view name) { return shownName(shortened(name)); }

std::string shownType(std::string_view name)
{
    return name == ztTypeName<std::string>() ? "std::string" : shownName(name);
}

std::string shortened(std::string_view name)
{
    if (name.size() <= longestReference)
        return std::string(name);
    std::size_t end = longestReference;
    while (end > longestReference - 4 && isContinuation(byteAt(name, end)))
        --end;
    return std::string(name.substr(0, end)) + "...";
}
} // namespace dump
