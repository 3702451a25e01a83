// expect: A variant cannot hold a std::initializer_list, which does not own what is in it: use a
// std::vector.
#include <zintar/zintar.h>

ZTVariant hold(std::initializer_list<int> numbers) { return ZTVariant(numbers); }
