#include "values/work.h"

#include <boost/any.hpp>

namespace
{
void copyInt(benchmark::State& state) { makeAndCopy<boost::any>(state, 42); }
BENCHMARK(copyInt)->Name("value_int/boost");

void copyString(benchmark::State& state) { makeAndCopy<boost::any>(state, longText); }
BENCHMARK(copyString)->Name("value_string/boost");

void takeInt(benchmark::State& state)
{
    take(state, boost::any(42),
         [](const boost::any& value) { return boost::any_cast<int>(value); });
}
BENCHMARK(takeInt)->Name("value_get/boost");
} // namespace
