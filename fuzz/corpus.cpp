#include "memory.h"

#include <zintar/loghandler.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <vector>

// Runs a fuzz target over the files of a kept corpus, and over what becomes of each small one by
// cutting it short anywhere or by changing any single bit: what was once found stays found, in
// every build and without libFuzzer. Names each file before it is run, so that a crash tells which.
// No run may take memory out of proportion to its input, whatever lengths and counts it claims.

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace
{
using Bytes = std::vector<std::uint8_t>;

/// Larger ones would take long and break in no other ways.
constexpr std::size_t largestToDamage = 512;

Bytes read(const std::filesystem::path& path)
{
    std::ifstream file(path, std::ios::binary);
    const std::vector<char> bytes{std::istreambuf_iterator<char>(file), {}};
    return {bytes.begin(), bytes.end()};
}

/// The targets hold several copies of what they read, and its text in several forms.
constexpr std::size_t mostForEachByte = 50;
constexpr std::size_t mostForNothing = 32 * 1024;

/// @param about  for the message
void runOne(const Bytes& bytes, const char* about)
{
    const std::size_t before = memory::startPeak();
    LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
    const std::size_t taken = memory::peak() - before;
    if (taken <= mostForNothing + mostForEachByte * bytes.size())
        return;
    std::cerr << "took " << taken << " bytes for " << bytes.size() << ", " << about << "\n";
    std::exit(1);
}

void runDamaged(Bytes bytes)
{
    for (std::size_t size = 0; size < bytes.size(); ++size)
        runOne(Bytes(bytes.data(), bytes.data() + size), "cut short");
    for (std::size_t bit = 0; bit < bytes.size() * 8; ++bit) {
        const auto mask = static_cast<std::uint8_t>(1 << bit % 8);
        bytes[bit / 8] ^= mask;
        runOne(bytes, "with a bit changed");
        bytes[bit / 8] ^= mask;
    }
}

/// The targets read damaged streams, which the library tells in the log line by line.
void runQuietly(const Bytes& bytes)
{
    const ZTScopedLogHandler quiet = ztSetLogHandler({});
    runOne(bytes, "as it is");
    if (bytes.size() <= largestToDamage)
        runDamaged(bytes);
}
} // namespace

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::cerr << "usage: " << argv[0] << " FOLDER\n";
        return 2;
    }
    std::vector<std::filesystem::path> files;
    for (const auto& entry : std::filesystem::directory_iterator(argv[1]))
        files.push_back(entry.path());
    std::sort(files.begin(), files.end());
    for (const auto& path : files) {
        std::cout << path.filename().string() << std::endl;
        runQuietly(read(path));
    }
    std::cout << files.size() << " inputs\n";
    return files.empty() ? 1 : 0;
}
