#include "house.h"

ZT_CLASS(Room)
ZT_CLASS(Lamp)
ZT_CLASS(Switch)

namespace
{
template <class T>
T* add(ZTBase* parent, const char* name)
{
    T* made = ztMake<T>(parent);
    made->name = name;
    return made;
}
} // namespace

std::unique_ptr<ZTBase> makeHouse()
{
    auto house = std::make_unique<Room>();
    house->name = "house";
    Room* kitchen = add<Room>(house.get(), "kitchen");
    kitchen->area = 12.5;
    Lamp* lamp = add<Lamp>(kitchen, "lamp");
    add<Switch>(kitchen, "switch")->lamp = lamp;
    add<Room>(house.get(), "attic")->setProperty("note", "needs a lamp", true);
    return house;
}
