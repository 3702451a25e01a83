#include <zintar/zintar.h>

namespace lights
{
class Lamp : public ZTBase
{
    ZT_OBJECT(Lamp, ZTBase)
public:
    void turn(bool on) { m_isOn = on; }

private:
    static constexpr auto members()
    {
        return zt::members(zt::property<&Self::m_isOn>().as("on"),
                           zt::method<&Self::turn>().parameters("on"));
    }
    bool m_isOn = false;
};
ZT_CLASS(Lamp)
} // namespace lights
