#pragma once

#include <gtest/gtest.h>

#include <iostream>
#include <sstream>
#include <string>

namespace support
{
/// What was written to the two standard streams while it lived.
class CapturedLog
{
public:
    CapturedLog()
        : m_out(std::cout.rdbuf(m_outText.rdbuf())), m_err(std::cerr.rdbuf(m_errText.rdbuf()))
    {}
    CapturedLog(const CapturedLog&) = delete;
    CapturedLog& operator=(const CapturedLog&) = delete;
    ~CapturedLog()
    {
        std::cout.rdbuf(m_out);
        std::cerr.rdbuf(m_err);
    }

    std::string out() const { return m_outText.str(); }
    std::string err() const { return m_errText.str(); }
    std::string all() const { return out() + err(); }

private:
    std::ostringstream m_outText;
    std::ostringstream m_errText;
    std::streambuf* m_out;
    std::streambuf* m_err;
};

template <class Action>
std::string logOf(Action action)
{
    CapturedLog log;
    action();
    return log.all();
}
} // namespace support

/// The action logs exactly these lines, each with its line end, whichever stream they go to.
#define EXPECT_LOGS(lines, ...) EXPECT_EQ(::support::logOf(__VA_ARGS__), lines)
#define EXPECT_LOGS_NOTHING(...) EXPECT_EQ(::support::logOf(__VA_ARGS__), "")
