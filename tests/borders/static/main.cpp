#include <zintar/zintar.h>

#include <iostream>
#include <string>

/// Whether the class is there, though no code names it.
bool isThere(const std::string& name)
{
    const ZTMetaClass* found = ztMetaType("struct " + name + "*").metaClass();
    const bool isIt = found && found->typeName() == "struct " + name;
    std::cout << name << (isIt ? " is there\n" : " is missing\n");
    return isIt;
}

int main()
{
    bool all = true;
    for (const char* name : {"Lamp", "Room", "ZTBase", "ZTDynamicBase"})
        all = isThere(name) && all;
    ZTBase parent;
    auto* child = new ZTBase(&parent);
    return all && parent.children().at(0) == child ? 0 : 1;
}
