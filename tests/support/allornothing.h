#pragma once

#include "failingmemory.h"

#include <zintar/loghandler.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <exception>
#include <initializer_list>
#include <string>

/// @file
/// Runs operations with each of their allocations failing. Such an operation completes, or it lets
/// `std::bad_alloc` out, all is as it was, and it succeeds when it is tried again. What ends
/// something asks for no memory.

/// Operations on what a test file calls `State`, as lines of a list.
// clang-format off
#define DO(...) {#__VA_ARGS__, [](State& s) { (void)s; __VA_ARGS__; }}
#define ENDS(...) {#__VA_ARGS__, [](State& s) { (void)s; __VA_ARGS__; }, true}
// clang-format on

namespace support
{
/// Nobody reads what is logged. An operation that lets no failure through is named before the end.
class FailingMemoryTest : public testing::Test
{
protected:
    FailingMemoryTest()
    {
        std::set_terminate([] {
            std::fprintf(stderr, "Terminated by a failing allocation in: %s\n", running);
            std::abort();
        });
    }

    /// An operation on a `State`, which is made anew for each try and tells all about itself by
    /// `describe()`; it goes by its text.
    template <class State>
    struct Operation {
        const char* name;
        void (*run)(State& state);
        bool isEnding = false; ///< and so allocates nothing
    };

    template <class State>
    static void tryAll(std::initializer_list<Operation<State>> operations)
    {
        for (const Operation<State>& operation : operations) {
            running = operation.name;
            State state;
            {
                WithoutKeptBlocks none;
                Memory::failAt(0, Memory::Failing::Once);
                operation.run(state);
            }
            if (operation.isEnding) {
                EXPECT_EQ(Memory::asked, 0) << operation.name;
                continue;
            }
            const std::string after = state.describe();
            for (auto how : {Memory::Failing::Once, Memory::Failing::FromThenOn})
                for (int n = 1, before = findings(); findings() == before; ++n)
                    if (!tryWithFailure(operation, after, n, how))
                        break;
        }
    }

    /// For what cannot be undone, but can be tried as long as it has not succeeded.
    template <class Run, class Show>
    static void expectDone(Run run, Show show, const std::string& after)
    {
        const std::string before = show();
        for (int n = 1; show() != after && !HasFailure(); ++n) {
            bool completed = completesThough(n, Memory::Failing::Once, run);
            EXPECT_EQ(show(), completed ? after : before) << "failing at " << n;
        }
    }

    /// For what is done once: each try has a process of its own, in which it was not done before.
    /// @param text  what `show` gives in the end
    static void expectDoneOnce(void (*run)(), std::string (*show)(), const std::string& text)
    {
        int code = 1;
        auto isRight = [&](int status) {
            code = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
            return code == 0 || code == 1;
        };
        auto exitAfter = [&](int n) {
            if (!completesThough(n, Memory::Failing::Once, run))
                run();
            const bool hasFailed = Memory::hasFailed;
            std::fprintf(stderr, "%s\n", show().c_str());
            std::exit(show() == text ? int(hasFailed) : 2);
        };
        for (int n = 1; code == 1; ++n)
            EXPECT_EXIT(exitAfter(n), isRight, "") << "failing at " << n;
    }

private:
    static int findings()
    {
        return testing::UnitTest::GetInstance()->current_test_info()->result()->total_part_count();
    }

    /// Runs it with the n-th allocation failing; false when that came out of it.
    template <class Run>
    static bool completesThough(int n, Memory::Failing how, Run run)
    {
        WithoutKeptBlocks none;
        Memory::failAt(n, how);
        bool completes = true;
        try {
            run();
        } catch (const std::bad_alloc&) {
            completes = false;
        }
        Memory::failNoMore();
        return completes;
    }

    /// @return whether there was an n-th allocation
    template <class State>
    static bool tryWithFailure(const Operation<State>& operation, const std::string& after, int n,
                               Memory::Failing how)
    {
        SCOPED_TRACE(std::string(operation.name) + ", failing at " + std::to_string(n));
        const long inUse = WithoutKeptBlocks().inUse();
        const int found = findings();
        bool hasFailed = false;
        {
            State state;
            const std::string before = state.describe();
            bool completed = completesThough(n, how, [&] { operation.run(state); });
            hasFailed = Memory::hasFailed;
            const std::string now = state.describe();
            EXPECT_EQ(now, completed ? after : before);
            if (!completed && now == before) {
                operation.run(state);
                EXPECT_EQ(state.describe(), after) << "when tried again";
            }
        }
        const long leaked = WithoutKeptBlocks().inUse() - inUse;
        EXPECT_TRUE(leaked == 0 || found != findings()) << leaked << " blocks leaked.";
        return hasFailed;
    }

    const ZTScopedLogHandler m_quiet = ztSetLogHandler({});
    inline static const char* running = "";
};
} // namespace support
