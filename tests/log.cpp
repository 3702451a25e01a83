#include "support/logs.h"

#include <zintar/log.h>

namespace
{
using namespace std::string_literals;

struct Case {
    std::string message;
    int type;
    std::string out;
    std::string err;
};

class Log : public testing::TestWithParam<Case>
{};

TEST_P(Log, WritesOneLineToTheStreamOfItsType)
{
    support::CapturedLog log;
    ztLog(GetParam().message, static_cast<ZTLogType>(GetParam().type));
    EXPECT_EQ(log.out(), GetParam().out);
    EXPECT_EQ(log.err(), GetParam().err);
}

INSTANTIATE_TEST_SUITE_P(
    Messages, Log,
    testing::Values(Case{"a", 0, "a\n", ""}, Case{"a", 1, "", "a\n"}, Case{"a", 2, "", "a\n"},
                    Case{"", 0, "\n", ""}, Case{"a\0b"s, 2, "", "a\0b\n"s},
                    // The message is dropped: a type that is no type says nothing of its sink.
                    Case{"a", 3, "", "Zintar: Error unsupported log type 3.\n"},
                    Case{"a", -1, "", "Zintar: Error unsupported log type -1.\n"}));
} // namespace
