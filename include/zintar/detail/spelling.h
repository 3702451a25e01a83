#pragma once

#include <zintar/detail/compilertext.h>
#include <zintar/integers.h>

#include <array>
#include <cstddef>
#include <string>
#include <string_view>
#include <type_traits>

/// @file
/// The names of types.
///
/// A type is taken apart as far as templates can (pointers, functions, template arguments) and
/// each piece is spelled by the library's own rules. What is left, the qualified name of a class
/// or an enumeration, is the compiler's text.

namespace zt::detail
{
template <class T>
struct Spelling;

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
inline constexpr std::string_view dots = "...";
inline constexpr std::string_view volatileBefore = "volatile ";
inline constexpr std::string_view volatileBehind = "volatile";
inline constexpr std::string_view constVolatileBefore = "const volatile ";
inline constexpr std::string_view constVolatileBehind = "const volatile";
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

/// The spelled name of `T`. The primary template serves classes, unions and enumerations, and what
/// a compiler has beyond the language.
template <class T>
struct Spelling {
    static constexpr std::string_view key = std::is_enum_v<T>    ? piece::enumKey
                                            : std::is_union_v<T> ? piece::unionKey
                                            : std::is_class_v<T> ? piece::structKey
                                                                 : piece::none;
    static constexpr std::string_view text = Joined<key, QualifiedName<T>::text>::text;
};

#if defined(__SIZEOF_INT128__)
__extension__ using WideInteger = __int128;
__extension__ using UnsignedWideInteger = unsigned __int128;
#endif

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
template <> struct Spelling<long> { static constexpr std::string_view text = longName; };
template <> struct Spelling<unsigned long> { static constexpr std::string_view text = unsignedLongName; };
template <> struct Spelling<float> { static constexpr std::string_view text = "float"; };
template <> struct Spelling<double> { static constexpr std::string_view text = "double"; };
template <> struct Spelling<long double> { static constexpr std::string_view text = "long double"; };
#if defined(__SIZEOF_INT128__)
template <> struct Spelling<WideInteger> { static constexpr std::string_view text = "__int128"; };
template <> struct Spelling<UnsignedWideInteger> { static constexpr std::string_view text = "unsigned __int128"; };
#endif
template <> struct Spelling<FixedInteger<std::int32_t>> { static constexpr std::string_view text = "long"; };
template <> struct Spelling<FixedInteger<std::uint32_t>> { static constexpr std::string_view text = "unsigned long"; };
template <> struct Spelling<std::string> {
    static constexpr std::string_view text =
        "class std::basic_string<char,struct std::char_traits<char>,class std::allocator<char> >";
};
// clang-format on

template <class T>
inline constexpr bool isPointerLike = std::is_pointer_v<T> || std::is_member_pointer_v<T>;

/// What qualifies a pointer stands behind it, where it cannot be taken for what it points to.
template <class T, const std::string_view& Before, const std::string_view& Behind>
struct Qualified {
    static constexpr std::string_view text = [] {
        if constexpr (isPointerLike<T>)
            return Joined<Spelling<T>::text, Behind>::text;
        else
            return Joined<Before, Spelling<T>::text>::text;
    }();
};
// An array of const is const itself, and spelled by its elements.
template <class T>
    requires(!std::is_array_v<T>)
struct Spelling<const T> : Qualified<T, piece::constBefore, piece::constBehind> {};
template <class T>
    requires(!std::is_array_v<T>)
struct Spelling<volatile T> : Qualified<T, piece::volatileBefore, piece::volatileBehind> {};
template <class T>
    requires(!std::is_array_v<T>)
struct Spelling<const volatile T>
    : Qualified<T, piece::constVolatileBefore, piece::constVolatileBehind> {};
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
        TextBuffer<Spelling<T>::text.size() + 44> out;
        if (!std::is_same_v<T, int>) {
            out.append("(");
            out.append(Spelling<T>::text);
            out.append(")");
        }
        bool negative = Value < T(0);
        auto digit = [](long long d) { return static_cast<char>('0' + (d < 0 ? -d : d)); };
        std::array<char, 40> digits{};
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

template <class T>
inline constexpr bool isFunctionPointer =
    std::is_member_function_pointer_v<T> || std::is_function_v<std::remove_pointer_t<T>>;

template <auto Value>
struct Constant;

/// Without comparing the pointers, which under a sanitizer is nothing for the compiler to do.
template <auto Value>
constexpr bool isNull()
{
    if constexpr (isPointerLike<decltype(Value)> || std::is_null_pointer_v<decltype(Value)>)
        return std::is_same_v<Constant<Value>, Constant<decltype(Value)(nullptr)>>;
    else
        return false;
}

/// The name of a function. Only one compiler tells the arguments of a function template.
template <auto Value>
struct FunctionName {
    static constexpr auto buffer = normalised<CompilerValue<Value>>();
    static constexpr std::string_view text = withoutArguments(buffer.view());
};

template <auto Value>
constexpr auto bytesOf()
{
    return __builtin_bit_cast(std::array<unsigned char, sizeof(Value)>, Value);
}
/// Takes each byte in hand, which does not compile if there is one that has no value.
template <auto Value>
constexpr int touchBytes()
{
    int sum = 0;
    for (unsigned char byte : bytesOf<Value>())
        sum += byte;
    return sum;
}
/// An object that is made of single bytes: of text, mostly, which each compiler writes in its way
/// and one cuts short.
template <auto Value>
concept ObjectOfBytes =
    std::is_class_v<std::remove_cv_t<decltype(Value)>> && alignof(decltype(Value)) == 1 && requires
{
    typename std::integral_constant<int, touchBytes<Value>()>;
};

/// The bytes of an object as text, or as numbers of two digits each where they are none.
template <auto Value>
struct BytesSpelling {
    static constexpr auto buffer = [] {
        constexpr auto bytes = bytesOf<Value>();
        std::size_t size = bytes.size();
        while (size > 0 && bytes[size - 1] == 0)
            --size;
        bool isText = true;
        for (std::size_t i = 0; i < size; ++i)
            isText = isText && bytes[i] >= ' ' && bytes[i] <= '~';
        TextBuffer<2 * bytes.size() + 4> out;
        out.append(isText ? "{\"" : "{");
        for (std::size_t i = 0; i < (isText ? size : bytes.size()); ++i) {
            const std::array text{static_cast<char>(bytes[i])};
            const std::string_view digits = "0123456789ABCDEF";
            if (isText) {
                out.append({text.data(), 1});
            } else {
                out.append(digits.substr(bytes[i] / 16, 1));
                out.append(digits.substr(bytes[i] % 16, 1));
            }
        }
        out.append(isText ? "\"}" : "}");
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
        } else if constexpr (isNull<Value>()) {
            return Joined<piece::openRound, Spelling<T>::text, piece::closeRound,
                          Spelling<std::nullptr_t>::text>::buffer;
        } else if constexpr (isFunctionPointer<T>) {
            return Joined<piece::openRound, Spelling<T>::text, piece::closeRound, piece::ampersand,
                          FunctionName<Value>::text>::buffer;
        } else if constexpr (ObjectOfBytes<Value>) {
            return Joined<Spelling<T>::text, BytesSpelling<Value>::text>::buffer;
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

// Templates can be matched by the kinds of their parameters alone, so each mixture of types and
// values has its own: some of them in front, and then a pack of the other kind than the last. What
// is mixed further is left to the compiler.

template <template <class...> class Template, class... Arguments>
struct Spelling<Template<Arguments...>>
    : TemplateSpelling<Template<Arguments...>, Spelling<Arguments>::text...> {};
template <template <auto...> class Template, auto... Values>
    requires(sizeof...(Values) > 0)
struct Spelling<Template<Values...>>
    : TemplateSpelling<Template<Values...>, ValueSpelling<Values>::text...> {};
template <template <class, auto...> class Template, class A, auto... Rest>
    requires(sizeof...(Rest) > 0)
struct Spelling<Template<A, Rest...>>
    : TemplateSpelling<Template<A, Rest...>, Spelling<A>::text, ValueSpelling<Rest>::text...> {};
template <template <auto, class...> class Template, auto A, class... Rest>
    requires(sizeof...(Rest) > 0)
struct Spelling<Template<A, Rest...>>
    : TemplateSpelling<Template<A, Rest...>, ValueSpelling<A>::text, Spelling<Rest>::text...> {};
template <template <class, class, auto...> class Template, class A, class B, auto... Rest>
    requires(sizeof...(Rest) > 0)
struct Spelling<Template<A, B, Rest...>>
    : TemplateSpelling<Template<A, B, Rest...>, Spelling<A>::text, Spelling<B>::text,
                       ValueSpelling<Rest>::text...> {};
template <template <auto, class, auto...> class Template, auto A, class B, auto... Rest>
    requires(sizeof...(Rest) > 0)
struct Spelling<Template<A, B, Rest...>>
    : TemplateSpelling<Template<A, B, Rest...>, ValueSpelling<A>::text, Spelling<B>::text,
                       ValueSpelling<Rest>::text...> {};
template <template <class, auto, class...> class Template, class A, auto B, class... Rest>
    requires(sizeof...(Rest) > 0)
struct Spelling<Template<A, B, Rest...>>
    : TemplateSpelling<Template<A, B, Rest...>, Spelling<A>::text, ValueSpelling<B>::text,
                       Spelling<Rest>::text...> {};
template <template <auto, auto, class...> class Template, auto A, auto B, class... Rest>
    requires(sizeof...(Rest) > 0)
struct Spelling<Template<A, B, Rest...>>
    : TemplateSpelling<Template<A, B, Rest...>, ValueSpelling<A>::text, ValueSpelling<B>::text,
                       Spelling<Rest>::text...> {};
template <template <class, class, class, auto...> class Template, class A, class B, class C,
          auto... Rest>
    requires(sizeof...(Rest) > 0)
struct Spelling<Template<A, B, C, Rest...>>
    : TemplateSpelling<Template<A, B, C, Rest...>, Spelling<A>::text, Spelling<B>::text,
                       Spelling<C>::text, ValueSpelling<Rest>::text...> {};
template <template <class, auto, class, auto...> class Template, class A, auto B, class C,
          auto... Rest>
    requires(sizeof...(Rest) > 0)
struct Spelling<Template<A, B, C, Rest...>>
    : TemplateSpelling<Template<A, B, C, Rest...>, Spelling<A>::text, ValueSpelling<B>::text,
                       Spelling<C>::text, ValueSpelling<Rest>::text...> {};
template <template <auto, class, class, auto...> class Template, auto A, class B, class C,
          auto... Rest>
    requires(sizeof...(Rest) > 0)
struct Spelling<Template<A, B, C, Rest...>>
    : TemplateSpelling<Template<A, B, C, Rest...>, ValueSpelling<A>::text, Spelling<B>::text,
                       Spelling<C>::text, ValueSpelling<Rest>::text...> {};
template <template <auto, auto, class, auto...> class Template, auto A, auto B, class C,
          auto... Rest>
    requires(sizeof...(Rest) > 0)
struct Spelling<Template<A, B, C, Rest...>>
    : TemplateSpelling<Template<A, B, C, Rest...>, ValueSpelling<A>::text, ValueSpelling<B>::text,
                       Spelling<C>::text, ValueSpelling<Rest>::text...> {};
template <template <class, class, auto, class...> class Template, class A, class B, auto C,
          class... Rest>
    requires(sizeof...(Rest) > 0)
struct Spelling<Template<A, B, C, Rest...>>
    : TemplateSpelling<Template<A, B, C, Rest...>, Spelling<A>::text, Spelling<B>::text,
                       ValueSpelling<C>::text, Spelling<Rest>::text...> {};
template <template <class, auto, auto, class...> class Template, class A, auto B, auto C,
          class... Rest>
    requires(sizeof...(Rest) > 0)
struct Spelling<Template<A, B, C, Rest...>>
    : TemplateSpelling<Template<A, B, C, Rest...>, Spelling<A>::text, ValueSpelling<B>::text,
                       ValueSpelling<C>::text, Spelling<Rest>::text...> {};
template <template <auto, class, auto, class...> class Template, auto A, class B, auto C,
          class... Rest>
    requires(sizeof...(Rest) > 0)
struct Spelling<Template<A, B, C, Rest...>>
    : TemplateSpelling<Template<A, B, C, Rest...>, ValueSpelling<A>::text, Spelling<B>::text,
                       ValueSpelling<C>::text, Spelling<Rest>::text...> {};
template <template <auto, auto, auto, class...> class Template, auto A, auto B, auto C,
          class... Rest>
    requires(sizeof...(Rest) > 0)
struct Spelling<Template<A, B, C, Rest...>>
    : TemplateSpelling<Template<A, B, C, Rest...>, ValueSpelling<A>::text, ValueSpelling<B>::text,
                       ValueSpelling<C>::text, Spelling<Rest>::text...> {};

/// What stands behind the element of an array, the outermost extent first.
template <class T>
struct Extents {
    static constexpr std::string_view text = piece::none;
};
template <class T>
struct Extents<T[]> : Joined<piece::openSquare, piece::closeSquare, Extents<T>::text> {};
template <class T, std::size_t Size>
struct Extents<T[Size]>
    : Joined<piece::openSquare, ValueSpelling<Size>::text, piece::closeSquare, Extents<T>::text> {};

template <class T>
    requires(std::is_array_v<T>)
struct Spelling<T> : Joined<Spelling<std::remove_all_extents_t<T>>::text, Extents<T>::text> {};

/// A function type: its result, its parameters, "..." if there are more, and what qualifies it.
template <const std::string_view& More, const std::string_view& Qualifiers, bool Noexcept,
          class Result, class... Parameters>
struct FunctionSpelling {
    static constexpr std::string_view list = []() -> std::string_view {
        if constexpr (sizeof...(Parameters) == 0)
            return More;
        else if constexpr (More.empty())
            return CommaList<Spelling<Parameters>::text...>::text;
        else
            return CommaList<Spelling<Parameters>::text..., More>::text;
    }();
    static constexpr std::string_view ending = Noexcept ? piece::noexceptBehind : piece::none;
    static constexpr std::string_view gap =
        Noexcept && !Qualifiers.empty() && isIdentifierChar(Qualifiers.back()) ? piece::blank
                                                                               : piece::none;
    static constexpr std::string_view text =
        Joined<Spelling<Result>::text, piece::openRound, list, piece::closeRound, Qualifiers, gap,
               ending>::text;
};

#define ZT_DETAIL_FUNCTION(qualifiers, name)                                                       \
    namespace piece                                                                                \
    {                                                                                              \
    inline constexpr std::string_view name = #qualifiers;                                          \
    }                                                                                              \
    template <class Result, class... Parameters, bool Noexcept>                                    \
    struct Spelling<Result(Parameters...) qualifiers noexcept(Noexcept)>                           \
        : FunctionSpelling<piece::none, piece::name, Noexcept, Result, Parameters...> {};          \
    template <class Result, class... Parameters, bool Noexcept>                                    \
    struct Spelling<Result(Parameters..., ...) qualifiers noexcept(Noexcept)>                      \
        : FunctionSpelling<piece::dots, piece::name, Noexcept, Result, Parameters...> {};

ZT_DETAIL_FUNCTION(, unqualified)
ZT_DETAIL_FUNCTION(&, onLvalue)
ZT_DETAIL_FUNCTION(&&, onRvalue)
ZT_DETAIL_FUNCTION(const, onConst)
ZT_DETAIL_FUNCTION(const&, onConstLvalue)
ZT_DETAIL_FUNCTION(const&&, onConstRvalue)
ZT_DETAIL_FUNCTION(volatile, onVolatile)
ZT_DETAIL_FUNCTION(volatile&, onVolatileLvalue)
ZT_DETAIL_FUNCTION(volatile&&, onVolatileRvalue)
ZT_DETAIL_FUNCTION(const volatile, onConstVolatile)
ZT_DETAIL_FUNCTION(const volatile&, onConstVolatileLvalue)
ZT_DETAIL_FUNCTION(const volatile&&, onConstVolatileRvalue)
#undef ZT_DETAIL_FUNCTION

template <class Function, class Class>
    requires(std::is_function_v<Function>)
struct Spelling<Function Class::*>
    : Joined<Spelling<Class>::text, piece::memberStar, piece::blank, Spelling<Function>::text> {};
} // namespace zt::detail
