#include "datastreamprivate.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <new>
#include <utility>

void ZTDataStreamPrivate::assign(std::string_view text)
{
    if (text.size() > capacity)
        grow(text.size());
    std::copy(text.begin(), text.end(), bytes);
    size = text.size();
    readPosition = 0;
    writePosition = 0;
}

void ZTDataStreamPrivate::takeOver(std::string&& text)
{
    taken = std::move(text);
    block.reset();
    bytes = taken.data();
    capacity = taken.size();
    size = taken.size();
    readPosition = 0;
    writePosition = 0;
}

void ZTDataStreamPrivate::write(const char* source, std::size_t count)
{
    if (pastEnd || count == 0)
        return;
    reserve(count);
    std::copy_n(source, count, extend(count));
}

void ZTDataStreamPrivate::read(char* target, std::size_t count)
{
    if (pastEnd || count == 0)
        return;
    pastEnd = count > size - readPosition;
    const std::size_t given = std::min(count, size - readPosition);
    std::copy_n(take(given), given, target);
}

void ZTDataStreamPrivate::grow(std::size_t wanted)
{
    auto* grown = static_cast<char*>(std::realloc(block.get(), wanted));
    if (!grown)
        throw std::bad_alloc();
    if (!block)
        std::copy_n(bytes, size, grown); // out of the string, if there is one
    (void)block.release();
    block.reset(grown);
    taken = std::string();
    bytes = grown;
    capacity = wanted;
}

ZTDataStream::ZTDataStream() : priv(new ZTDataStreamPrivate) {}
ZTDataStream::ZTDataStream(std::string bytes) : priv(new ZTDataStreamPrivate)
{
    priv->takeOver(std::move(bytes));
}
ZTDataStream::ZTDataStream(ZTDataStream&& other) noexcept : priv(std::exchange(other.priv, nullptr))
{}

ZTDataStream& ZTDataStream::operator=(ZTDataStream&& other) noexcept
{
    if (this != &other)
        delete std::exchange(priv, std::exchange(other.priv, nullptr));
    return *this;
}

ZTDataStream::~ZTDataStream() { delete priv; }

std::string ZTDataStream::data() const { return {priv->bytes, priv->size}; }

void ZTDataStream::setData(const std::string& bytes) { priv->assign(bytes); }

bool ZTDataStream::atEnd() const { return priv->pastEnd; }

ZTDataStream& ZTDataStream::write(const char* bytes, unsigned int count)
{
    priv->write(bytes, count);
    return *this;
}

ZTDataStream& ZTDataStream::read(char* bytes, unsigned int count)
{
    priv->read(bytes, count);
    return *this;
}

bool ZTDataStream::good() const { return !priv->pastEnd; }

using zt::detail::toBytes;

namespace
{
// Each operator has a short way, for a plain stream that has the bytes or the room. The long way
// stands apart, so that the short one needs no frame.

template <class T>
[[gnu::noinline]] ZTDataStream& writeTheLongWay(ZTDataStream& stream, T value)
{
    const auto bytes = toBytes(value);
    stream.write(bytes.data(), bytes.size());
    return stream;
}

template <class T>
ZTDataStream& writeValue(ZTDataStream& stream, T value)
{
    auto* plain = ZTDataStreamPrivate::ofPlain(stream);
    if (!plain || !plain->hasRoom(sizeof(T))) [[unlikely]]
        return writeTheLongWay(stream, value);
    const auto bytes = toBytes(value);
    std::copy(bytes.begin(), bytes.end(), plain->extend(bytes.size()));
    return stream;
}

// Both ways of reading fill the value itself, which may never have been written: what the stream
// does not give keeps its bytes, and nobody looks at them.

template <std::size_t Size>
void turnAround(void* value)
{
    auto* bytes = static_cast<unsigned char*>(value);
    if constexpr (std::endian::native == std::endian::big)
        std::reverse(bytes, bytes + Size);
}

template <std::size_t Size>
[[gnu::noinline]] void readTheLongWay(ZTDataStream& stream, void* value)
{
    turnAround<Size>(value);
    stream.read(static_cast<char*>(value), Size);
    turnAround<Size>(value);
}

/// The short way alone; false where it is closed.
template <std::size_t Size>
bool takeBytes(ZTDataStream& stream, void* value)
{
    auto* plain = ZTDataStreamPrivate::ofPlain(stream);
    if (!plain || !plain->has(Size)) [[unlikely]]
        return false;
    std::copy_n(plain->take(Size), Size, static_cast<char*>(value));
    turnAround<Size>(value);
    return true;
}

template <class T>
ZTDataStream& readValue(ZTDataStream& stream, T& value)
{
    if (!takeBytes<sizeof(T)>(stream, &value)) [[unlikely]]
        readTheLongWay<sizeof(T)>(stream, &value);
    return stream;
}

/// The number of bytes of a text; what is longer than one call can write is outside the format.
unsigned int writtenCount(std::string_view text) { return static_cast<unsigned int>(text.size()); }

[[gnu::noinline]] ZTDataStream& writeTheLongWay(ZTDataStream& stream, std::string_view text)
{
    if (auto* plain = ZTDataStreamPrivate::ofPlain(stream))
        plain->reserve(sizeof(std::uint64_t) + writtenCount(text));
    writeValue<std::uint64_t>(stream, text.size());
    stream.write(text.data(), writtenCount(text));
    return stream;
}

[[gnu::noinline]] ZTDataStream& readTheLongWay(ZTDataStream& stream, std::string& text)
{
    std::uint64_t length = 0;
    std::string whole;
    readValue(stream, length);
    // Piece by piece: the length is not to be trusted before its bytes have been seen, and only a
    // read can tell how many there still are.
    constexpr std::uint64_t piece = 4096;
    while (stream.good() && length > 0) {
        auto size = static_cast<unsigned int>(std::min(length, piece));
        std::size_t before = whole.size();
        whole.resize(before + size);
        stream.read(whole.data() + before, size);
        length -= size;
    }
    if (!stream.good())
        whole.clear();
    text = std::move(whole);
    return stream;
}
} // namespace

