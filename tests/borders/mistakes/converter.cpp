// expect: a converter is a lambda without captures. Write one around a function.
#include <zintar/zintar.h>

void registerConverter(double factor)
{
    ztRegisterConverter([factor](int number) { return factor * number; });
}
