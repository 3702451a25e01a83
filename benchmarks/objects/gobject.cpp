#include "measure.h"

#include <glib-object.h>

namespace
{
struct Object {
    GObject parent;
    int value;
};
struct ObjectClass {
    GObjectClass parent;
};

G_DEFINE_TYPE(Object, object, G_TYPE_OBJECT)

void object_init(Object*) {}
void object_class_init(ObjectClass*) {}

void makeAndDestroy(benchmark::State& state)
{
    const GType type = object_get_type();
    measure(state, [type] {
        gpointer object = g_object_new(type, nullptr);
        benchmark::DoNotOptimize(object);
        g_object_unref(object);
    });
}
BENCHMARK(makeAndDestroy)->Name("object/gobject");
} // namespace
