#include "support/logs.h"

#include <zintar/loghandler.h>

#include <atomic>
#include <iostream>
#include <sstream>
#include <thread>
#include <vector>

namespace
{
using namespace std::string_literals;

TEST(Log, ACaptureKeepsEachLineByTheStreamOfItsType)
{
    const struct {
        std::string message;
        int type;
        std::string out, err;
    } cases[] = {{"a", 0, "a\n", ""},
                 {"a", 1, "", "a\n"},
                 {"a\0b"s, 2, "", "a\0b\n"s},
                 // The message is dropped: a type that is no type says nothing of its sink.
                 {"a", 3, "", "Zintar: Error unsupported log type 3.\n"},
                 {"a", -1, "", "Zintar: Error unsupported log type -1.\n"}};
    for (const auto& one : cases) {
        ZTLogCapture log;
        ztLog(one.message, static_cast<ZTLogType>(one.type));
        EXPECT_EQ(log.out(), one.out);
        EXPECT_EQ(log.err(), one.err);
    }
}

TEST(Log, WithoutAHandlerEachLineGoesToTheStreamOfItsType)
{
    std::ostringstream out, err;
    std::streambuf* const outBefore = std::cout.rdbuf(out.rdbuf());
    std::streambuf* const errBefore = std::cerr.rdbuf(err.rdbuf());
    { // a handler that has ended leaves no trace
        const ZTScopedLogHandler quiet = ztSetLogHandler({});
        ztLog("dropped", ZTLogType::Error);
    }
    ztLog("a", ZTLogType::Info);
    ztLog("b", ZTLogType::Warning);
    ztLog("c", static_cast<ZTLogType>(3));
    std::cout.rdbuf(outBefore);
    std::cerr.rdbuf(errBefore);
    EXPECT_EQ(out.str(), "a\n");
    EXPECT_EQ(err.str(), "b\nZintar: Error unsupported log type 3.\n");
}

TEST(Log, TheHandlerSetLastHasTheLinesInWhateverOrderHandlersEnd)
{
    std::string first, second;
    auto appendTo = [](std::string& text) {
        return [&](const std::string& line, ZTLogType) { text += line; };
    };
    ZTLogCapture outer;
    ZTScopedLogHandler one = ztSetLogHandler(appendTo(first));
    ZTScopedLogHandler other = ztSetLogHandler(appendTo(second));
    ztLog("a", ZTLogType::Error);
    one = ZTScopedLogHandler();
    ztLog("b", ZTLogType::Info);
    other = ztSetLogHandler(appendTo(first));
    ztLog("c", ZTLogType::Info);
    other = ZTScopedLogHandler();
    ztLog("d", ZTLogType::Info);
    EXPECT_EQ(first, "c");
    EXPECT_EQ(second, "ab");
    EXPECT_EQ(outer.text(), "d\n");
}

TEST(Log, WhatAHandlerLogsGoesToTheOneBeforeItAlsoWhenItEndsItself)
{
    ZTLogCapture outer;
    ZTScopedLogHandler handler = ztSetLogHandler([&](const std::string& line, ZTLogType type) {
        ztLog("(" + line + ")", type);
        handler = ZTScopedLogHandler();
        ztLog("ended", ZTLogType::Info);
    });
    ztLog("a", ZTLogType::Warning);
    ztLog("b", ZTLogType::Warning);
    EXPECT_EQ(outer.text(), "(a)\nended\nb\n");
    EXPECT_EQ(outer.out(), "ended\n");
}

TEST(Log, OneLineAtATimeReachesAHandlerAndNoneAfterItsEnd)
{
    int lines = 0; // of no atomic type: calls never run at once
    std::atomic<bool> isOver = false;
    std::vector<std::thread> loggers;
    const ZTScopedLogHandler rest = ztSetLogHandler({});
    {
        const ZTScopedLogHandler counting = ztSetLogHandler([&](const std::string&, ZTLogType) {
            EXPECT_FALSE(isOver);
            ++lines;
        });
        for (int i = 0; i < 2; ++i)
            loggers.emplace_back([&] {
                while (!isOver)
                    ztLog("line", ZTLogType::Info);
            });
        for (int i = 0; i < 1000; ++i)
            ztLog("line", ZTLogType::Info);
    }
    isOver = true;
    for (std::thread& logger : loggers)
        logger.join();
    EXPECT_GE(lines, 1000);
}
} // namespace
