#include "values/work.h"

#include <glib-object.h>

namespace
{
/// A GValue with the lifetime of a C++ object.
struct Value {
    explicit Value(int number)
    {
        g_value_init(&value, G_TYPE_INT);
        g_value_set_int(&value, number);
    }
    explicit Value(const std::string& text)
    {
        g_value_init(&value, G_TYPE_STRING);
        g_value_set_string(&value, text.c_str());
    }
    Value(const Value& other)
    {
        g_value_init(&value, G_VALUE_TYPE(&other.value));
        g_value_copy(&other.value, &value);
    }
    Value& operator=(const Value&) = delete;
    ~Value() { g_value_unset(&value); }

    GValue value = G_VALUE_INIT;
};

void copyInt(benchmark::State& state) { makeAndCopy<Value>(state, 42); }
BENCHMARK(copyInt)->Name("value_int/gobject");

void copyString(benchmark::State& state) { makeAndCopy<Value>(state, longText); }
BENCHMARK(copyString)->Name("value_string/gobject");

void takeInt(benchmark::State& state)
{
    take(state, Value(42), [](const Value& value) { return g_value_get_int(&value.value); });
}
BENCHMARK(takeInt)->Name("value_get/gobject");
} // namespace
