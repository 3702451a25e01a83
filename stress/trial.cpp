#include "trial.h"

#include "world.h"

#include <zintar/loghandler.h>

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#if defined(__SANITIZE_ADDRESS__)
#    include <sanitizer/lsan_interface.h>
#endif

namespace stress
{
namespace
{
constexpr unsigned int secondsAtMost = 20;

/// What the process that runs programs tells the one that waits for it.
struct Progress {
    unsigned int seed;
    unsigned int programs;
    std::size_t steps;
};

Progress& progress()
{
    static void* shared =
        mmap(nullptr, sizeof(Progress), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    return *static_cast<Progress*>(shared);
}

bool hasLeaks()
{
#if defined(__SANITIZE_ADDRESS__)
    return __lsan_do_recoverable_leak_check() != 0;
#else
    return false;
#endif
}

void runOne(const Program& program)
{
    alarm(secondsAtMost);
    World world(program);
    world.run();
    progress().steps += std::size_t(world.steps());
}

std::string contentOf(std::FILE* file)
{
    std::string text;
    std::rewind(file);
    for (int character; (character = std::fgetc(file)) != EOF;)
        text += char(character);
    return text;
}

/// The line that tells what happened.
std::string faultOf(const std::string& log, int status)
{
    for (std::string_view head : {"MISMATCH: ", "SUMMARY: ", "runtime error: "}) {
        std::size_t begin = log.find(head);
        if (begin != std::string::npos)
            return log.substr(begin, log.find('\n', begin) - begin);
    }
    if (WIFSIGNALED(status))
        return WTERMSIG(status) == SIGALRM ? "it does not end"
                                           : "signal " + std::to_string(WTERMSIG(status));
    return "exit status " + std::to_string(WEXITSTATUS(status));
}

template <class Run>
Verdict inProcess(Run run)
{
    std::unique_ptr<std::FILE, int (*)(std::FILE*)> log(std::tmpfile(), &std::fclose);
    std::fflush(nullptr);
    pid_t child = fork();
    if (child == 0) {
        dup2(fileno(log.get()), STDERR_FILENO);
        const ZTScopedLogHandler quiet = ztSetLogHandler({});
        run();
        std::_Exit(hasLeaks() ? 71 : 0);
    }
    int status = 0;
    waitpid(child, &status, 0);
    if (status == 0)
        return {};
    std::string text = contentOf(log.get());
    return {faultOf(text, status), text};
}

/// Whether two faults are the same as far as their first words tell.
bool isSame(const std::string& a, const std::string& b)
{
    auto words = [](const std::string& fault) {
        std::size_t end = fault.rfind("SUMMARY", 0) == 0 ? fault.find(' ', 27) : std::string::npos;
        return fault.substr(0, end);
    };
    return words(a) == words(b);
}
} // namespace

Verdict tryProgram(const Program& program)
{
    return inProcess([&] { runOne(program); });
}

Batch tryPrograms(unsigned int first, unsigned int count, std::size_t profile)
{
    progress() = {first, 0, 0};
    Verdict verdict = inProcess([&] {
        for (unsigned int i = 0; i < count; ++i) {
            progress().seed = first + i;
            runOne(makeProgram(first + i, profile));
            ++progress().programs;
        }
    });
    Batch batch{progress().programs, progress().steps, !verdict.fault.empty(), progress().seed};
    if (!batch.failed || batch.programs < count)
        return batch;
    for (unsigned int i = 0; i < count; ++i) { // one of them leaks
        batch.seed = first + i;
        if (!tryProgram(makeProgram(batch.seed, profile)).fault.empty())
            break;
    }
    return batch;
}

namespace
{
using Places = std::vector<std::pair<std::size_t, std::size_t>>;

Places placesOf(const Program& program)
{
    Places places;
    for (std::size_t script = 0; script < scriptCount; ++script)
        for (std::size_t i = 0; i < program.scripts[script].size(); ++i)
            places.emplace_back(script, i);
    return places;
}

Program without(const Program& program, std::size_t from, std::size_t to)
{
    Places places = placesOf(program);
    Program rest;
    for (std::size_t i = 0; i < places.size(); ++i)
        if (i < from || i >= to)
            rest.scripts[places[i].first].push_back(
                program.scripts[places[i].first][places[i].second]);
    return rest;
}

/// Takes a replacement that still fails.
bool replaceIfSame(Program& program, const Program& candidate, const std::string& fault)
{
    if (!isSame(tryProgram(candidate).fault, fault))
        return false;
    program = candidate;
    return true;
}

/// Sets operands to what does least: scripts to none, objects to nobody, other things to the first.
bool simplifyOperands(Program& program, const std::string& fault)
{
    bool isSimpler = false;
    for (auto [script, i] : placesOf(program)) {
        std::string_view shape = program.scripts[script][i].rule->shape;
        for (std::size_t k = 0; k < shape.size(); ++k) {
            int least = shape[k] == 'O' ? nobody : 0;
            if (isName(shape[k]) || program.scripts[script][i].operands[k] == least)
                continue;
            Program candidate = program;
            candidate.scripts[script][i].operands[k] = least;
            isSimpler = replaceIfSame(program, candidate, fault) || isSimpler;
        }
    }
    return isSimpler;
}
} // namespace

Program shrink(Program program, const std::string& fault)
{
    for (bool isSmaller = true; isSmaller;) {
        isSmaller = false;
        for (std::size_t length = program.size(); length > 0; length /= 2)
            for (std::size_t from = program.size(); from > 0;) {
                from -= std::min(from, length);
                std::size_t to = std::min(from + length, program.size());
                isSmaller = replaceIfSame(program, without(program, from, to), fault) || isSmaller;
            }
        isSmaller = simplifyOperands(program, fault) || isSmaller;
    }
    return program;
}
} // namespace stress
