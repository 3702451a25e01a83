#include "namesake.h"

namespace
{
struct Namesake {
    int number;
};
} // namespace

ZTVariant support::namesakeElsewhere(int number) { return ZTVariant(Namesake{number}); }
