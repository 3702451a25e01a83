#include "support/bytes.h"

#include <zintar/datastream.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <type_traits>

namespace
{
static_assert(!std::is_copy_constructible_v<ZTDataStream>);

using support::bytesOf;
using support::streamOf;

TEST(DataStream, WritesLittleEndianWithoutPadding)
{
    using support::hex;
    using support::streamed;
    EXPECT_EQ(hex(streamed(true, short(-2), 0x12345678U, -0.5)),
              "01 FE FF 78 56 34 12 00 00 00 00 00 00 E0 BF");
    const std::string abc = "03 00 00 00 00 00 00 00 61 62 63 ";
    EXPECT_EQ(hex(streamed("abc", std::string_view("abcd").substr(0, 3), std::string("abc"), "")),
              abc + abc + abc + "00 00 00 00 00 00 00 00");
}

TEST(DataStream, TakesIntegersThatAreNoTypeOfTheRegistry)
{
    ZTDataStream stream;
    signed char small = 0;
    long large = 0;
    stream << static_cast<signed char>(-2) << -3L;
    stream >> small >> large;
    EXPECT_EQ(small, -2);
    EXPECT_EQ(large, -3);
    EXPECT_EQ(stream.data().size(), 1 + sizeof large);
}

TEST(DataStream, FailsAtAReadPastItsEndAndStaysSo)
{
    ZTDataStream stream = streamOf("\x02\x11\x22");
    bool damaged = false;
    int value = 0x77665544;
    stream >> damaged;
    EXPECT_EQ(damaged, true);
    stream.read(nullptr, 0).write(nullptr, 0);
    EXPECT_TRUE(stream.good());
    EXPECT_TRUE(stream());
    EXPECT_FALSE(!stream);
    EXPECT_FALSE(stream.atEnd());
    stream >> value;
    EXPECT_EQ(value, 0x77662211);
    EXPECT_FALSE(stream.good());
    EXPECT_FALSE(stream());
    EXPECT_TRUE(!stream);
    EXPECT_TRUE(stream.atEnd());
    stream << 5;
    EXPECT_EQ(bytesOf(stream), "02 11 22");
    stream.setData("abcd");
    stream >> value;
    EXPECT_EQ(value, 0x77662211);
    EXPECT_FALSE(stream.good());
}

TEST(DataStream, ReadsAndWritesAtPositionsOfTheirOwn)
{
    unsigned char byte = 0;
    ZTDataStream stream = streamOf("abc");
    stream << static_cast<unsigned char>('X');
    EXPECT_EQ(stream.data(), "Xbc");
    stream >> byte;
    EXPECT_EQ(byte, 'X');
    stream << 0x31323334;
    EXPECT_EQ(stream.data(), "X4321");
    ZTDataStream moved(std::move(stream));
    moved >> byte;
    EXPECT_EQ(byte, '4');
    moved << byte;
    EXPECT_EQ(moved.data(), "X43214");
    moved.setData("ab"); // from the first byte again
    moved << byte >> byte;
    EXPECT_EQ(moved.data() + static_cast<char>(byte), "4b4");
    moved << 0x31323334;
    EXPECT_EQ(moved.data(), "44321");
}

TEST(DataStream, IsMadeOfBytes)
{
    short number = 0;
    ZTDataStream stream(std::string("\x34\x12z"));
    stream << 0x35363738;
    EXPECT_EQ(stream.data(), "8765");
    stream >> number;
    EXPECT_EQ(number, 0x3738);
}

TEST(DataStream, TakesThePlaceOfAnotherWithItsPositionsAndState)
{
    int number = 0;
    ZTDataStream stream(std::string("old")), failed(std::string("x"));
    ZTDataStream other;
    other << 1 << 2;
    other >> number;
    stream = std::move(other);
    stream >> number;
    EXPECT_EQ(number, 2);
    EXPECT_TRUE(stream.good());
    failed >> number;
    other = std::move(failed); // what was moved from can be used again
    EXPECT_FALSE(other.good());
    EXPECT_EQ(other.data(), "x");
    ZTDataStream& itself = other;
    other = std::move(itself);
    EXPECT_EQ(other.data(), "x");
}

/// Reads a `T` out of too few bytes into memory that nobody has written.
template <class T>
void readInVain()
{
    alignas(T) unsigned char memory[sizeof(T)];
    std::fill_n(memory, sizeof(T), static_cast<unsigned char>(0x5A)); // no value of a `bool`
    ZTDataStream stream(std::string(sizeof(T) - 1, '\x11'));
    stream >> *reinterpret_cast<T*>(memory);
    EXPECT_FALSE(stream.good());
    EXPECT_EQ(memory[sizeof(T) - 1], 0x5A);
    EXPECT_EQ(std::count(memory, memory + sizeof(T), 0x11), sizeof(T) - 1);
}

TEST(DataStream, DoesNotLookAtWhatItReadsInto)
{
    bool flag; // neither has a value, which a compiler would complain of
    long number;
    ZTDataStream stream;
    stream << true << 7L;
    stream >> flag >> number;
    EXPECT_TRUE(flag);
    EXPECT_EQ(number, 7);
    readInVain<bool>();
    readInVain<int>();
    readInVain<long>();
    readInVain<double>();
}

/// A medium of its own: the bytes are kept backwards, and `good` is its own as well.
class Backwards : public ZTDataStream
{
public:
    Backwards& write(const char* from, unsigned int count) override
    {
        for (unsigned int i = 0; i < count; ++i)
            bytes.insert(bytes.begin(), from[i]);
        return *this;
    }
    Backwards& read(char* to, unsigned int count) override
    {
        largestRead = std::max(largestRead, count);
        failed = failed || count > bytes.size();
        for (unsigned int i = 0; !failed && i < count; ++i) {
            to[i] = bytes.back();
            bytes.pop_back();
        }
        return *this;
    }
    bool good() const override { return !failed; }
    void setData(const std::string& text) override { bytes.assign(text.rbegin(), text.rend()); }

