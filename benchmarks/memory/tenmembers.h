#pragma once

#include "field.h"

// The members of a class with ten properties.
#define NINE_FIELDS(X)                                                                             \
    X(second) X(third) X(fourth) X(fifth) X(sixth) X(seventh) X(eighth) X(ninth) X(tenth)
#define TEN_FIELDS(X) X(first) NINE_FIELDS(X)
