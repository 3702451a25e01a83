#include "support/logs.h"

#include <zintar/log.h>

#include <iostream>

namespace
{
using namespace std::string_literals;

TEST(Log, WritesOneLineToTheStreamOfItsType)
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

TEST(Log, TheInnermostCaptureKeepsTheLinesInTheOrderOfWriting)
{
    ZTLogCapture outer;
    ztLog("first", ZTLogType::Error);
    {
        ZTLogCapture inner;
        ztLog("b", ZTLogType::Warning);
        std::cout << 'a' << std::endl;
        ztLog("c", ZTLogType::Error);
        EXPECT_EQ(inner.text(), "b\na\nc\n");
        EXPECT_EQ(inner.out(), "a\n");
        EXPECT_EQ(inner.err(), "b\nc\n");
    }
    ztLog("last", ZTLogType::Info);
    EXPECT_EQ(outer.text(), "first\nlast\n");
}
} // namespace
