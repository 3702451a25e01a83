// expect: The setter of a property takes what the getter gives, and nothing else.
#include <zintar/zintar.h>

class Lamp : public ZTBase
{
    ZT_OBJECT(Lamp, ZTBase)
public:
    int level() const { return 0; }
    void setLevel(double) {}

private:
    static constexpr auto members()
    {
        return zt::members(zt::property<&Self::level, &Self::setLevel>());
    }
};
ZT_CLASS(Lamp)
