#pragma once

#include <array>

// The methods of the class: each takes two numbers and gives one.
#define METHODS(X)                                                                                 \
    X(moveBy)                                                                                      \
    X(resizeTo)                                                                                    \
    X(scrollTo) X(select) X(insertRow) X(removeRow) X(setCell) X(swapRows) X(zoomTo) X(setRange)

/// One of them, to be put into a class.
#define METHOD(name)                                                                               \
public:                                                                                            \
    int name(int a, int b)                                                                         \
    {                                                                                              \
        m_sum += a;                                                                                \
        return a + b;                                                                              \
    }

#define QUOTED(name) #name,
inline constexpr auto methodNames = std::to_array<const char*>({METHODS(QUOTED)});
static_assert(methodNames.size() == 10);
