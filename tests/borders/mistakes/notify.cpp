// expect: notify<...>() names no event of the class or its super classes.
#include <zintar/zintar.h>

class Lamp : public ZTBase
{
    ZT_OBJECT(Lamp, ZTBase)
public:
    int level() const { return 0; }
    void levelChanged(int) {}

private:
    static constexpr auto members()
    {
        return zt::members(zt::method<&Self::levelChanged>(),
                           zt::property<&Self::level>().notify<&Self::levelChanged>());
    }
};
ZT_CLASS(Lamp)
