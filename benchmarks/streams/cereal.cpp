#include "streams/work.h"

#include <cereal/archives/binary.hpp>
#include <cereal/types/string.hpp>

#include <sstream>

namespace
{
void streamRecords(benchmark::State& state)
{
    measure(state, [] {
        std::ostringstream out;
        cereal::BinaryOutputArchive writer(out);
        for (const Record& record : records())
            writer(record.number, record.weight, record.name);
        std::istringstream in(out.str());
        cereal::BinaryInputArchive reader(in);
        Record record;
        for (std::size_t i = 0; i < records().size(); ++i) {
            reader(record.number, record.weight, record.name);
            benchmark::DoNotOptimize(record);
        }
    });
}
BENCHMARK(streamRecords)->Name("stream_records/cereal");
} // namespace
