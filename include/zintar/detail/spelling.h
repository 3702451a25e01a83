#pragma once

#include <zintar/fwd.h>
#include <zintar/integers.h>

#include <array>
#include <cstddef>
#include <string>
#include <string_view>
#include <type_traits>

/// @file
/// How the compiler spells types and members, brought to one form.
///
/// A type is taken apart as far as templates can (pointers, functions, template arguments) and
/// each piece is spelled by the library's own rules. What is left, the qualified name of a class
/// or an enumeration, is cut out of the compiler's text for a function that has the type as its
/// template argument, and is normalised, since GCC and Clang write it differently.

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

/// The type as the compiler writes it: the part of the probe's text that changes with the type.
template <class T>
constexpr std::string_view compilerSpelling() noexcept
{
    constexpr std::string_view known = typeProbe<void>();
    constexpr std::size_t before = known.rfind("void");
    constexpr std::size_t behind = known.size() - before - 4;
    std::string_view text = typeProbe<T>();
    return text.substr(before, text.size() - before - behind);
}

/// The same for a value, with one way to write an address.
template <auto Value>
constexpr std::string_view compilerValueSpelling() noexcept
{
    constexpr std::string_view known = valueProbe<12345>();
    constexpr std::size_t before = known.rfind("12345");
    constexpr std::size_t behind = known.size() - before - 5;
    std::string_view text = valueProbe<Value>();
    text = text.substr(before, text.size() - before - behind);
    if (text.starts_with("(& "))
        text = text.substr(3, text.size() - 4);
    else if (text.starts_with("&"))
        text.remove_prefix(1);
    return text;
}

constexpr bool isIdentifierChar(char c) noexcept
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
}

