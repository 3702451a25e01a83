// A plugin of many classes, which test_threads loads beside threads that look for them.

#include <zintar/declare.h>

namespace loaded
{
template <int N>
class Part : public ZTBase
{
    ZT_OBJECT(Part, ZTBase)
public:
    int number = N;

private:
    static constexpr auto members() { return zt::members(zt::property<&Self::number>()); }
};

class Whole : public Part<19>
{
    ZT_OBJECT(Whole, Part<19>)

    static constexpr auto members() { return zt::members(); }
};
} // namespace loaded

// clang-format off
#define LOADED(tens)                                                                               \
    ZT_CLASS(loaded::Part, tens##0) ZT_CLASS(loaded::Part, tens##1) ZT_CLASS(loaded::Part, tens##2) \
    ZT_CLASS(loaded::Part, tens##3) ZT_CLASS(loaded::Part, tens##4) ZT_CLASS(loaded::Part, tens##5) \
    ZT_CLASS(loaded::Part, tens##6) ZT_CLASS(loaded::Part, tens##7) ZT_CLASS(loaded::Part, tens##8) \
    ZT_CLASS(loaded::Part, tens##9)
// clang-format on
LOADED(1)
LOADED(2)
LOADED(3)
LOADED(4)
ZT_CLASS(loaded::Whole)
