#pragma once

#include <zintar/variant.h>

namespace support
{
/// A value of a type in an anonymous namespace of another file: (anonymous)::Namesake.
ZTVariant namesakeElsewhere(int number);
} // namespace support