/// The last identifier of the probe's text: the bare name of a member or an enumerator, or an
/// empty view for a value that has no name.
template <auto Value>
constexpr std::string_view valueName() noexcept
{
    std::string_view text = valueProbe<Value>();
    std::size_t end = text.size();
    while (end > 0 && !isIdentifierChar(text[end - 1]))
        --end;
    std::size_t begin = end;
    while (begin > 0 && isIdentifierChar(text[begin - 1]))
        --begin;
    bool named = begin < end && (text[begin] < '0' || text[begin] > '9');
    return named ? text.substr(begin, end - begin) : std::string_view();
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

template <class T>
struct Spelling;
// An 8-byte `long` within another type: told apart there, since `long*` is not `long long*`.
template <>
struct Spelling<long> {
    static constexpr std::string_view text = longIsWide ? "long __int64" : "long";
};
template <>
struct Spelling<unsigned long> {
    static constexpr std::string_view text = longIsWide ? "unsigned long __int64" : "unsigned long";
};

/// The words of an integer type, in whatever order the compiler writes them.
struct IntegerWords {
    bool isUnsigned = false;
    bool isSigned = false;
    bool isChar = false;
    bool isShort = false;
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
        if (longs == 2)
            return isUnsigned ? "unsigned __int64" : "__int64";
        if (longs == 1)
            return isUnsigned ? Spelling<unsigned long>::text : Spelling<long>::text;
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
        } else if (in.skip(" *") || in.skip(" &")) {
            out.append(*(in.rest.data() - 1) == '*' ? "*" : "&");
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

template <const std::string_view&... Pieces>
struct Joined {
    static constexpr auto buffer = [] {
        TextBuffer<(Pieces.size() + ... + 0)> out;
        (out.append(Pieces), ...);
        return out;
    }();
    static constexpr std::string_view text = buffer.view();
};

namespace piece
{
inline constexpr std::string_view none = "";
inline constexpr std::string_view structKey = "struct ";
inline constexpr std::string_view unionKey = "union ";
inline constexpr std::string_view enumKey = "enum ";
inline constexpr std::string_view constBefore = "const ";
inline constexpr std::string_view constBehind = "const";
inline constexpr std::string_view volatileBefore = "volatile ";
inline constexpr std::string_view star = "*";
inline constexpr std::string_view ampersand = "&";
inline constexpr std::string_view doubleAmpersand = "&&";
inline constexpr std::string_view comma = ",";
inline constexpr std::string_view open = "<";
inline constexpr std::string_view close = ">";
inline constexpr std::string_view closeAfterClose = " >";
inline constexpr std::string_view openRound = "(";
inline constexpr std::string_view closeRound = ")";
inline constexpr std::string_view openSquare = "[";
inline constexpr std::string_view closeSquare = "]";
inline constexpr std::string_view blank = " ";
inline constexpr std::string_view memberStar = "::*";
inline constexpr std::string_view noexceptBehind = "noexcept";
} // namespace piece

template <class T>
struct QualifiedName {
    static constexpr auto buffer = normalised<CompilerType<T>>();
    static constexpr std::string_view text = buffer.view();
};

/// `QualifiedName` without the template arguments at its end.
template <class T>
struct TemplateName {
    static constexpr std::string_view text = [] {
        std::string_view whole = QualifiedName<T>::text;
        int depth = 0;
        for (std::size_t i = whole.size(); i-- > 0;) {
            if (whole[i] == '>')
                ++depth;
            else if (whole[i] == '<' && --depth == 0)
                return whole.substr(0, whole[i - 1] == ' ' ? i - 1 : i);
        }
        return whole;
    }();
};

/// The spelled name of `T`. The primary template serves classes, unions and enumerations.
template <class T>
struct Spelling {
    static constexpr std::string_view key = std::is_enum_v<T>    ? piece::enumKey
                                            : std::is_union_v<T> ? piece::unionKey
                                                                 : piece::structKey;
    static constexpr std::string_view text = Joined<key, QualifiedName<T>::text>::text;
};

// clang-format off
template <> struct Spelling<void> { static constexpr std::string_view text = "void"; };
template <> struct Spelling<std::nullptr_t> { static constexpr std::string_view text = "nullptr"; };
template <> struct Spelling<bool> { static constexpr std::string_view text = "bool"; };
template <> struct Spelling<char> { static constexpr std::string_view text = "char"; };
template <> struct Spelling<signed char> { static constexpr std::string_view text = "signed char"; };
template <> struct Spelling<unsigned char> { static constexpr std::string_view text = "unsigned char"; };
template <> struct Spelling<wchar_t> { static constexpr std::string_view text = "wchar_t"; };
template <> struct Spelling<char8_t> { static constexpr std::string_view text = "char8_t"; };
template <> struct Spelling<char16_t> { static constexpr std::string_view text = "char16_t"; };
template <> struct Spelling<char32_t> { static constexpr std::string_view text = "char32_t"; };
template <> struct Spelling<short> { static constexpr std::string_view text = "short"; };
template <> struct Spelling<unsigned short> { static constexpr std::string_view text = "unsigned short"; };
template <> struct Spelling<int> { static constexpr std::string_view text = "int"; };
template <> struct Spelling<unsigned int> { static constexpr std::string_view text = "unsigned int"; };
template <> struct Spelling<long long> { static constexpr std::string_view text = "__int64"; };
template <> struct Spelling<unsigned long long> { static constexpr std::string_view text = "unsigned __int64"; };
template <> struct Spelling<float> { static constexpr std::string_view text = "float"; };
template <> struct Spelling<double> { static constexpr std::string_view text = "double"; };
template <> struct Spelling<long double> { static constexpr std::string_view text = "long double"; };
template <> struct Spelling<FixedInteger<std::int32_t>> { static constexpr std::string_view text = "long"; };
template <> struct Spelling<FixedInteger<std::uint32_t>> { static constexpr std::string_view text = "unsigned long"; };
template <> struct Spelling<std::string> {
    static constexpr std::string_view text =
        "class std::basic_string<char,struct std::char_traits<char>,class std::allocator<char> >";
};
// clang-format on

template <class T>
inline constexpr bool isPointerLike = std::is_pointer_v<T> || std::is_member_pointer_v<T>;

template <class T>
struct Spelling<const T> {
    static constexpr std::string_view text = [] {
        if constexpr (isPointerLike<T>)
            return Joined<Spelling<T>::text, piece::constBehind>::text;
        else
            return Joined<piece::constBefore, Spelling<T>::text>::text;
    }();
};

template <class T>
struct Spelling<volatile T> : Joined<piece::volatileBefore, Spelling<T>::text> {};
template <class T>
struct Spelling<const volatile T> : Joined<piece::constBefore, Spelling<volatile T>::text> {};
template <class T>
struct Spelling<T*> : Joined<Spelling<T>::text, piece::star> {};
template <class T>
struct Spelling<T&> : Joined<Spelling<T>::text, piece::ampersand> {};
template <class T>
struct Spelling<T&&> : Joined<Spelling<T>::text, piece::doubleAmpersand> {};
template <class T, class Class>
    requires(!std::is_function_v<T>)
struct Spelling<T Class::*>
    : Joined<Spelling<T>::text, piece::blank, Spelling<Class>::text, piece::memberStar> {};

/// A whole number in decimal, with the type in front where it is not `int`.
template <auto Value>
struct NumberSpelling {
    static constexpr auto buffer = [] {
        using T = std::remove_cv_t<decltype(Value)>;
        TextBuffer<Spelling<T>::text.size() + 24> out;
        if (!std::is_same_v<T, int>) {
            out.append("(");
            out.append(Spelling<T>::text);
            out.append(")");
        }
        bool negative = Value < T(0);
        auto digit = [](long long d) { return static_cast<char>('0' + (d < 0 ? -d : d)); };
        std::array<char, 24> digits{};
        std::size_t count = 0;
        if constexpr (std::is_same_v<T, bool>) {
            digits[count++] = Value ? '1' : '0';
        } else {
            T rest = Value;
            do {
                digits[count++] = digit(static_cast<long long>(rest % 10));
                rest = static_cast<T>(rest / 10);
            } while (rest != 0);
        }
        if (negative)
            out.append("-");
        while (count > 0)
            out.append({&digits[--count], 1});
        return out;
    }();
    static constexpr std::string_view text = buffer.view();
};

/// A template argument that is a value.
template <auto Value>
struct ValueSpelling {
    using T = std::remove_cv_t<decltype(Value)>;
    static constexpr auto buffer = [] {
        if constexpr (std::is_enum_v<T>) {
            using Number = NumberSpelling<static_cast<std::underlying_type_t<T>>(Value)>;
            return Joined<piece::openRound, Spelling<T>::text, piece::closeRound,
                          Number::text>::buffer;
        } else if constexpr (std::is_integral_v<T>) {
            return NumberSpelling<Value>::buffer;
        } else {
            constexpr auto value = normalised<CompilerValue<Value>>();
            // An object as a value: its type, and what is in it.
            constexpr std::size_t content =
                std::is_class_v<T> ? value.view().find('{') : std::string_view::npos;
            constexpr bool isObject = content != std::string_view::npos;
            TextBuffer<Spelling<T>::text.size() + value.size + 1> out;
            out.append(isObject ? Spelling<T>::text : std::string_view("&"));
            out.append(isObject ? value.view().substr(content) : value.view());
            return out;
        }
    }();
    static constexpr std::string_view text = buffer.view();
};

template <const std::string_view& First, const std::string_view&... Others>
struct CommaList {
    static constexpr auto buffer = [] {
        TextBuffer<(First.size() + ... + (Others.size() + 1))> out;
        out.append(First);
        ((out.append(","), out.append(Others)), ...);
        return out;
    }();
    static constexpr std::string_view text = buffer.view();
};

/// `T`, an instance of a class template, from the spelled arguments.
template <class T, const std::string_view&... Arguments>
struct TemplateSpelling {
    static constexpr std::string_view arguments = []() -> std::string_view {
        if constexpr (sizeof...(Arguments) == 0)
            return piece::none;
        else
            return CommaList<Arguments...>::text;
    }();
    static constexpr std::string_view closing =
        arguments.ends_with('>') ? piece::closeAfterClose : piece::close;
    static constexpr std::string_view key = std::is_union_v<T> ? piece::unionKey : piece::structKey;
    static constexpr std::string_view text =
        Joined<key, TemplateName<T>::text, piece::open, arguments, closing>::text;
};

template <template <class...> class Template, class... Arguments>
struct Spelling<Template<Arguments...>>
    : TemplateSpelling<Template<Arguments...>, Spelling<Arguments>::text...> {};
template <template <auto...> class Template, auto... Values>
    requires(sizeof...(Values) > 0)
struct Spelling<Template<Values...>>
    : TemplateSpelling<Template<Values...>, ValueSpelling<Values>::text...> {};
template <template <class, auto...> class Template, class Argument, auto... Values>
    requires(sizeof...(Values) > 0)
struct Spelling<Template<Argument, Values...>>
    : TemplateSpelling<Template<Argument, Values...>, Spelling<Argument>::text,
                       ValueSpelling<Values>::text...> {};
template <class T, std::size_t Size>
struct Spelling<std::array<T, Size>>
    : TemplateSpelling<std::array<T, Size>, Spelling<T>::text, ValueSpelling<Size>::text> {};
template <class T, std::size_t Size>
struct Spelling<T[Size]>
    : Joined<Spelling<T>::text, piece::openSquare, ValueSpelling<Size>::text, piece::closeSquare> {
};
// An array of const is const itself: without these two it would be spelled in two ways.
template <class T, std::size_t Size>
struct Spelling<const T[Size]> : Joined<piece::constBefore, Spelling<T[Size]>::text> {};
template <class T>
struct Spelling<const T[]> : Joined<piece::constBefore, Spelling<T[]>::text> {};
template <class T>
struct Spelling<T[]> : Joined<Spelling<T>::text, piece::openSquare, piece::closeSquare> {};

/// The part of a function type behind its name: "(int,double)".
template <class... Parameters>
struct ParameterSpelling {
    static constexpr std::string_view list = []() -> std::string_view {
        if constexpr (sizeof...(Parameters) == 0)
            return piece::none;
        else
            return CommaList<Spelling<Parameters>::text...>::text;
    }();
    static constexpr std::string_view text =
        Joined<piece::openRound, list, piece::closeRound>::text;
};

template <class Result, class... Parameters>
struct Spelling<Result(Parameters...)>
    : Joined<Spelling<Result>::text, ParameterSpelling<Parameters...>::text> {};
template <class Result, class... Parameters>
struct Spelling<Result(Parameters...) const>
    : Joined<Spelling<Result(Parameters...)>::text, piece::constBehind> {};
template <class Result, class... Parameters>
struct Spelling<Result(Parameters...) noexcept>
    : Joined<Spelling<Result(Parameters...)>::text, piece::noexceptBehind> {};
template <class Result, class... Parameters>
struct Spelling<Result(Parameters...) const noexcept>
    : Joined<Spelling<Result(Parameters...)>::text, piece::constBehind, piece::noexceptBehind> {};

template <class Function, class Class>
    requires(std::is_function_v<Function>)
struct Spelling<Function Class::*>
    : Joined<Spelling<Class>::text, piece::memberStar, piece::blank, Spelling<Function>::text> {};
} // namespace zt::detail
