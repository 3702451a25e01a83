// expect: the super class of an object class must be ZTBase or derived from it.
#include <zintar/zintar.h>

struct Plain {
    virtual ~Plain() = default;
};

class Lamp : public Plain
{
    ZT_OBJECT(Lamp, Plain)
};
