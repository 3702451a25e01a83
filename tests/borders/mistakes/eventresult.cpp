// expect: An event returns nothing.
#include <zintar/zintar.h>

class Lamp : public ZTBase
{
    ZT_OBJECT(Lamp, ZTBase)
public:
    bool switched() { return true; }

private:
    static constexpr auto members() { return zt::members(zt::event<&Self::switched>()); }
};
ZT_CLASS(Lamp)
