// expect: A variant cannot hold an array, nor text of other characters than char: use a std::array,
// a std::vector or a string.
#include <zintar/zintar.h>

ZTVariant hold(const int (&numbers)[3]) { return ZTVariant(numbers); }
