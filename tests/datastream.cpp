#include "support/bytes.h"

#include <zintar/datastream.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <type_traits>
#include <vector>

namespace
{
static_assert(!std::is_copy_constructible_v<ZTDataStream>);
static_assert(!std::is_move_assignable_v<ZTDataStream>);
static_assert(std::is_nothrow_move_constructible_v<ZTDataStream>);
static_assert(std::has_virtual_destructor_v<ZTDataStream>);

using support::bytesOf;
using support::streamOf;

void expectFailed(const ZTDataStream& stream)
{
    EXPECT_FALSE(stream.good());
    EXPECT_TRUE(stream.atEnd());
    EXPECT_TRUE(!stream);
    EXPECT_FALSE(stream());
}
void expectGood(const ZTDataStream& stream)
{
    EXPECT_TRUE(stream.good());
    EXPECT_FALSE(stream.atEnd());
    EXPECT_FALSE(!stream);
    EXPECT_TRUE(stream());
}

template <class T>
std::string written(const T& value)
{
    ZTDataStream stream;
    stream << value;
    return bytesOf(stream);
}

TEST(DataStream, WritesPrimitivesLittleEndian)
{
    EXPECT_EQ(written(true), "01");
    EXPECT_EQ(written(false), "00");
    EXPECT_EQ(written(static_cast<signed char>(-2)), "FE");
    EXPECT_EQ(written(static_cast<unsigned char>(200)), "C8");
    EXPECT_EQ(written(short(-2)), "FE FF");
    EXPECT_EQ(written(static_cast<unsigned short>(0x1234)), "34 12");
    EXPECT_EQ(written(1), "01 00 00 00");
    EXPECT_EQ(written(0x12345678U), "78 56 34 12");
    EXPECT_EQ(written(0.5F), "00 00 00 3F");
    EXPECT_EQ(written(0.5), "00 00 00 00 00 00 E0 3F");
    EXPECT_EQ(written(-2LL), "FE FF FF FF FF FF FF FF");
    EXPECT_EQ(written(0x0102030405060708ULL), "08 07 06 05 04 03 02 01");
    EXPECT_EQ(written(std::int64_t(-2)), "FE FF FF FF FF FF FF FF");
}

TEST(DataStream, WritesEveryKindOfTextAlike)
{
    const std::string abc = "03 00 00 00 00 00 00 00 61 62 63";
    EXPECT_EQ(written<const char*>("abc"), abc);
    EXPECT_EQ(written(std::string_view("abcd").substr(0, 3)), abc);
    EXPECT_EQ(written(std::string("abc")), abc);
    EXPECT_EQ(written(std::string()), "00 00 00 00 00 00 00 00");
    EXPECT_EQ(written(std::string("\0", 1)), "01 00 00 00 00 00 00 00 00");
}

/// Values at the edges of a type: its limits, and powers of two with their neighbours.
template <class T>
std::vector<T> edges()
{
    using Limits = std::numeric_limits<T>;
    std::vector<T> values{Limits::lowest(), Limits::max(), T(0), T(1)};
    if constexpr (std::is_floating_point_v<T>)
        values.insert(values.end(),
                      {Limits::min(), Limits::denorm_min(), Limits::infinity(), T(-0.0)});
    else if constexpr (!std::is_same_v<T, bool>)
        for (int bit = 1; bit < Limits::digits; ++bit) {
            T power = static_cast<T>(T(1) << bit);
            values.insert(values.end(),
                          {static_cast<T>(power - 1), power, static_cast<T>(power + 1)});
        }
    return values;
}

template <class T>
class Primitive : public testing::Test
{};
using Primitives =
    testing::Types<bool, signed char, unsigned char, short, unsigned short, int, unsigned int, long,
                   unsigned long, long long, unsigned long long, float, double>;
TYPED_TEST_SUITE(Primitive, Primitives);

TYPED_TEST(Primitive, ComesBackFromTheStream)
{
    ZTDataStream stream;
    for (TypeParam value : edges<TypeParam>())
        stream << value;
    EXPECT_EQ(stream.data().size(), edges<TypeParam>().size() * sizeof(TypeParam));
    for (TypeParam value : edges<TypeParam>()) {
        TypeParam read{};
        stream >> read;
        EXPECT_EQ(read, value);
        if constexpr (std::is_floating_point_v<TypeParam>) {
            EXPECT_EQ(std::signbit(read), std::signbit(value));
        }
    }
    expectGood(stream);
}

TEST(DataStream, TakesWhatThereIsWhenItEnds)
{
    ZTDataStream stream = streamOf("\x11\x22");
    int value = 0x77665544;
    stream >> value;
    EXPECT_EQ(value, 0x77662211);
    expectFailed(stream);
    double other = 0.5;
    stream >> other;
    EXPECT_EQ(other, 0.5);
}

TEST(DataStream, IsAtItsEndOnlyAfterAReadPastIt)
{
    ZTDataStream stream = streamOf("a");
    unsigned char byte = 0;
    char none = 'x';
    expectGood(stream);
    stream >> byte;
    expectGood(stream);
    stream.read(&none, 0).write(&none, 0);
    expectGood(stream);
    EXPECT_EQ(&stream.read(&none, 1), &stream);
    expectFailed(stream);
    EXPECT_EQ(none, 'x');
    EXPECT_EQ(byte, 'a');
}

TEST(DataStream, StaysFailed)
{
    ZTDataStream stream = streamOf("a");
    int value = 0;
    stream >> value;
    stream << 5;
    EXPECT_EQ(stream.data(), "a");
    stream.setData("abcd");
    EXPECT_EQ(stream.data(), "abcd");
    expectFailed(stream);
    stream >> value;
    EXPECT_EQ(value, 'a');
}

TEST(DataStream, ReadsAndWritesAtPositionsOfTheirOwn)
{
    ZTDataStream stream;
    int number = 0;
    double fraction = 0;
    std::string text;
    stream << 1 << 0.5;
    stream >> number;
    stream << "abc";
    const std::string all = stream.data();
    stream >> fraction >> text;
    EXPECT_EQ(number, 1);
    EXPECT_EQ(fraction, 0.5);
    EXPECT_EQ(text, "abc");
    EXPECT_EQ(all.size(), 4U + 8U + 11U);
    EXPECT_EQ(stream.data(), all);
}

TEST(DataStream, OverwritesDataThatWasSet)
{
    ZTDataStream stream = streamOf("abc");
    unsigned char byte = 0;
    stream << static_cast<unsigned char>('X');
    EXPECT_EQ(stream.data(), "Xbc");
    stream >> byte;
    EXPECT_EQ(byte, 'X');
    stream << 0x31323334;
    EXPECT_EQ(stream.data(), "X4321");
    stream.setData("q");
    stream >> byte;
    EXPECT_EQ(byte, 'q');
}

TEST(DataStream, MovesWithItsBytesAndPositions)
{
    ZTDataStream source = streamOf("ab");
    unsigned char byte = 0;
    source >> byte;
    ZTDataStream moved(std::move(source));
    moved >> byte;
    EXPECT_EQ(byte, 'b');
    EXPECT_EQ(moved.data(), "ab");
}

TEST(DataStream, FailsAtEveryTruncatedRecord)
{
    ZTDataStream whole;
    whole << 7 << "abc" << true;
    for (std::size_t size = 0; size < whole.data().size(); ++size) {
        ZTDataStream stream = streamOf(whole.data().substr(0, size));
        int number = 0;
        std::string text = "old";
        bool flag = false;
        stream >> number >> text >> flag;
        EXPECT_EQ(number, size == 0 ? 0 : 7) << size;
        EXPECT_EQ(text, size < 15 ? "" : "abc") << size;
        EXPECT_FALSE(flag) << size;
        expectFailed(stream);
    }
}

/// A medium of its own: the bytes are kept backwards, and good() is its own as well.
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

