#include "streams/work.h"

#include <cstdint>
#include <sstream>

namespace
{
template <class T>
void write(std::ostream& stream, const T& value)
{
    stream.write(reinterpret_cast<const char*>(&value), sizeof value);
}
void write(std::ostream& stream, const std::string& text)
{
    write(stream, std::uint64_t(text.size()));
    stream.write(text.data(), static_cast<std::streamsize>(text.size()));
}
template <class T>
void read(std::istream& stream, T& value)
{
    stream.read(reinterpret_cast<char*>(&value), sizeof value);
}
void read(std::istream& stream, std::string& text)
{
    std::uint64_t length = 0;
    read(stream, length);
    text.resize(length);
    stream.read(text.data(), static_cast<std::streamsize>(length));
}

void streamRecords(benchmark::State& state)
{
    measure(state, [] {
        std::ostringstream out;
        for (const Record& record : records()) {
            write(out, record.number);
            write(out, record.weight);
            write(out, record.name);
        }
        std::istringstream in(out.str());
        Record record;
        for (std::size_t i = 0; i < records().size(); ++i) {
            read(in, record.number);
            read(in, record.weight);
            read(in, record.name);
            benchmark::DoNotOptimize(record);
        }
    });
}
BENCHMARK(streamRecords)->Name("stream_records/std");

void streamVariants(benchmark::State& state)
{
    measure(state, [] {
        std::stringstream stream;
        const std::string type = "int";
        int value = 42;
        for (int i = 0; i < variantCount; ++i) {
            write(stream, type);
            write(stream, value);
        }
        std::string name;
        for (int i = 0; i < variantCount; ++i) {
            read(stream, name);
            read(stream, value);
            benchmark::DoNotOptimize(name);
            benchmark::DoNotOptimize(value);
        }
    });
}
BENCHMARK(streamVariants)->Name("stream_variants/std");
} // namespace
