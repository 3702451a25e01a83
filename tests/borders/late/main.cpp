#include <dlfcn.h>

#include <cstdio>

/// Loads the library into a running program that was not linked with it.
int main(int, char** arguments)
{
    if (dlopen(arguments[1], RTLD_NOW))
        return 0;
    std::puts(dlerror());
    return 1;
}
