#pragma once

#include "littleendian.h"

#include <zintar/datastream.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <typeinfo>

/// The bytes of a stream. The states are those of a string stream opened for reading and writing:
///
/// 1. `good` means that neither flag is set; once one is set, `read` and `write` do nothing.
/// 2. A read that finds too few bytes takes them and sets both flags.
/// 3. No operation clears a flag.
struct ZTDataStreamPrivate {
    /// The record of a stream whose medium it is; null where a derived class may have put another
    /// one under the operators. Theirs is the virtual call, which is right for any stream; the
    /// others go straight to the bytes, as long as there are enough of them.
    static ZTDataStreamPrivate* ofPlain(const ZTDataStream& stream)
    {
        return &typeid(stream) == &typeid(ZTDataStream) ? stream.priv : nullptr;
    }

    [[nodiscard]] bool hasRoom(std::size_t count) const
    {
        return !pastEnd && count <= capacity - writePosition;
    }
    /// Where the next bytes go, for which there is room.
    char* extend(std::size_t count)
    {
        char* position = bytes + writePosition;
        writePosition += count;
        size = std::max(size, writePosition);
        return position;
    }
    [[nodiscard]] bool has(std::size_t count) const
    {
        return !pastEnd && count <= size - readPosition;
    }
    /// What is taken is there.
    const char* take(std::size_t count)
    {
        const char* position = bytes + readPosition;
        readPosition += count;
        return position;
    }
    /// The text that comes next, good until something is written; nothing is taken where a part
    /// of it is missing.
    std::optional<std::string_view> takeText()
    {
        zt::detail::BytesOf<std::uint64_t> length;
        if (!has(length.size()))
            return std::nullopt;
        std::copy_n(bytes + readPosition, length.size(), length.data());
        const auto count = zt::detail::fromBytes<std::uint64_t>(length);
        if (count > size - readPosition - length.size())
            return std::nullopt;
        take(length.size());
        return std::string_view(take(count), count);
    }

    void assign(std::string_view text);
    void takeOver(std::string&& text);
    void write(const char* source, std::size_t count);
    void read(char* target, std::size_t count);
    void grow(std::size_t wanted);

    struct Free {
        void operator()(char* memory) const { std::free(memory); }
    };
    /// In `block`, or in `taken`.
    char* bytes = nullptr;
    std::size_t capacity = 0;
    std::size_t size = 0;
    std::size_t readPosition = 0;
    std::size_t writePosition = 0;
    bool pastEnd = false;
    /// The type that was named last to a reader, by the name that the registry has it under: mostly
    /// the next value is of the same one.
    const ZTMetaType* lastType = nullptr;
    /// Of `malloc`, since a large block grows there without being copied.
    std::unique_ptr<char, Free> block;
    /// What a host gave away; empty once it had to grow.
    std::string taken;
};
