// expect: A callable cannot be found by its value: keep the ZTSubscription and end it through that.
#include <zintar/zintar.h>

class Lamp : public ZTBase
{
    ZT_OBJECT(Lamp, ZTBase)
public:
    void switched() { sendEvent<&Self::switched>(); }

private:
    static constexpr auto members() { return zt::members(zt::event<&Self::switched>()); }
};

void forget(Lamp& lamp)
{
    ZTBase::unsubscribe(&lamp, &Lamp::switched, &lamp, [] {});
}
