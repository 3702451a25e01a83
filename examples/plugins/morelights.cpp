// A plugin that was made without a look at the other one: it has a class of the same name.

#include <zintar/zintar.h>

namespace lights
{
class Lamp : public ZTBase
{
    ZT_OBJECT(Lamp, ZTBase)
    static constexpr auto members()
    {
        return zt::members(zt::property<&Self::m_watts>().as("watts"));
    }
    int m_watts = 60;
};
ZT_CLASS(Lamp)

class Lantern : public Lamp
{
    ZT_OBJECT(Lantern, Lamp)
    static constexpr auto members() { return zt::members(); }
};
ZT_CLASS(Lantern)
} // namespace lights
