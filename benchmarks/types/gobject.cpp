#include "measure.h"

#include <glib-object.h>

namespace
{
void byName(benchmark::State& state)
{
    const char* name = "gint";
    measure(state, [&] {
        benchmark::DoNotOptimize(name);
        GType type = g_type_from_name(name);
        benchmark::DoNotOptimize(type);
    });
}
BENCHMARK(byName)->Name("type_by_name/gobject");
} // namespace
