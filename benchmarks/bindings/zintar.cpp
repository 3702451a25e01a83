#include "measure.h"

#include <zintar/zintar.h>

namespace
{
class Dial : public ZTBase
{
    ZT_OBJECT(Dial, ZTBase)
public:
    void levelChanged() { sendEvent<&Self::levelChanged>(); }
    [[nodiscard]] int level() const { return m_level; }
    void setLevel(int level)
    {
        m_level = level;
        levelChanged();
    }

private:
    static constexpr auto members()
    {
        return zt::members(
            zt::event<&Self::levelChanged>(),
            zt::property<&Self::level, &Self::setLevel>().notify<&Self::levelChanged>());
    }
    int m_level = 0;
};
} // namespace
ZT_CLASS(Dial)
namespace
{
/// Changes the one, and lets the other follow.
void update(benchmark::State& state, void (*join)(Dial& source, Dial& target))
{
    Dial source;
    Dial target;
    join(source, target);
    int level = 0;
    measure(state, [&] {
        source.setLevel(++level);
        if (target.level() != level)
            state.SkipWithError("the target does not follow");
    });
}

void bind(Dial& source, Dial& target) { (void)ztBind(&source, "level", &target, "level"); }
BENCHMARK_CAPTURE(update, bound, bind)->Name("binding_update/zintar");

/// What a host would write.
void follow(Dial& source, Dial& target)
{
    ZTBase::subscribe(&source, &Dial::levelChanged, &target, [&source, &target] {
        target.setProperty("level", source.property("level"));
    });
}
BENCHMARK_CAPTURE(update, followed, follow)->Name("binding_parts/zintar");
} // namespace
