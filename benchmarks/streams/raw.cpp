#include "streams/work.h"

#include <cstdint>
#include <cstring>

namespace
{
/// Bytes of which the room is known, written and read by memcpy.
struct Bytes {
    void write(const void* from, std::size_t count)
    {
        std::memcpy(position, from, count);
        position += count;
    }
    void read(void* to, std::size_t count)
    {
        std::memcpy(to, position, count);
        position += count;
    }
    char* position;
};

void streamRecords(benchmark::State& state)
{
    measure(state, [] {
        std::vector<char> room(records().size() * 31);
        Bytes out{room.data()};
        for (const Record& record : records()) {
            std::uint64_t length = record.name.size();
            out.write(&record.number, sizeof record.number);
            out.write(&record.weight, sizeof record.weight);
            out.write(&length, sizeof length);
            out.write(record.name.data(), length);
        }
        Bytes in{room.data()};
        Record record;
        for (std::size_t i = 0; i < records().size(); ++i) {
            std::uint64_t length = 0;
            in.read(&record.number, sizeof record.number);
            in.read(&record.weight, sizeof record.weight);
            in.read(&length, sizeof length);
            record.name.resize(length);
            in.read(record.name.data(), length);
            benchmark::DoNotOptimize(record);
        }
    });
}
BENCHMARK(streamRecords)->Name("stream_records/raw");

void streamVariants(benchmark::State& state)
{
    measure(state, [] {
        std::vector<char> room(variantCount * 15);
        const std::string type = "int";
        int value = 42;
        Bytes out{room.data()};
        for (int i = 0; i < variantCount; ++i) {
            std::uint64_t length = type.size();
            out.write(&length, sizeof length);
            out.write(type.data(), length);
            out.write(&value, sizeof value);
        }
        Bytes in{room.data()};
        std::string name;
        for (int i = 0; i < variantCount; ++i) {
            std::uint64_t length = 0;
            in.read(&length, sizeof length);
            name.resize(length);
            in.read(name.data(), length);
            in.read(&value, sizeof value);
            benchmark::DoNotOptimize(name);
            benchmark::DoNotOptimize(value);
        }
    });
}
BENCHMARK(streamVariants)->Name("stream_variants/raw");
} // namespace
