#include "house.h"

#include <zintar/standardconverters.h>

#include <dlfcn.h>

#include <iostream>
#include <string>

namespace
{
/// Its classes are known as soon as it is loaded. It stays loaded to the end, like every plugin
/// that declares classes.
std::string load(const std::string& plugin)
{
    return dlopen(plugin.c_str(), RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE) ? "" : dlerror();
}
} // namespace

int main(int count, char** arguments)
{
    if (count < 2) {
        std::cerr << "usage: plugins [PLUGIN.so]... [COMMAND]...\n\n" << plugins::help;
        return 2;
    }
    std::cout << std::unitbuf; // in the order of what goes to the other stream
    ztRegisterStandardConverters();
    plugins::House house;
    int mistakes = 0;
    for (int i = 1; i < count; ++i) {
        const std::string argument = arguments[i];
        const std::string mistake =
            argument.ends_with(".so") ? load(argument) : house.carryOut(argument);
        if (!mistake.empty()) {
            std::cerr << "plugins: " << mistake << "\n";
            ++mistakes;
        }
    }
    return mistakes == 0 ? 0 : 1;
}
