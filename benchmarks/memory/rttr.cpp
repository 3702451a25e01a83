#include "memory/held.h"
#include "memory/tenmembers.h"

#include <rttr/registration>

namespace
{
void valueOfInt(benchmark::State& state)
{
    measureHeld(
        state, [] { return rttr::variant(42); }, sizeof(rttr::variant));
}
BENCHMARK(valueOfInt)->Name("value_int/rttr");

class TenMembers
{
    TEN_FIELDS(FIELD)
    RTTR_ENABLE()
public:
    virtual ~TenMembers() = default;
};

#define LISTED(name) .property(#name, &TenMembers::name, &TenMembers::set_##name)

const HeapUse beforeClass = heapUseAfter([] {});
RTTR_REGISTRATION { rttr::registration::class_<TenMembers>("TenMembers") TEN_FIELDS(LISTED); }
const HeapUse afterClass = heapUseAfter(
    [] { benchmark::DoNotOptimize(rttr::type::get<TenMembers>().get_property("tenth")); });

void declaredClass(benchmark::State& state) { tellHeld(state, beforeClass, afterClass, 1); }
BENCHMARK(declaredClass)->Name("class/rttr");
} // namespace
