#include <zintar/datastream.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <typeinfo>
#include <utility>

// The states are those of a string stream opened for reading and writing:
// 1. `good` means that neither flag is set; once one is set, `read` and `write` do nothing.
// 2. A read that finds too few bytes takes them and sets both flags.
// 3. No operation clears a flag.
struct ZTDataStreamPrivate {
    /// The record of a stream whose medium it is: null where a derived class may have put another
    /// one under the operators. Theirs is the virtual call, the others go straight to the bytes.
    static ZTDataStreamPrivate* ofPlain(const ZTDataStream& stream)
    {
        return typeid(stream) == typeid(ZTDataStream) ? stream.priv : nullptr;
    }

    void assign(std::string_view text)
    {
        if (text.size() > capacity)
            grow(text.size());
        std::copy(text.begin(), text.end(), bytes.get());
        size = text.size();
        readPosition = 0;
        writePosition = 0;
    }
    void write(const char* source, std::size_t count)
    {
        if (pastEnd || count == 0)
            return;
        if (count > capacity - writePosition)
            grow(std::max({writePosition + count, 2 * capacity, std::size_t(64)}));
        std::memcpy(bytes.get() + writePosition, source, count);
        writePosition += count;
        size = std::max(size, writePosition);
    }
    void read(char* target, std::size_t count)
    {
        if (pastEnd || count == 0)
            return;
        if (count > size - readPosition)
            return readTheRest(target);
        std::memcpy(target, bytes.get() + readPosition, count);
        readPosition += count;
    }
    [[gnu::noinline]] void readTheRest(char* target)
    {
        std::copy(bytes.get() + readPosition, bytes.get() + size, target);
        readPosition = size;
        pastEnd = true;
    }
    void readText(std::string& text, std::uint64_t length)
    {
        pastEnd = pastEnd || length > size - readPosition;
        if (pastEnd)
            return text.clear();
        text.assign(bytes.get() + readPosition, length);
        readPosition += length;
    }
    [[gnu::noinline]] void grow(std::size_t wanted)
    {
        auto* grown = static_cast<char*>(std::realloc(bytes.get(), wanted));
        if (!grown)
            throw std::bad_alloc();
        (void)bytes.release();
        bytes.reset(grown);
        capacity = wanted;
    }

    struct Free {
        void operator()(char* block) const { std::free(block); }
    };
    // Of `malloc`, since a large block grows there without being copied.
    std::unique_ptr<char, Free> bytes;
    std::size_t capacity = 0;
    std::size_t size = 0;
    std::size_t readPosition = 0;
    std::size_t writePosition = 0;
    bool pastEnd = false;
};

ZTDataStream::ZTDataStream() : priv(new ZTDataStreamPrivate) {}
ZTDataStream::ZTDataStream(ZTDataStream&& other) noexcept : priv(std::exchange(other.priv, nullptr))
{}

ZTDataStream::~ZTDataStream() { delete priv; }

std::string ZTDataStream::data() const { return {priv->bytes.get(), priv->size}; }

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
    if (auto* priv = ZTDataStreamPrivate::ofPlain(stream))
        priv->write(bytes.data(), sizeof(T));
    else
        stream.write(bytes.data(), sizeof(T));
    return stream;
}

/// What the stream does not give keeps the bytes of the old value.
template <class T>
ZTDataStream& readValue(ZTDataStream& stream, T& value)
{
    std::array<char, sizeof(T)> bytes;
    std::memcpy(bytes.data(), &value, sizeof(T));
    toLittleEndian<T>(bytes.data());
    if (auto* priv = ZTDataStreamPrivate::ofPlain(stream))
        priv->read(bytes.data(), sizeof(T));
    else
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
    std::uint64_t length = 0;
    readValue(stream, length);
    if (auto* priv = ZTDataStreamPrivate::ofPlain(stream)) {
        priv->readText(text, length);
        return stream;
    }
    text.clear();
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
