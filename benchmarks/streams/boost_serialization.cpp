#include "streams/work.h"

#include <boost/archive/binary_iarchive.hpp>
#include <boost/archive/binary_oarchive.hpp>

#include <sstream>

namespace
{
void streamRecords(benchmark::State& state)
{
    measure(state, [] {
        std::ostringstream out;
        {
            boost::archive::binary_oarchive archive(out);
            for (const Record& record : records())
                archive << record.number << record.weight << record.name;
        }
        std::istringstream in(out.str());
        boost::archive::binary_iarchive archive(in);
        Record record;
        for (std::size_t i = 0; i < records().size(); ++i) {
            archive >> record.number >> record.weight >> record.name;
            benchmark::DoNotOptimize(record);
        }
    });
}
BENCHMARK(streamRecords)->Name("stream_records/boost");
} // namespace
