#pragma once

#include <zintar/export.h>
#include <zintar/fwd.h>

#include <string>
#include <string_view>
#include <type_traits>

struct ZTDataStreamPrivate;

/// A byte stream in memory: primitives little-endian without padding, strings as a 64-bit length
/// and the bytes. There is no header and no type tag; the reader has to know the order. Where a
/// value should say itself what it is, write it as a `ZTVariant`.
///
///     ZTDataStream out;
///     out << 1 << 0.5 << "abc";
///     ZTDataStream in(out.data());
///     int number = 0;
///     in >> number;
///
/// Reading and writing each have a position of their own in the same bytes. Failure is a state: a
/// read past the end takes what is there and fails the stream, and from then on every read and
/// write does nothing. No operation mends a failed stream; take a new one. Nothing is logged.
///
/// A class that overrides the virtual operations changes the medium of every operator. One that
/// overrides `read` overrides `good` too: only so is the end of its bytes seen.
///
/// Moving leaves a stream behind that can only be destroyed or assigned to. Copying does not exist.
/// Threads: belongs to one thread at a time.
class ZT_EXPORT ZTDataStream
{
public:
    ZTDataStream();
    /// Both positions stand at the first byte. A string that is moved in is not copied.
    explicit ZTDataStream(std::string bytes);
    ZTDataStream(ZTDataStream&& other) noexcept;
    /// The bytes, the positions and the state of the other one take the place of the own.
    ZTDataStream& operator=(ZTDataStream&& other) noexcept;
    virtual ~ZTDataStream();

    /// All bytes, from the first to the last ever written or set, wherever the positions stand.
    [[nodiscard]] virtual std::string data() const;
    /// Replaces the bytes; both positions stand at the first one then. A failed stream stays so.
    virtual void setData(const std::string& bytes);
    /// True once a read has tried to go past the end; false still after the last byte was read.
    [[nodiscard]] virtual bool atEnd() const;
    /// Writes over what stands at the position, and behind the end. A failed stream takes nothing.
    virtual ZTDataStream& write(const char* bytes, unsigned int count);
    /// Reads `count` bytes, or fails with what there is; bytes that were not read stay as they are.
    virtual ZTDataStream& read(char* bytes, unsigned int count);
    /// False from the first failure on.
    [[nodiscard]] virtual bool good() const;

    [[nodiscard]] bool operator!() const { return !good(); }
    [[nodiscard]] bool operator()() const { return good(); }
    [[nodiscard]] explicit operator bool() const { return good(); }

private:
    friend ZTDataStreamPrivate;
    ZTDataStreamPrivate* priv;
};

// Each writes as many bytes as the value has: 1 for both `char`s and `bool`, 2, 4 and 8 for the
// others, the least significant first. What is written over other bytes takes their place. A
// stream that has failed takes nothing. Cost: no allocation as long as the stream has room.
ZT_EXPORT ZTDataStream& operator<<(ZTDataStream& stream, signed char value);
ZT_EXPORT ZTDataStream& operator<<(ZTDataStream& stream, unsigned char value);
ZT_EXPORT ZTDataStream& operator<<(ZTDataStream& stream, bool value);
ZT_EXPORT ZTDataStream& operator<<(ZTDataStream& stream, short value);
ZT_EXPORT ZTDataStream& operator<<(ZTDataStream& stream, unsigned short value);
ZT_EXPORT ZTDataStream& operator<<(ZTDataStream& stream, int value);
ZT_EXPORT ZTDataStream& operator<<(ZTDataStream& stream, unsigned int value);
ZT_EXPORT ZTDataStream& operator<<(ZTDataStream& stream, float value);
ZT_EXPORT ZTDataStream& operator<<(ZTDataStream& stream, double value);
ZT_EXPORT ZTDataStream& operator<<(ZTDataStream& stream, long long value);
ZT_EXPORT ZTDataStream& operator<<(ZTDataStream& stream, unsigned long long value);
/// A null text is written as an empty one.
ZT_EXPORT ZTDataStream& operator<<(ZTDataStream& stream, const char* text);
ZT_EXPORT ZTDataStream& operator<<(ZTDataStream& stream, std::string_view text);
ZT_EXPORT ZTDataStream& operator<<(ZTDataStream& stream, const std::string& text);

// Each reads as many bytes. When they are not all there, the stream fails, and the value has those
// that were: initialise what you read into, and test the stream.
ZT_EXPORT ZTDataStream& operator>>(ZTDataStream& stream, signed char& value);
ZT_EXPORT ZTDataStream& operator>>(ZTDataStream& stream, unsigned char& value);
/// Any byte but 0 is true.
ZT_EXPORT ZTDataStream& operator>>(ZTDataStream& stream, bool& value);
ZT_EXPORT ZTDataStream& operator>>(ZTDataStream& stream, short& value);
ZT_EXPORT ZTDataStream& operator>>(ZTDataStream& stream, unsigned short& value);
ZT_EXPORT ZTDataStream& operator>>(ZTDataStream& stream, int& value);
ZT_EXPORT ZTDataStream& operator>>(ZTDataStream& stream, unsigned int& value);
ZT_EXPORT ZTDataStream& operator>>(ZTDataStream& stream, float& value);
ZT_EXPORT ZTDataStream& operator>>(ZTDataStream& stream, double& value);
ZT_EXPORT ZTDataStream& operator>>(ZTDataStream& stream, long long& value);
ZT_EXPORT ZTDataStream& operator>>(ZTDataStream& stream, unsigned long long& value);
/// A length that exceeds what the stream still holds fails the stream and leaves the text empty;
/// no more memory is taken than there are bytes.
ZT_EXPORT ZTDataStream& operator>>(ZTDataStream& stream, std::string& text);

namespace zt::detail
{
/// Fills the 8 bytes of an integer in place; those that are not read stay as they are.
ZT_EXPORT ZTDataStream& readEightBytes(ZTDataStream& stream, void* integer);
} // namespace zt::detail

/// An 8-byte `long` (`std::int64_t` on many platforms) streams as the `long long` that it equals.
template <class Long>
    requires(std::is_same_v<Long, long> && sizeof(Long) == 8)
ZTDataStream& operator<<(ZTDataStream& stream, Long value)
{
    return stream << static_cast<long long>(value);
}
template <class Long>
    requires(std::is_same_v<Long, unsigned long> && sizeof(Long) == 8)
ZTDataStream& operator<<(ZTDataStream& stream, Long value)
{
    return stream << static_cast<unsigned long long>(value);
}
template <class Long>
    requires(std::is_same_v<Long, long> && sizeof(Long) == 8)
ZTDataStream& operator>>(ZTDataStream& stream, Long& value)
{
    return zt::detail::readEightBytes(stream, &value);
}
template <class Long>
    requires(std::is_same_v<Long, unsigned long> && sizeof(Long) == 8)
ZTDataStream& operator>>(ZTDataStream& stream, Long& value)
{
    return zt::detail::readEightBytes(stream, &value);
}
