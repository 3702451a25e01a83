// expect: A method or an event has at most ZTMetaInvokable::MaxParamCount parameters.
#include <zintar/zintar.h>

class Lamp : public ZTBase
{
    ZT_OBJECT(Lamp, ZTBase)
public:
    void mix(int, int, int, int, int, int, int, int, int, int, int) {}

private:
    static constexpr auto members() { return zt::members(zt::method<&Self::mix>()); }
};
ZT_CLASS(Lamp)
