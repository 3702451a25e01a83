#pragma once

#include <zintar/logcapture.h>

#include <string>

namespace scene
{
/// The first line that the library has said since the beginning of the capture, without the
/// library's name; empty when there is none. A reader of a damaged file makes one line of it.
inline std::string firstMessage(const ZTLogCapture& log)
{
    const std::string text = log.err();
    const std::string line = text.substr(0, text.find('\n'));
    const auto head = line.find(": ");
    return head == std::string::npos ? line : line.substr(head + 2);
}
} // namespace scene
