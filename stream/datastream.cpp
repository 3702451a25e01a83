#include <zintar/datastream.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <cstring>
#include <utility>
#include <vector>

// The states are those of a string stream opened for reading and writing:
// 1. `good` means that neither flag is set; once one is set, `read` and `write` do nothing.
// 2. A read that finds too few bytes takes them and sets both flags.
// 3. No operation clears a flag.
struct ZTDataStreamPrivate {
    std::string bytes;
    std::size_t readPosition = 0;
    std::size_t writePosition = 0;
    bool pastEnd = false;
};

ZTDataStream::ZTDataStream() : priv(new ZTDataStreamPrivate) {}
ZTDataStream::ZTDataStream(ZTDataStream&& other) noexcept : priv(std::exchange(other.priv, nullptr))
{}

ZTDataStream::~ZTDataStream() { delete priv; }

std::string ZTDataStream::data() const { return priv->bytes; }

void ZTDataStream::setData(const std::string& bytes)
{
    priv->bytes = bytes;
    priv->readPosition = 0;
    priv->writePosition = 0;
}

bool ZTDataStream::atEnd() const { return priv->pastEnd; }

ZTDataStream& ZTDataStream::write(const char* bytes, unsigned int count)
{
    if (priv->pastEnd || count == 0)
        return *this;
    std::string& buffer = priv->bytes;
    std::size_t behind = buffer.size() - priv->writePosition;
    if (behind == 0)
        buffer.append(bytes, count);
    else
        buffer.replace(priv->writePosition, std::min<std::size_t>(count, behind), bytes, count);
    priv->writePosition += count;
    return *this;
}

ZTDataStream& ZTDataStream::read(char* bytes, unsigned int count)
{
    if (priv->pastEnd || count == 0)
        return *this;
    std::size_t available = priv->bytes.size() - priv->readPosition;
    std::size_t taken = std::min<std::size_t>(count, available);
    std::memcpy(bytes, priv->bytes.data() + priv->readPosition, taken);
    priv->readPosition += taken;
    priv->pastEnd = taken < count;
    return *this;
}

bool ZTDataStream::good() const { return !priv->pastEnd; }

namespace
{
/// The bytes of `value` with the least significant one first, or the way back.
template <class T>
void toLittleEndian(char* bytes)
{
    if constexpr (std::endian::native == std::endian::big)
        std::reverse(bytes, bytes + sizeof(T));
    else
        (void)bytes;
}

template <class T>
ZTDataStream& writeValue(ZTDataStream& stream, T value)
{
    std::array<char, sizeof(T)> bytes;
    std::memcpy(bytes.data(), &value, sizeof(T));
    toLittleEndian<T>(bytes.data());
    return stream.write(bytes.data(), sizeof(T));
}

/// What the stream does not give keeps the bytes of the old value.
template <class T>
ZTDataStream& readValue(ZTDataStream& stream, T& value)
{
    std::array<char, sizeof(T)> bytes;
    std::memcpy(bytes.data(), &value, sizeof(T));
    toLittleEndian<T>(bytes.data());
    stream.read(bytes.data(), sizeof(T));
    toLittleEndian<T>(bytes.data());
    std::memcpy(&value, bytes.data(), sizeof(T));
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

ZTDataStream& operator>>(ZTDataStream& stream, bool& value)
{
    // Not into the `bool` itself: a damaged byte would make one that is neither true nor false.
    unsigned char byte = value ? 1 : 0;
    readValue(stream, byte);
    value = byte != 0;
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
    writeValue<std::uint64_t>(stream, text.size());
    return stream.write(text.data(), static_cast<unsigned int>(text.size()));
}

ZTDataStream& operator>>(ZTDataStream& stream, std::string& text)
{
    text.clear();
    std::uint64_t length = 0;
    readValue(stream, length);
    // Piece by piece: the length is not to be trusted before its bytes have been seen, and only a
    // read can tell how many a derived class still has.
    constexpr std::uint64_t piece = 4096;
    while (stream.good() && length > 0) {
        auto size = static_cast<unsigned int>(std::min(length, piece));
        std::size_t before = text.size();
        text.resize(before + size);
        stream.read(text.data() + before, size);
        length -= size;
    }
    if (!stream.good())
        text.clear();
    return stream;
}
