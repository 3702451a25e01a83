#pragma once

/// @file
/// `ZT_EXPORT` marks what crosses the border of the shared library. The library is built with
/// hidden visibility, so whatever does not bear the mark stays inside.

#if __cplusplus < 202002L
#    error "Zintar needs C++20 or later: compile with -std=c++20, say."
#endif

#define ZT_EXPORT [[gnu::visibility("default")]]
