#pragma once

#include <zintar/logcapture.h>

#include <gtest/gtest.h>

#include <string>

namespace support
{
template <class Action>
std::string logOf(Action action)
{
    ZTLogCapture log;
    action();
    return log.text();
}
} // namespace support

/// The action logs exactly these lines, each with its line end and in this order, whichever stream
/// they go to.
#define EXPECT_LOGS(lines, ...) EXPECT_EQ(::support::logOf(__VA_ARGS__), lines)
#define EXPECT_LOGS_NOTHING(...) EXPECT_EQ(::support::logOf(__VA_ARGS__), "")
