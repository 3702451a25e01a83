#include "trial.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iostream>
#include <map>
#include <set>
#include <sstream>

// zintar_stress [SECONDS [SEED]]     random programs for that long, of all profiles in turn
// zintar_stress programs N [SEED]    that many of each profile
// zintar_stress replay FILE          the programs of a file, each behind a line "# name"
//
// The program of a profile and a seed is always the same. What fails is made small and printed, one
// program for each fault; it goes into kept.txt as it stands.

namespace
{
using namespace stress;
using Clock = std::chrono::steady_clock;

struct Totals {
    std::size_t programs = 0, steps = 0;
    std::set<std::string> faults;
};

void report(std::size_t profile, unsigned int seed, Totals& totals)
{
    Program program = makeProgram(seed, profile);
    std::string fault = tryProgram(program).fault;
    if (fault.empty()) {
        std::cout << profiles[profile] << " " << seed << " fails in company alone\n";
        totals.faults.insert(std::string(profiles[profile]) + " in company");
        return;
    }
    if (!totals.faults.insert(fault).second) {
        std::cout << "once more: " << fault << "\n";
        return;
    }
    std::cout << fault << std::endl;
    Program small = shrink(program, fault);
    Verdict verdict = tryProgram(small);
    std::cout << "\n# " << profiles[profile] << " " << seed << ", program " << totals.programs
              << ": " << verdict.fault << "\n"
              << textOf(small) << "\n"
              << verdict.log.substr(0, verdict.log.find("SUMMARY: ")) << std::endl;
}

/// Runs all profiles in turn, some programs of each, until that time or number of programs.
int runAll(double seconds, std::size_t count, unsigned int seed)
{
    constexpr std::size_t batchSize = 400;
    const auto start = Clock::now();
    auto secondsSoFar = [&] { return std::chrono::duration<double>(Clock::now() - start).count(); };
    Totals totals;
    std::array<std::size_t, std::size(profiles)> done{};
    std::cout << "Stress from seed " << seed << std::endl;
    for (std::size_t turn = 0; done.back() < count && secondsSoFar() < seconds; ++turn) {
        std::size_t profile = turn % std::size(profiles);
        auto size = unsigned(std::min(count - done[profile], batchSize));
        Batch batch = tryPrograms(seed + unsigned(done[profile]), size, profile);
        unsigned int tried = batch.programs + (batch.failed && batch.programs < size);
        done[profile] += tried;
        totals.programs += tried;
        totals.steps += batch.steps;
        if (!batch.failed)
            continue;
        std::cout << "After " << secondsSoFar() << " s: ";
        report(profile, batch.seed, totals);
    }
    std::cout << totals.programs << " programs, " << totals.steps << " steps: ";
    if (totals.faults.empty())
        std::cout << "nothing found\n";
    else
        std::cout << totals.faults.size() << " faults found\n";
    return !totals.faults.empty();
}

/// Runs a kept program; whether it passes.
bool passes(const std::string& name, const std::string& text)
{
    std::optional<Program> program = programOf(text);
    Verdict verdict = program ? tryProgram(*program) : Verdict{"it is no program", ""};
    if (!verdict.fault.empty())
        std::cout << name << ": " << verdict.fault << "\n" << verdict.log << "\n";
    return verdict.fault.empty();
}

int replay(const char* path)
{
    std::ifstream file(path);
    std::string name, text;
    int tried = 0, failed = 0;
    for (std::string line; !file.eof();) {
        std::getline(file, line);
        bool isTitle = line.rfind("#", 0) == 0;
        if ((isTitle || file.eof()) && !text.empty()) {
            ++tried;
            failed += !passes(name, text);
            text.clear();
        }
        if (isTitle)
            name = line;
        else if (!line.empty())
            text += line + "\n";
    }
    std::cout << tried << " programs, " << failed << " failed\n";
    return failed || !tried;
}
} // namespace

int main(int argc, char** argv)
{
    std::string first = argc > 1 ? argv[1] : "";
    if (first == "replay" && argc == 3)
        return replay(argv[2]);
    bool isCounted = first == "programs" && argc > 2;
    int seedAt = isCounted ? 3 : 2;
    unsigned int seed = argc > seedAt ? unsigned(std::stoul(argv[seedAt])) : 1;
    if (isCounted)
        return runAll(1e6, std::stoul(argv[2]), seed);
    return runAll(argc > 1 ? std::stod(first) : 60, std::size_t(-1), seed);
}
