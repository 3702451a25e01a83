#pragma once

#include <glib-object.h>

namespace
{
struct Sender {
    GObject parent;
};
struct SenderClass {
    GObjectClass parent;
};
guint changedSignal = 0;

G_DEFINE_TYPE(Sender, sender, G_TYPE_OBJECT)

void sender_init(Sender*) {}
void sender_class_init(SenderClass* type)
{
    changedSignal = g_signal_new("changed", G_TYPE_FROM_CLASS(type), G_SIGNAL_RUN_LAST, 0, nullptr,
                                 nullptr, nullptr, G_TYPE_NONE, 1, G_TYPE_INT);
}

struct Receiver {
    GObject parent;
    long sum;
};
struct ReceiverClass {
    GObjectClass parent;
};

G_DEFINE_TYPE(Receiver, receiver, G_TYPE_OBJECT)

void receiver_init(Receiver*) {}
void receiver_class_init(ReceiverClass*) {}
void receiver_take(Receiver* receiver, gint value, Sender*) { receiver->sum += value; }

Sender* makeSender() { return static_cast<Sender*>(g_object_new(sender_get_type(), nullptr)); }
Receiver* makeReceiver()
{
    return static_cast<Receiver*>(g_object_new(receiver_get_type(), nullptr));
}

/// The connection ends with either object.
void connectReceiver(Sender* sender, Receiver* receiver)
{
    g_signal_connect_object(sender, "changed", G_CALLBACK(receiver_take), receiver,
                            G_CONNECT_SWAPPED);
}
} // namespace
