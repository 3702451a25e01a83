#include "text.h"

#include <zintar/typename.h>

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <optional>
#include <utility>

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

/// @param character  whole and no damaged UTF-8
char32_t codePoint(std::string_view character)
{
    if (character.size() == 1)
        return byteAt(character, 0);
    char32_t code = byteAt(character, 0) & (0x7FU >> character.size());
    for (std::size_t i = 1; i < character.size(); ++i)
        code = code << 6 | (byteAt(character, i) & 0x3F);
    return code;
}

/// What is there without being seen, or is seen as something else: Unicode's categories of
/// controls, of formats, which change the direction of text among other things, of line and
/// paragraph separators and of private use. Some unassigned ones among them are taken along.
bool isUnseen(char32_t code)
{
    struct Range {
        char32_t first;
        char32_t last;
    };
    static constexpr Range unseen[] = {
        {0x0, 0x1F},        {0x7F, 0x9F},       {0xAD, 0xAD},       {0x600, 0x605},
        {0x61C, 0x61C},     {0x6DD, 0x6DD},     {0x70F, 0x70F},     {0x890, 0x891},
        {0x8E2, 0x8E2},     {0x180E, 0x180E},   {0x200B, 0x200F},   {0x2028, 0x202E},
        {0x2060, 0x206F},   {0xE000, 0xF8FF},   {0xFEFF, 0xFEFF},   {0xFFF0, 0xFFFB},
        {0x110BD, 0x110BD}, {0x110CD, 0x110CD}, {0x13430, 0x1345F}, {0x1BCA0, 0x1BCA3},
        {0x1D173, 0x1D17A}, {0xE0000, 0xE0FFF}, {0xF0000, 0x10FFFF}};
    const Range* range =
        std::lower_bound(std::begin(unseen), std::end(unseen), code,
                         [](const Range& one, char32_t wanted) { return one.last < wanted; });
    return range != std::end(unseen) && range->first <= code;
}

/// Takes the next character from the front, or one byte that belongs to none.
/// @return it, and its code point where it has one
std::pair<std::string_view, std::optional<char32_t>> takeCharacter(std::string_view& text)
{
    const std::size_t length = characterLength(text);
    const std::string_view character = text.substr(0, std::max<std::size_t>(length, 1));
    text.remove_prefix(character.size());
    if (length == 0)
        return {character, std::nullopt};
    return {character, codePoint(character)};
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

void appendEscaped(std::string& text, std::string_view character, std::optional<char32_t> code)
{
    if (character == "\n")
        text += "\\n";
    else if (character == "\t")
        text += "\\t";
    else if (character == "\\")
        text += "\\\\";
    else if (!code || isUnseen(*code))
        text += hexOf(character, "\\x");
    else
        text += character;
}

/// As JSON writes characters that are not to stand there themselves.
void appendUtf16(std::string& text, char32_t code)
{
    if (code > 0xFFFF) {
        appendUtf16(text, 0xD800 + ((code - 0x10000) >> 10));
        code = 0xDC00 + (code & 0x3FF);
    }
    const char units[] = {static_cast<char>(code >> 8), static_cast<char>(code)};
    text += hexOf({units, 1}, "\\u") + hexOf({units + 1, 1}, "");
}
} // namespace

std::string escaped(std::string_view text)
{
    std::string result;
    result.reserve(text.size());
    while (!text.empty()) {
        const auto [character, code] = takeCharacter(text);
        appendEscaped(result, character, code);
    }
    return result;
}

std::string escapedJson(std::string_view json)
{
    std::string result;
    result.reserve(json.size());
    while (!json.empty()) {
        const auto [character, code] = takeCharacter(json);
        if (code && isUnseen(*code))
            appendUtf16(result, *code);
        else
            result += character;
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
