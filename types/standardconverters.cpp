#include <zintar/standardconverters.h>

#include "metatypeprivate.h"

#include <zintar/metatypeof.h>

#include <charconv>
#include <cmath>
#include <limits>
#include <optional>
#include <string>
#include <system_error>
#include <tuple>
#include <type_traits>

// The conversions that a host gets with one call. Each is a plain function from one value to
// another; the registry keeps one for each ordered pair of types.

namespace
{
/// The arithmetic type behind one of the library's own integers.
template <class T>
struct NumberOf {
    using type = T;
};
template <class Integer>
struct NumberOf<zt::detail::FixedInteger<Integer>> {
    using type = Integer;
};
template <class T>
using Number = typename NumberOf<T>::type;

template <class To, class From>
bool isNegativeAlike(From from, To to)
{
    bool fromNegative = false;
    bool toNegative = false;
    if constexpr (std::is_signed_v<From>)
        fromNegative = from < 0;
    if constexpr (std::is_signed_v<To>)
        toNegative = to < 0;
    return fromNegative == toNegative;
}

/// 2 to the power of the number of bits: the first floating-point number above all of the type.
template <class Integer, class Floating>
constexpr Floating endOf()
{
    Floating end = 1;
    for (int bit = 0; bit < std::numeric_limits<Integer>::digits; ++bit)
        end *= 2;
    return end;
}

template <class Integer, class Floating>
bool isInRange(Floating value)
{
    constexpr bool isSigned = std::is_signed_v<Integer>;
    constexpr Floating end = endOf<Integer, Floating>();
    return value < end && value >= (isSigned ? -end : Floating(0));
}

/// The same number in another type; nothing where that has no such number. No cast is made whose
/// result the language leaves open.
template <class To, class From>
std::optional<To> exactly(From from)
{
    if constexpr (std::is_same_v<To, bool>) {
        if (from != From(0) && from != From(1))
            return std::nullopt;
        return from != From(0);
    } else if constexpr (std::is_integral_v<To> && std::is_integral_v<From>) {
        const To to =
            static_cast<To>(from); // NOLINT(bugprone-signed-char-misuse): numbers are meant
        if (static_cast<From>(to) != from || !isNegativeAlike(from, to))
            return std::nullopt;
        return to;
    } else if constexpr (std::is_integral_v<To>) {
        if (!isInRange<To>(from) || std::trunc(from) != from)
            return std::nullopt;
        return static_cast<To>(from);
    } else if constexpr (std::is_integral_v<From>) {
        const To to = static_cast<To>(from);
        if (!isInRange<From>(to) || static_cast<From>(to) != from)
            return std::nullopt;
        return to;
    } else {
        if (std::isfinite(from) && std::fabs(from) > std::numeric_limits<To>::max())
            return std::nullopt;
        const To to = static_cast<To>(from);
        if (static_cast<From>(to) != from && !std::isnan(from))
            return std::nullopt;
        return to;
    }
}

template <class Value>
std::optional<Value> parsed(const std::string& text)
{
    if constexpr (std::is_same_v<Value, bool>) {
        if (text != "true" && text != "false")
            return std::nullopt;
        return text == "true";
    } else if constexpr (std::is_same_v<Value, char>) {
        if (text.size() != 1)
            return std::nullopt;
        return text[0];
    } else {
        Value value{};
        const char* end = text.data() + text.size();
        const auto [stop, error] = std::from_chars(text.data(), end, value);
        if (error != std::errc() || stop != end)
            return std::nullopt;
        return value;
    }
}

template <class Value>
std::string written(Value value)
{
    if constexpr (std::is_same_v<Value, bool>) {
        return value ? "true" : "false";
    } else if constexpr (std::is_same_v<Value, char>) {
        return std::string(1, value);
    } else {
        char buffer[64]; // a long double needs less than 32
        return {buffer, std::to_chars(buffer, buffer + sizeof buffer, value).ptr};
    }
}

template <class From, class To>
std::optional<To> converted(const From& from)
{
    if constexpr (std::is_same_v<From, std::string>)
        return parsed<Number<To>>(from);
    else if constexpr (std::is_same_v<To, std::string>)
        return written<Number<From>>(from);
    else
        return exactly<Number<To>, Number<From>>(from);
}

/// As the registry keeps it. The source is null in a variant that has no value.
template <class From, class To>
bool convert(const void* source, void* target)
{
    if (!source)
        return false;
    std::optional<To> result = converted<From, To>(*static_cast<const From*>(source));
    if (!result)
        return false;
    *static_cast<To*>(target) = *std::move(result);
    return true;
}

template <class From, class To>
void addConverter()
{
    if constexpr (!std::is_same_v<From, To>)
        ztMetaTypeRegistry().addConverter(ztMetaType<From>(), ztMetaType<To>(), &convert<From, To>);
}

template <class... Types>
struct AllAmong {
    static void add() { (addFrom<Types>(), ...); }

private:
    template <class From>
    static void addFrom()
    {
        (addConverter<From, Types>(), ...);
    }
};
} // namespace

void ztRegisterStandardConverters()
{
    AllAmong<bool, char, signed char, unsigned char, short, unsigned short, int, unsigned int,
             ZTLong, ZTULong, long long, unsigned long long, float, double, long double,
             std::string>::add();
    ztMetaTypeRegistry().nullIsAnyObject.store(true, std::memory_order_release);
}
