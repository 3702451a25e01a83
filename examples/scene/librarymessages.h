#pragma once

#include <iostream>
#include <sstream>
#include <string>

namespace scene
{
/// As long as it lives, it keeps to itself what the library tells on standard error: a reader of
/// a damaged file makes one line of it.
class LibraryMessages
{
public:
    LibraryMessages() : m_before(std::cerr.rdbuf(m_kept.rdbuf())) {}
    LibraryMessages(const LibraryMessages&) = delete;
    LibraryMessages& operator=(const LibraryMessages&) = delete;
    ~LibraryMessages() { std::cerr.rdbuf(m_before); }

    /// The first line since the beginning, without the library's name; empty when there is none.
    std::string first() const
    {
        std::string text = m_kept.str();
        std::string line = text.substr(0, text.find('\n'));
        auto head = line.find(": ");
        return head == std::string::npos ? line : line.substr(head + 2);
    }

private:
    std::ostringstream m_kept;
    std::streambuf* m_before;
};
} // namespace scene
