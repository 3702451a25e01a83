#pragma once

/// @file
/// `ZT_EXPORT` marks what crosses the border of the shared library. The library is built with
/// hidden visibility, so whatever does not bear the mark stays inside.

#if __cplusplus < 202002L
#    error "Zintar needs C++20 or later: compile with -std=c++20, say."
#endif

// Containers cross the border, and with checks in them they have another layout.
#if defined(_GLIBCXX_DEBUG) && !defined(ZT_BUILT_WITH_GLIBCXX_DEBUG)
#    error "Zintar was built without _GLIBCXX_DEBUG: build both with it, or neither."
#elif !defined(_GLIBCXX_DEBUG) && defined(ZT_BUILT_WITH_GLIBCXX_DEBUG)
#    error "Zintar was built with _GLIBCXX_DEBUG: build both with it, or neither."
#endif

#define ZT_EXPORT [[gnu::visibility("default")]]
