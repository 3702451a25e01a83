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

// zintar_stress [SECONDS [SEED]]     random programs for that long, of each profile in turn
// zintar_stress programs N [SEED]    that many of each profile
// zintar_stress replay FILE          the programs of a file, each behind a line "# name"
//
// The program of a profile and a seed is always the same. What fails is made small and printed, one
// program for each fault; it goes into kept.txt as it stands.

namespace
{
using namespace stress;
using Clock = std::chrono::steady_clock;

struct Profile {
    const char* name;
    std::map<Code, double> weights;
};

Weights weightsOf(const Profile& profile)
{
    Weights weights{};
    for (auto [code, weight] : profile.weights)
        weights[std::size_t(code)] = weight;
    return weights;
}

const Profile profiles[] = {
    {"events",
     {{Code::Listen, 24},
      {Code::Raise, 14},
      {Code::Delete, 5},
      {Code::Unsubscribe, 4},
      {Code::End, 3},
      {Code::Scope, 2},
      {Code::Drop, 2},
      {Code::Keep, 4},
      {Code::Take, 3},
      {Code::Let, 2},
      {Code::Change, 3},
      {Code::Throw, 2},
      {Code::Block, 2},
      {Code::Unblock, 2},
      {Code::Move, 3},
      {Code::Assign, 3},
      {Code::New, 4},
      {Code::Strong, 3},
      {Code::Set, 2}}},
    {"objects",
     {{Code::Listen, 14},
      {Code::Raise, 4},
      {Code::Delete, 8},
      {Code::Parent, 10},
      {Code::Move, 5},
      {Code::Assign, 7},
      {Code::New, 8},
      {Code::Strong, 6},
      {Code::Weak, 4},
      {Code::Set, 12},
      {Code::Get, 2},
      {Code::Put, 2},
      {Code::Unsubscribe, 2},
      {Code::Block, 1},
      {Code::Unblock, 1},
      {Code::End, 2}}},
    {"deaths",
     {{Code::New, 12},
      {Code::Delete, 14},
      {Code::Parent, 8},
      {Code::Move, 5},
      {Code::Assign, 14},
      {Code::Listen, 16},
      {Code::Strong, 4},
      {Code::Weak, 2},
      {Code::Keep, 2}}},
    {"memory",
     {{Code::Fail, 20},
      {Code::Listen, 10},
      {Code::Raise, 6},
      {Code::Delete, 4},
      {Code::Parent, 8},
      {Code::Move, 2},
      {Code::Assign, 3},
      {Code::New, 6},
      {Code::Strong, 3},
      {Code::Weak, 3},
      {Code::Set, 8},
      {Code::Unsubscribe, 4},
      {Code::End, 2},
      {Code::Drop, 2},
      {Code::Keep, 2},
      {Code::Let, 2}}},
};

struct Totals {
    std::size_t programs = 0, steps = 0;
    std::set<std::string> faults;
};

void report(const Profile& profile, unsigned int seed, Totals& totals)
{
    Program program = makeProgram(seed, weightsOf(profile));
    std::string fault = tryProgram(program).fault;
    if (fault.empty()) {
        std::cout << profile.name << " " << seed << " fails in company alone\n";
        totals.faults.insert(std::string(profile.name) + " in company");
        return;
    }
    if (!totals.faults.insert(fault).second)
        return;
    Program small = shrink(program, fault);
    Verdict verdict = tryProgram(small);
    std::cout << "\n# " << profile.name << " " << seed << ", program " << totals.programs << ": "
              << verdict.fault << "\n"
              << textOf(small) << "\n"
              << verdict.log.substr(0, verdict.log.find("SUMMARY: ")) << std::endl;
}

/// Runs a profile until that time or number of programs.
void run(const Profile& profile, unsigned int seed, Clock::time_point end, std::size_t count,
         Totals& totals)
{
    constexpr unsigned int batchSize = 200;
    while (count > 0 && Clock::now() < end) {
        auto size = unsigned(std::min<std::size_t>(count, batchSize));
        Batch batch = tryPrograms(seed, size, weightsOf(profile));
        unsigned int done = batch.programs + (batch.failed && batch.programs < size);
        totals.programs += done;
        totals.steps += batch.steps;
        if (batch.failed)
            report(profile, batch.seed, totals);
        seed += done;
        count -= done;
    }
}

int runAll(double seconds, std::size_t count, unsigned int seed)
{
    Totals totals;
    auto share = std::chrono::duration_cast<Clock::duration>(
        std::chrono::duration<double>(seconds / std::size(profiles)));
    std::cout << "Stress from seed " << seed << std::endl;
    for (const Profile& profile : profiles)
        run(profile, seed, Clock::now() + share, count, totals);
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
