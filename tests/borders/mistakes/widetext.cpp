// expect: A variant cannot hold an array, nor text of other characters than char: use a std::array,
// a std::vector or a string.
#include <zintar/zintar.h>

void setTitle(ZTBase& window) { window.setProperty("title", L"wide"); }
