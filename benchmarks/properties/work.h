#pragma once

#include "field.h"

#include <array>
#include <string>

// The properties of a class three levels deep: seven, seven and six numbers.
#define ITEM_FIELDS(X) X(x) X(y) X(width) X(height) X(rotation) X(opacity) X(visible)
#define CONTROL_FIELDS(X)                                                                          \
    X(enabled) X(focusOrder) X(minWidth) X(minHeight) X(maxWidth) X(maxHeight) X(margin)
#define TEXT_FIELDS(X)                                                                             \
    X(fontSize) X(lineHeight) X(alignment) X(textColour) X(maxLength) X(cursorPosition)

/// As a script or a file gives them.
#define QUOTED(name) #name,
inline const auto propertyNames =
    std::to_array<std::string>({ITEM_FIELDS(QUOTED) CONTROL_FIELDS(QUOTED) TEXT_FIELDS(QUOTED)});
static_assert(std::tuple_size_v<decltype(propertyNames)> == 20);
