#include <zintar/zintar.h>

class Room : public ZTBase
{
    ZT_OBJECT(Room, ZTBase)
    static constexpr auto members() { return zt::members(zt::info("from", "room.cpp")); }
};
ZT_CLASS(Room)
