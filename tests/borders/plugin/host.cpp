#include "lamp.h"

#include <dlfcn.h>

#include <iostream>
#include <optional>

namespace
{
int failures = 0;

void check(bool holds, const char* what)
{
    std::cout << (holds ? "ok      " : "FAILED  ") << what << "\n";
    failures += holds ? 0 : 1;
}

template <class Function>
Function* find(void* plugin, const char* name)
{
    return reinterpret_cast<Function*>(dlsym(plugin, name));
}
} // namespace

int main(int, char** arguments)
{
    std::optional<ZTLogCapture> log(std::in_place);
    void* plugin = dlopen(arguments[1], RTLD_NOW | RTLD_LOCAL);
    if (!plugin) {
        std::cerr << dlerror() << "\n";
        return 1;
    }
    auto* typeInPlugin = find<const ZTMetaType*(int)>(plugin, "typeInPlugin");
    check(typeInPlugin(0) == &ztMetaType<Lamp*>(), "a pointer type is one type in both");
    check(typeInPlugin(1) == &ztMetaType<Lamp::Colour>(), "a value type is one type in both");
    check(typeInPlugin(2) == &ztMetaType<std::string>(), "a built-in type is one type in both");
    check(log->text().empty(), "a type that both have is not told as two of one name");
    log.reset();

    Lamp master;
    ZTBase room;
    auto* makeDimmer = find<ZTBase*(ZTBase*, Lamp*)>(plugin, "makeDimmer");
    ZTBase* dimmer = makeDimmer(&room, &master);
    const ZTMetaClass* dimmerClass = dimmer->metaClass();
    check(dimmerClass->superClass() == &Lamp::typeMetaClass(), "its super class is the program's");
    check(ztMetaType("struct Dimmer*").metaClass() == dimmerClass, "its class is found by name");
    master.setLevel(7);
    check(dimmer->property<int>("level") == 7, "an event of the program reaches the plugin");

    int heard = 0;
    auto subscription = ZTBase::subscribe(static_cast<Lamp*>(dimmer), &Lamp::levelChanged,
                                          [&](int level) { heard = level; });
    master.setProperty("level", 8);
    check(heard == 8, "an event of the plugin reaches the program");
    ZTVariant asLamp(dimmer);
    check(ztVariantValue<Lamp*>(asLamp) == dimmer, "a pointer goes along the class tree");
    return failures == 0 ? 0 : 1;
}
