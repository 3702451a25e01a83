// expect: keep it: the subscription ends with it
#include <zintar/zintar.h>

#pragma GCC diagnostic error "-Wunused-result"

class Lamp : public ZTBase
{
    ZT_OBJECT(Lamp, ZTBase)
public:
    void switched() { sendEvent<&Self::switched>(); }

private:
    static constexpr auto members() { return zt::members(zt::event<&Self::switched>()); }
};

void listen(Lamp& lamp, int& count)
{
    ZTBase::subscribe(&lamp, &Lamp::switched, [&count] { ++count; });
}
