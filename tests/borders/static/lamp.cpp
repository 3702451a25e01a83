#include <zintar/zintar.h>

class Lamp : public ZTBase
{
    ZT_OBJECT(Lamp, ZTBase)
    static constexpr auto members() { return zt::members(zt::info("from", "lamp.cpp")); }
};
ZT_CLASS(Lamp)
