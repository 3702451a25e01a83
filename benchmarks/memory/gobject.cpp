#include "events/gobjecttypes.h"
#include "memory/held.h"
#include "memory/tenmembers.h"

#include <climits>
#include <memory>
#include <string>

namespace
{
struct Unref {
    void operator()(gpointer object) const { g_object_unref(object); }
};
using SenderOwner = std::unique_ptr<Sender, Unref>;
using ReceiverOwner = std::unique_ptr<Receiver, Unref>;

void ignore(Sender*, gint, gpointer) {}

void object(benchmark::State& state)
{
    measureHeld(state, [] { return SenderOwner(makeSender()); });
}
BENCHMARK(object)->Name("object/gobject");

void sender(benchmark::State& state)
{
    measureHeld(state, [] {
        SenderOwner made(makeSender());
        g_signal_connect(made.get(), "changed", G_CALLBACK(ignore), nullptr);
        return made;
    });
}
BENCHMARK(sender)->Name("sender/gobject");

void receiver(benchmark::State& state)
{
    SenderOwner sender(makeSender());
    measureHeld(state, [&sender] {
        ReceiverOwner made(makeReceiver());
        connectReceiver(sender.get(), made.get());
        return made;
    });
}
BENCHMARK(receiver)->Name("receiver/gobject");

void subscription(benchmark::State& state)
{
    SenderOwner sender(makeSender());
    ReceiverOwner receiver(makeReceiver());
    measureHeld(state, [&] {
        connectReceiver(sender.get(), receiver.get());
        return 0;
    });
}
BENCHMARK(subscription)->Name("subscription/gobject");

void valueOfInt(benchmark::State& state)
{
    measureHeld(
        state,
        [] {
            GValue value = G_VALUE_INIT;
            g_value_init(&value, G_TYPE_INT);
            g_value_set_int(&value, 42);
            return value;
        },
        sizeof(GValue));
}
BENCHMARK(valueOfInt)->Name("value_int/gobject");

void freeValue(gpointer value)
{
    g_value_unset(static_cast<GValue*>(value));
    g_free(value);
}

int setValue(gpointer object, const char* name)
{
    auto* box = g_new0(GValue, 1);
    g_value_init(box, G_TYPE_INT);
    g_value_set_int(box, 42);
    g_object_set_data_full(G_OBJECT(object), name, box, &freeValue);
    return 0;
}

void firstDynamicProperty(benchmark::State& state)
{
    std::vector<SenderOwner> objects;
    for (int i = 0; i <= heldCount; ++i)
        objects.emplace_back(makeSender());
    std::size_t next = 0;
    measureHeld(state, [&] { return setValue(objects[next++].get(), "note"); });
}
BENCHMARK(firstDynamicProperty)->Name("dynamic_property_first/gobject");

void furtherDynamicProperty(benchmark::State& state)
{
    SenderOwner object(makeSender());
    int next = 0;
    measureHeld(state,
                [&] { return setValue(object.get(), ("note" + std::to_string(next++)).c_str()); });
}
BENCHMARK(furtherDynamicProperty)->Name("dynamic_property_further/gobject");

struct TenMembers {
    GObject parent;
};
struct TenMembersClass {
    GObjectClass parent;
};

G_DEFINE_TYPE(TenMembers, ten_members, G_TYPE_OBJECT)

void ten_members_init(TenMembers*) {}
void ten_members_class_init(TenMembersClass* type)
{
    guint id = 0;
    for (const char* name : {"first", "second", "third", "fourth", "fifth", "sixth", "seventh",
                             "eighth", "ninth", "tenth"})
        g_object_class_install_property(
            G_OBJECT_CLASS(type), ++id,
            g_param_spec_int(name, name, name, INT_MIN, INT_MAX, 0,
                             static_cast<GParamFlags>(G_PARAM_READABLE | G_PARAM_STATIC_STRINGS)));
}

void declaredClass(benchmark::State& state)
{
    SenderOwner other(makeSender()); // the first class of all pays for the type system
    HeapUse before = heapUseAfter([] {});
    tellHeld(state, before, heapUseAfter([] { g_type_class_ref(ten_members_get_type()); }), 1);
}
BENCHMARK(declaredClass)->Name("class/gobject")->Iterations(1);
} // namespace