    std::string bytes;
    bool failed = false;
    unsigned int largestRead = 0;
};

TEST(DerivedStream, ChangesTheMediumOfEveryOperator)
{
    Backwards stream;
    std::string text;
    unsigned short number = 0;
    stream << "abc" << static_cast<unsigned short>(0x1234);
    EXPECT_EQ(support::hex(stream.bytes), "12 34 63 62 61 00 00 00 00 00 00 00 03");
    EXPECT_EQ(stream.data(), "");
    stream >> text >> number;
    EXPECT_EQ(text, "abc");
    EXPECT_EQ(number, 0x1234);
    EXPECT_FALSE(!stream);
    stream >> number;
    EXPECT_TRUE(!stream);
    EXPECT_FALSE(stream());
}

/// A text that says it has `length` bytes, with three behind it.
std::string forged(unsigned long long length)
{
    ZTDataStream stream;
    stream << length;
    return stream.data() + "abc";
}

class ForgedLength : public testing::TestWithParam<unsigned long long>
{};

TEST_P(ForgedLength, FailsTheStreamAndTakesNoMemory)
{
    ZTDataStream stream = streamOf(forged(GetParam()));
    std::string text;
    stream >> text;
    expectFailed(stream);
    EXPECT_EQ(text, "");
    EXPECT_LT(text.capacity(), 100'000U);
}

TEST_P(ForgedLength, DoesSoOnADerivedStream)
{
    Backwards stream;
    const std::string bytes = forged(GetParam());
    stream.bytes.assign(bytes.rbegin(), bytes.rend());
    std::string text = "old";
    stream >> text;
    EXPECT_TRUE(!stream);
    EXPECT_EQ(text, "");
    EXPECT_LT(text.capacity(), 100'000U);
    EXPECT_LT(stream.largestRead, 100'000U);
}

INSTANTIATE_TEST_SUITE_P(Lengths, ForgedLength,
                         testing::Values(4ULL, 1ULL << 20, 1ULL << 32, (1ULL << 32) + 3, 1ULL << 63,
                                         ~0ULL));

TEST(DataStream, ReadsALongText)
{
    for (std::size_t size : {4095U, 4096U, 4097U, 100'000U}) {
        std::string text(size, 'x');
        text.back() = 'y';
        std::string read;
        ZTDataStream stream;
        stream << text << "end";
        stream >> read;
        EXPECT_EQ(read, text) << size;
        stream >> read;
        EXPECT_EQ(read, "end");
    }
}

TEST(DataStream, ReadsADamagedBoolAsTrue)
{
    ZTDataStream stream = streamOf("\x02");
    bool flag = false;
    stream >> flag;
    EXPECT_TRUE(flag);
    EXPECT_EQ(written(flag), "01");
}
} // namespace