// clang-format off
ZTDataStream& operator<<(ZTDataStream& stream, signed char value) { return writeValue(stream, value); }
ZTDataStream& operator<<(ZTDataStream& stream, unsigned char value) { return writeValue(stream, value); }
ZTDataStream& operator<<(ZTDataStream& stream, bool value) { return writeValue<unsigned char>(stream, value ? 1 : 0); }
ZTDataStream& operator<<(ZTDataStream& stream, short value) { return writeValue(stream, value); }
ZTDataStream& operator<<(ZTDataStream& stream, unsigned short value) { return writeValue(stream, value); }
ZTDataStream& operator<<(ZTDataStream& stream, int value) { return writeValue(stream, value); }
ZTDataStream& operator<<(ZTDataStream& stream, unsigned int value) { return writeValue(stream, value); }
ZTDataStream& operator<<(ZTDataStream& stream, float value) { return writeValue(stream, value); }
ZTDataStream& operator<<(ZTDataStream& stream, double value) { return writeValue(stream, value); }
ZTDataStream& operator<<(ZTDataStream& stream, long long value) { return writeValue(stream, value); }
ZTDataStream& operator<<(ZTDataStream& stream, unsigned long long value) { return writeValue(stream, value); }
ZTDataStream& operator>>(ZTDataStream& stream, signed char& value) { return readValue(stream, value); }
ZTDataStream& operator>>(ZTDataStream& stream, unsigned char& value) { return readValue(stream, value); }
ZTDataStream& operator>>(ZTDataStream& stream, short& value) { return readValue(stream, value); }
ZTDataStream& operator>>(ZTDataStream& stream, unsigned short& value) { return readValue(stream, value); }
ZTDataStream& operator>>(ZTDataStream& stream, int& value) { return readValue(stream, value); }
ZTDataStream& operator>>(ZTDataStream& stream, unsigned int& value) { return readValue(stream, value); }
ZTDataStream& operator>>(ZTDataStream& stream, float& value) { return readValue(stream, value); }
ZTDataStream& operator>>(ZTDataStream& stream, double& value) { return readValue(stream, value); }
ZTDataStream& operator>>(ZTDataStream& stream, long long& value) { return readValue(stream, value); }
ZTDataStream& operator>>(ZTDataStream& stream, unsigned long long& value) { return readValue(stream, value); }
// clang-format on

ZTDataStream& zt::detail::readEightBytes(ZTDataStream& stream, void* integer)
{
    if (!takeBytes<8>(stream, integer)) [[unlikely]]
        readTheLongWay<8>(stream, integer);
    return stream;
}

ZTDataStream& operator>>(ZTDataStream& stream, bool& value)
{
    // Not as a `bool`: a damaged byte would make one that is neither true nor false.
    auto& byte = reinterpret_cast<unsigned char&>(value);
    if (!takeBytes<1>(stream, &byte)) [[unlikely]] {
        readTheLongWay<1>(stream, &byte);
        if (!stream.good())
            return stream;
    }
    byte = byte != 0 ? 1 : 0;
    return stream;
}

ZTDataStream& operator<<(ZTDataStream& stream, const char* text)
{
    return stream << std::string_view(text ? text : "");
}

ZTDataStream& operator<<(ZTDataStream& stream, const std::string& text)
{
    return stream << std::string_view(text);
}

ZTDataStream& operator<<(ZTDataStream& stream, std::string_view text)
{
    const auto length = toBytes<std::uint64_t>(text.size());
    const std::size_t count = writtenCount(text);
    auto* plain = ZTDataStreamPrivate::ofPlain(stream);
    if (!plain || !plain->hasRoom(length.size() + count)) [[unlikely]]
        return writeTheLongWay(stream, text);
    char* target = plain->extend(length.size() + count);
    std::copy_n(text.data(), count, std::copy(length.begin(), length.end(), target));
    return stream;
}

ZTDataStream& operator>>(ZTDataStream& stream, std::string& text)
{
    auto* plain = ZTDataStreamPrivate::ofPlain(stream);
    const auto whole = plain ? plain->nextText() : std::nullopt;
    if (!whole) [[unlikely]] {
        zt::detail::readWhole(stream, [&] { readTheLongWay(stream, text); });
        return stream;
    }
    text.assign(*whole);
    plain->takeText(*whole);
    return stream;
}
