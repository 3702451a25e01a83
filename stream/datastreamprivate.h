#pragma once

#include "../common/littleendian.h"

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
    /// The record of any stream.
    static ZTDataStreamPrivate& of(const ZTDataStream& stream) { return *stream.priv; }

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
    /// How many bytes are still to be read.
    [[nodiscard]] std::size_t left() const { return size - readPosition; }
    /// Makes room in a stream that is good.
    void reserve(std::size_t count)
    {
        if (!pastEnd && !hasRoom(count))
            grow(std::max({writePosition + count, 2 * capacity, std::size_t(64)}));
    }
    /// What is taken is there.
    const char* take(std::size_t count)
    {
        const char* position = bytes + readPosition;
        readPosition += count;
        return position;
    }
    using Length = zt::detail::BytesOf<std::uint64_t>;
    /// The text that comes next, good until something is written; nothing where a part of it is
    /// missing.
    [[nodiscard]] std::optional<std::string_view> nextText() const
    {
        Length length;
        if (!has(length.size()))
            return std::nullopt;
        std::copy_n(bytes + readPosition, length.size(), length.data());
        const auto count = zt::detail::fromBytes<std::uint64_t>(length);
        if (count > size - readPosition - length.size())
            return std::nullopt;
        return std::string_view(bytes + readPosition + length.size(), count);
    }
    void takeText(std::string_view text) { take(sizeof(Length) + text.size()); }

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

namespace zt::detail
{
// What has several parts is written and read as a whole: when memory fails at one of them, or host
// code throws, the stream is as it was. Only the medium of a derived class keeps what was done.

/// For what is written over other bytes, which would be lost.
template <class Write>
[[gnu::noinline]] void writeApart(ZTDataStreamPrivate& record, Write write)
{
    ZTDataStream apart;
    write(apart);
    const ZTDataStreamPrivate& written = ZTDataStreamPrivate::of(apart);
    record.write(written.bytes, written.size);
}

template <class Write>
void writeWhole(ZTDataStream& stream, Write write)
{
    ZTDataStreamPrivate& record = ZTDataStreamPrivate::of(stream);
    const std::size_t before = record.writePosition;
    if (before != record.size && ZTDataStreamPrivate::ofPlain(stream)) [[unlikely]]
        return writeApart(record, write);
    try {
        write(stream);
    } catch (...) {
        if (ZTDataStreamPrivate::ofPlain(stream))
            record.writePosition = record.size = std::min(before, record.size);
        throw;
    }
}

template <class Read>
void readWhole(ZTDataStream& stream, Read read)
{
    ZTDataStreamPrivate& record = ZTDataStreamPrivate::of(stream);
    const std::size_t before = record.readPosition;
    const bool wasPastEnd = record.pastEnd;
    try {
        read();
    } catch (...) {
        if (ZTDataStreamPrivate::ofPlain(stream)) {
            record.readPosition = std::min(before, record.size);
            record.pastEnd = wasPastEnd;
        }
        throw;
    }
}
} // namespace zt::detail
