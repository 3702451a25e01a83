#pragma once

#include <stdexcept>

namespace support
{
/// Counts its copies and living values, and throws at a copy when it is told to.
struct Counted {
    explicit Counted(int n = 0) : number(n) { ++alive; }
    Counted(const Counted& other) : number(other.number)
    {
        if (throwAtCopy > 0 && --throwAtCopy == 0)
            throw std::runtime_error("copy");
        ++alive;
        ++copies;
    }
    Counted(Counted&& other) noexcept : number(other.number) { ++alive; }
    Counted& operator=(const Counted&) = default;
    ~Counted() { --alive; }
    bool operator==(const Counted& other) const { return number == other.number; }

    static void reset()
    {
        copies = 0;
        throwAtCopy = 0;
    }

    int number;
    inline static int alive = 0;
    inline static int copies = 0;
    /// 0 for never, otherwise the copy that throws, counted from 1.
    inline static int throwAtCopy = 0;
};
} // namespace support