    std::string bytes;
    bool failed = false;
    unsigned int largestRead = 0;
};

TEST(DerivedStream, ChangesTheMediumOfEveryOperator)
{
    Backwards stream;
    std::string text;
    short number = 0;
    stream << "abc" << short(0x1234);
    EXPECT_EQ(support::hex(stream.bytes), "12 34 63 62 61 00 00 00 00 00 00 00 03");
    stream >> text >> number;
    EXPECT_EQ(text, "abc");
    EXPECT_EQ(number, 0x1234);
    EXPECT_FALSE(!stream);
    stream >> number;
    EXPECT_FALSE(stream);
    EXPECT_FALSE(stream());
    static_cast<ZTDataStream&>(stream).setData(std::string("ab"));
    EXPECT_EQ(stream.bytes, "ba");
    bool given = false;
    stream.failed = false;
    stream >> given;
    EXPECT_TRUE(given);
    EXPECT_EQ(stream.bytes, "b");
}

/// Changes what it is given, and leaves the keeping to the stream below.
class Shortened : public ZTDataStream
{
public:
    using ZTDataStream::setData;
    void setData(const std::string& text) override { ZTDataStream::setData(text.substr(1)); }
};

TEST(DerivedStream, HandsATemporaryOn)
{
    Shortened stream;
    stream.setData("abc");
    EXPECT_EQ(stream.data(), "bc");
    static_cast<ZTDataStream&>(stream).setData(std::string("abc"));
    EXPECT_EQ(stream.data(), "bc");
}

TEST(AnyStream, ReadsALongText)
{
    for (std::size_t size : {4095U, 4096U, 4097U, 10'000U}) {
        const std::string text = std::string(size - 1, 'x') + "y";
        ZTDataStream plain;
        Backwards derived;
        for (ZTDataStream* stream : {&plain, static_cast<ZTDataStream*>(&derived)}) {
            std::string read, next;
            *stream << text << "end";
            *stream >> read >> next;
            EXPECT_EQ(read, text) << size;
            EXPECT_EQ(next, "end") << size;
        }
    }
}

TEST(AnyStream, FailsAtAForgedLengthAndTakesNoMemory)
{
    for (unsigned long long length :
         {4ULL, 1ULL << 20, 1ULL << 32, (1ULL << 32) + 3, 1ULL << 63, ~0ULL}) {
        ZTDataStream plain;
        Backwards derived;
        for (ZTDataStream* stream : {&plain, static_cast<ZTDataStream*>(&derived)}) {
            (*stream << length).write("abc", 3);
            std::string text = "old";
            *stream >> text;
            EXPECT_FALSE(stream->good()) << length;
            EXPECT_TRUE(text.empty()) << length;
            EXPECT_LT(text.capacity(), 100'000U);
        }
        EXPECT_LT(derived.largestRead, 100'000U);
    }
}
} // namespace
