#include "measure.h"
#include "properties/work.h"

#include <glib-object.h>

#include <climits>

namespace
{
#define LISTED(name) name##Id,
#define SET(name)                                                                                  \
    case name##Id:                                                                                 \
        self->fields.set_##name(g_value_get_int(value));                                           \
        break;
#define GET(name)                                                                                  \
    case name##Id:                                                                                 \
        g_value_set_int(value, self->fields.name());                                               \
        break;
#define INSTALL(name)                                                                              \
    g_object_class_install_property(                                                               \
        objects, name##Id,                                                                         \
        g_param_spec_int(#name, #name, #name, INT_MIN, INT_MAX, 0, propertyFlags));

constexpr auto propertyFlags =
    static_cast<GParamFlags>(G_PARAM_READWRITE | G_PARAM_STATIC_STRINGS | G_PARAM_EXPLICIT_NOTIFY);

#define LEVEL(Type, prefix, Super, superType, FIELDS)                                              \
    class Type##Fields                                                                             \
    {                                                                                              \
        FIELDS(FIELD)                                                                              \
    };                                                                                             \
    struct Type {                                                                                  \
        Super parent;                                                                              \
        Type##Fields fields;                                                                       \
    };                                                                                             \
    struct Type##Class {                                                                           \
        Super##Class parent;                                                                       \
    };                                                                                             \
    enum Type##Ids : guint{Type##None, FIELDS(LISTED)};                                            \
    G_DEFINE_TYPE(Type, prefix, superType)                                                         \
    void prefix##_init(Type*) {}                                                                   \
    void prefix##_set(GObject* object, guint id, const GValue* value, GParamSpec*)                 \
    {                                                                                              \
        auto* self = reinterpret_cast<Type*>(object);                                              \
        switch (id) {                                                                              \
            FIELDS(SET)                                                                            \
        }                                                                                          \
    }                                                                                              \
    void prefix##_get(GObject* object, guint id, GValue* value, GParamSpec*)                       \
    {                                                                                              \
        const auto* self = reinterpret_cast<Type*>(object);                                        \
        switch (id) {                                                                              \
            FIELDS(GET)                                                                            \
        }                                                                                          \
    }                                                                                              \
    void prefix##_class_init(Type##Class* type)                                                    \
    {                                                                                              \
        GObjectClass* objects = G_OBJECT_CLASS(type);                                              \
        objects->set_property = &prefix##_set;                                                     \
        objects->get_property = &prefix##_get;                                                     \
        FIELDS(INSTALL)                                                                            \
    }

LEVEL(Item, item, GObject, G_TYPE_OBJECT, ITEM_FIELDS)
LEVEL(Control, control, Item, item_get_type(), CONTROL_FIELDS)
LEVEL(TextField, text_field, Control, control_get_type(), TEXT_FIELDS)

GObject* makeField() { return G_OBJECT(g_object_new(text_field_get_type(), nullptr)); }

void byName(benchmark::State& state)
{
    GObject* field = makeField();
    int value = 0;
    measure(state, [&] {
        for (const std::string& name : propertyNames) {
            g_object_set(field, name.c_str(), ++value, nullptr);
            int got = 0;
            g_object_get(field, name.c_str(), &got, nullptr);
            benchmark::DoNotOptimize(got);
        }
    });
    g_object_unref(field);
}
BENCHMARK(byName)->Name("property_by_name/gobject");

void freeValue(gpointer value)
{
    g_value_unset(static_cast<GValue*>(value));
    g_free(value);
}

/// A value of any type under a name: the quark is known, the value in a box of its own.
void dynamic(benchmark::State& state)
{
    GObject* field = makeField();
    const GQuark note = g_quark_from_static_string("note");
    int value = 0;
    measure(state, [&] {
        auto* box = g_new0(GValue, 1);
        g_value_init(box, G_TYPE_INT);
        g_value_set_int(box, ++value);
        g_object_set_qdata_full(field, note, box, &freeValue);
        int got = g_value_get_int(static_cast<GValue*>(g_object_get_qdata(field, note)));
        benchmark::DoNotOptimize(got);
    });
    g_object_unref(field);
}
BENCHMARK(dynamic)->Name("dynamic_property/gobject");
} // namespace
