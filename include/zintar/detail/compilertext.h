#pragma once

#include <zintar/integers.h>

#include <array>
#include <cstddef>
#include <string_view>

/// @file
/// What the compiler writes for a type, a value or a member, brought to the one form that does not
/// depend on the compiler.
///
/// The text is cut out of that for a function which has the type or the value as its template
/// argument. GCC and Clang differ in blanks, in the order of words, and in what they leave out.

namespace zt::detail
{
template <class T>
constexpr auto typeProbe() noexcept
{
    return std::string_view(__PRETTY_FUNCTION__);
}

template <auto Value>
constexpr auto valueProbe() noexcept
{
    return std::string_view(__PRETTY_FUNCTION__);
}

/// What stands around the part of a probe's text that changes.
struct ProbeFrame {
    constexpr ProbeFrame(std::string_view text, std::string_view known)
        : before(text.rfind(known)), around(text.size() - known.size())
    {}
    constexpr std::string_view cut(std::string_view text) const
    {
        return {text.data() + before, text.size() - around};
    }

    std::size_t before;
    std::size_t around; ///< the letters of the frame, on both sides
};
inline constexpr ProbeFrame typeFrame(typeProbe<void>(), "void");
inline constexpr ProbeFrame valueFrame(valueProbe<12345>(), "12345");

/// The type as the compiler writes it.
template <class T>
constexpr std::string_view compilerSpelling() noexcept
{
    return typeFrame.cut(typeProbe<T>());
}

/// An address has been written in one of two ways.
constexpr std::string_view withoutAmpersand(std::string_view text) noexcept
{
    const char* letters = text.data();
    if (text.size() > 3 && letters[0] == '(' && letters[1] == '&' && letters[2] == ' ')
        return {letters + 3, text.size() - 4};
    if (!text.empty() && letters[0] == '&')
        return {letters + 1, text.size() - 1};
    return text;
}

/// The same for a value, with one way to write an address.
template <auto Value>
constexpr std::string_view compilerValueSpelling() noexcept
{
    return withoutAmpersand(valueFrame.cut(valueProbe<Value>()));
}

constexpr bool isIdentifierChar(char c) noexcept
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
}

/// Text of at most `Capacity` bytes that can be built while compiling.
template <std::size_t Capacity>
struct TextBuffer {
    std::array<char, Capacity + 1> bytes{};
    std::size_t size = 0;

    constexpr void append(std::string_view text)
    {
        for (char c : text)
            bytes[size++] = c;
    }
    constexpr char last() const { return size == 0 ? '\0' : bytes[size - 1]; }
    constexpr std::string_view view() const { return {bytes.data(), size}; }
};

// An 8-byte `long` within another type is told apart, since `long*` is not `long long*`.
inline constexpr std::string_view longName = longIsWide ? "long __int64" : "long";
inline constexpr std::string_view unsignedLongName =
    longIsWide ? "unsigned long __int64" : "unsigned long";

/// The words of an integer type, in whatever order the compiler writes them.
struct IntegerWords {
    bool isUnsigned = false;
    bool isSigned = false;
    bool isChar = false;
    bool isShort = false;
    bool isInt128 = false;
    int longs = 0;

    constexpr bool take(std::string_view word)
    {
        if (word == "unsigned")
            isUnsigned = true;
        else if (word == "signed")
            isSigned = true;
        else if (word == "char")
            isChar = true;
        else if (word == "short")
            isShort = true;
        else if (word == "__int128")
            isInt128 = true;
        else if (word == "long")
            ++longs;
        else if (word != "int")
            return false;
        return true;
    }

    constexpr std::string_view spelling() const
    {
        if (isChar)
            return isUnsigned ? "unsigned char" : isSigned ? "signed char" : "char";
        if (isShort)
            return isUnsigned ? "unsigned short" : "short";
        if (isInt128)
            return isUnsigned ? "unsigned __int128" : "__int128";
        if (longs == 2)
            return isUnsigned ? "unsigned __int64" : "__int64";
        if (longs == 1)
            return isUnsigned ? unsignedLongName : longName;
        return isUnsigned ? "unsigned int" : "int";
    }
};

/// Reads the compiler's text token by token; see `normalised`.
struct SpellingReader {
    std::string_view rest;

    constexpr bool skip(std::string_view text)
    {
        if (!rest.starts_with(text))
            return false;
        rest.remove_prefix(text.size());
        return true;
    }

