// expect: ZTBase must be the first base of an object class that has virtual functions.
#include <zintar/zintar.h>

struct Painter {
    virtual ~Painter() = default;
};

class Lamp : public Painter, public ZTBase
{
    ZT_OBJECT(Lamp, ZTBase)
    static constexpr auto members() { return zt::members(); }
};
ZT_CLASS(Lamp)
