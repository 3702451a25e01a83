#include "measure.h"

#include <zintar/zintar.h>

namespace
{
class Object : public ZTBase
{
    ZT_OBJECT(Object, ZTBase)
private:
    static constexpr auto members() { return zt::members(); }
};
ZT_CLASS(Object)

void makeAndDestroy(benchmark::State& state)
{
    measure(state, [] {
        auto* object = new Object;
        benchmark::DoNotOptimize(object);
        delete object;
    });
}
BENCHMARK(makeAndDestroy)->Name("object/zintar");
} // namespace