    constexpr std::string_view word() const
    {
        std::size_t size = 0;
        while (size < rest.size() && isIdentifierChar(rest[size]))
            ++size;
        return rest.substr(0, size);
    }

    /// The integer type at the front, spelled in the library's way; empty if there is none.
    constexpr std::string_view integer()
    {
        IntegerWords words;
        bool any = false;
        for (;;) {
            std::string_view ahead = word();
            if (ahead.empty() || !words.take(ahead))
                break;
            any = true;
            rest.remove_prefix(ahead.size());
            if (SpellingReader next{rest}; next.skip(" ") && IntegerWords().take(next.word()))
                rest.remove_prefix(1);
            else
                break;
        }
        return any ? words.spelling() : std::string_view();
    }
};

template <class T>
struct CompilerType {
    static constexpr std::string_view text = compilerSpelling<T>();
};
template <auto Value>
struct CompilerValue {
    static constexpr std::string_view text = compilerValueSpelling<Value>();
};

/// An anonymous namespace in a spelled name.
inline constexpr std::string_view anonymousScope = "(anonymous)";

/// Letter by letter: under a sanitizer not all of `find` is for the compiler to work out.
constexpr bool isInAnonymousScope(std::string_view name)
{
    std::size_t found = 0;
    for (std::size_t i = 0; i < name.size() && found < anonymousScope.size(); ++i)
        found = name[i] == anonymousScope[found] ? found + 1 : name[i] == '(' ? 1 : 0;
    return found == anonymousScope.size();
}

/// The compiler's text in the one form that does not depend on the compiler.
template <class Source>
constexpr auto normalised()
{
    TextBuffer<2 * Source::text.size() + 16> out;
    SpellingReader in{Source::text};
    while (!in.rest.empty()) {
        if (in.skip("__cxx11::") || in.skip("_V2::"))
            continue;
        if (in.skip("{anonymous}") || in.skip("(anonymous namespace)")) {
            out.append(anonymousScope);
        } else if (in.skip(", ")) {
            out.append(",");
        } else if (in.rest[0] == ' ' && in.rest.find_first_of("*&[(") == 1) {
            in.rest.remove_prefix(1);
        } else if (in.skip("* ")) {
            out.append("*");
        } else if (in.skip("& ")) {
            out.append("&");
        } else if (in.skip("{")) {
            // An object in another one: only one compiler names its type.
            while (isIdentifierChar(out.last()) || out.last() == ':')
                --out.size;
            out.append("{");
        } else if (in.skip(">")) {
            out.append(out.last() == '>' ? " >" : ">");
        } else if (std::string_view word = in.word(); !word.empty()) {
            std::string_view integer = in.integer();
            if (integer.empty()) {
                in.rest.remove_prefix(word.size());
                while (word[0] >= '0' && word[0] <= '9' &&
                       (word.back() == 'U' || word.back() == 'L'))
                    word.remove_suffix(1);
            }
            out.append(integer.empty() ? word : integer);
        } else {
            out.append(in.rest.substr(0, 1));
            in.rest.remove_prefix(1);
        }
    }
    return out;
}

template <class T>
struct QualifiedName {
    static constexpr auto buffer = normalised<CompilerType<T>>();
    static constexpr std::string_view text = buffer.view();
};

/// A name without the template arguments at its end.
constexpr std::string_view withoutArguments(std::string_view name)
{
    std::size_t cut = name.size();
    int depth = 0;
    for (std::size_t i = 0; i < name.size(); ++i) {
        const bool afterOperator = name.substr(0, i).ends_with("operator");
        if (const char quote = name[i]; quote == '\'' || quote == '"') {
            for (++i; i < name.size() && name[i] != quote; ++i) // may have brackets in it
                i += name[i] == '\\' ? 1 : 0;
        } else if (afterOperator) { // `operator<`, whose brackets open and close nothing
            while (i + 2 < name.size() && name.find_first_of("<=>-", i + 1) == i + 1)
                ++i;
        } else if (name[i] == '<' && depth++ == 0) {
            cut = i;
        } else if (name[i] == '>') {
            --depth;
        }
    }
    return name.ends_with('>') && depth == 0 ? name.substr(0, cut) : name;
}

template <class T>
struct TemplateName {
    static constexpr std::string_view text = withoutArguments(QualifiedName<T>::text);
};
} // namespace zt::detail
