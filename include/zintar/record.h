#pragma once

#include <zintar/detail/values/recordfields.h>
#include <zintar/metatypeof.h>

#include <string_view>

/// @file
/// Plain structs whose fields the library knows by name.

/// Makes the fields of a struct known, so that they can be asked, read and written through a
/// variant (`ZTRecordView`), and lets the struct stream, print and compare by them, unless it has
/// operators of its own.
///
///     struct Color {
///         unsigned char red = 0, green = 0, blue = 0;
///     };
///     ZT_RECORD(Color, red, green, blue)
///
/// The line stands in the namespace of the struct or outside of all namespaces, so that it serves
/// structs of somebody else as well; and it is seen wherever a value of the type is used, like an
/// operator. The fields are public, in the order in which they are to be streamed: 1 to 64 of
/// them, inherited ones included. One that is const is shown, but not written.
#define ZT_RECORD(Type, ...)                                                                       \
    [[maybe_unused]] constexpr auto ztRecordFields(::zt::detail::RecordOf<Type>)                   \
    {                                                                                              \
        using Self = Type;                                                                         \
        struct Names {                                                                             \
            static constexpr std::string_view text() { return #__VA_ARGS__; }                      \
        };                                                                                         \
        return ::zt::detail::checkedFields<::zt::detail::RecordFields<                             \
            Self, Names __VA_OPT__(, ZT_DETAIL_EXPAND(ZT_DETAIL_FIELD(__VA_ARGS__)))>>();          \
    }                                                                                              \
    static_assert(::zt::detail::isDeclaredRecord<Type>,                                            \
                  "ZT_RECORD(" #Type ", ...) stands in front of the first use of the type as a "   \
                  "value, in the namespace of the type or outside of all namespaces.");

// Each round of expansion reaches the next field.
#define ZT_DETAIL_FIELD(First, ...)                                                                \
    &Self::First __VA_OPT__(, ZT_DETAIL_NEXT_FIELD ZT_DETAIL_CALL(__VA_ARGS__))
#define ZT_DETAIL_NEXT_FIELD() ZT_DETAIL_FIELD
#define ZT_DETAIL_CALL ()
#define ZT_DETAIL_EXPAND(...)                                                                      \
    ZT_DETAIL_EXPAND_MORE(                                                                         \
        ZT_DETAIL_EXPAND_MORE(ZT_DETAIL_EXPAND_MORE(ZT_DETAIL_EXPAND_MORE(__VA_ARGS__))))
#define ZT_DETAIL_EXPAND_MORE(...)                                                                 \
    ZT_DETAIL_EXPAND_ON(ZT_DETAIL_EXPAND_ON(ZT_DETAIL_EXPAND_ON(ZT_DETAIL_EXPAND_ON(__VA_ARGS__))))
#define ZT_DETAIL_EXPAND_ON(...)                                                                   \
    ZT_DETAIL_EXPAND_ONCE(                                                                         \
        ZT_DETAIL_EXPAND_ONCE(ZT_DETAIL_EXPAND_ONCE(ZT_DETAIL_EXPAND_ONCE(__VA_ARGS__))))
#define ZT_DETAIL_EXPAND_ONCE(...) __VA_ARGS__
