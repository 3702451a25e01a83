#pragma once

#include <array>
#include <string>

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

/// As a script or a file gives them.
#define QUOTED(name) #name,
inline const auto methodNames = std::to_array<std::string>({METHODS(QUOTED)});
static_assert(std::tuple_size_v<decltype(methodNames)> == 10);
