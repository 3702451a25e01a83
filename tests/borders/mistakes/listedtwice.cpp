// expect: a member is listed twice
#include <zintar/zintar.h>

class Lamp : public ZTBase
{
    ZT_OBJECT(Lamp, ZTBase)
public:
    void blink() {}

private:
    static constexpr auto members()
    {
        return zt::members(zt::method<&Self::blink>(), zt::method<&Self::blink>());
    }
};
ZT_CLASS(Lamp)
