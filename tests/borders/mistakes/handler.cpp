// expect: A handler takes the leading parameters of the event, of the same types.
#include <zintar/zintar.h>

class Lamp : public ZTBase
{
    ZT_OBJECT(Lamp, ZTBase)
public:
    void levelChanged(int level) { sendEvent<&Self::levelChanged>(level); }
    void follow(double) {}

private:
    static constexpr auto members() { return zt::members(zt::event<&Self::levelChanged>()); }
};

void connect(Lamp& a, Lamp& b) { ZTBase::subscribe(&a, &Lamp::levelChanged, &b, &Lamp::follow); }
