#include "support/bytes.h"
#include "support/logs.h"

#include <zintar/base.h>
#include <zintar/containers.h>
#include <zintar/logcapture.h>
#include <zintar/record.h>
#include <zintar/typedvalue.h>

#include <array>
#include <deque>
#include <list>
#include <map>
#include <optional>
#include <set>
#include <span>
#include <sstream>
#include <string>
#include <tuple>
#include <unordered_map>
#include <utility>
#include <vector>

namespace house
{
struct Point {
    int x = 0, y = 0;
    bool operator==(const Point&) const = default;
};
ZT_RECORD(Point, x, y)

/// Streams by itself, with a mark in front.
struct Path : std::vector<int> {
    friend ZTDataStream& operator<<(ZTDataStream& stream, const Path& path)
    {
        return stream << "path" << static_cast<int>(path.size());
    }
};
} // namespace house

/// An operator for one container, of a host that was there before.
ZTDataStream& operator<<(ZTDataStream& stream, const std::vector<short>& shorts)
{
    return stream << static_cast<int>(shorts.size());
}

namespace
{
using support::streamed;
using support::streamOf;

constexpr unsigned long long three = 3;

TEST(ContainerOnStream, HasItsBytes)
{
    EXPECT_EQ(streamed(std::vector{1, 2, 3}), streamed(three, 1, 2, 3));
    EXPECT_EQ(streamed(std::set<long>{3, 1, 2}), streamed(three, 1LL, 2LL, 3LL));
    EXPECT_EQ(streamed(std::vector<bool>{true, false, true}), streamed(three, true, false, true));
    EXPECT_EQ(streamed(std::array{1, 2}), streamed(1, 2));
    EXPECT_EQ(streamed(std::span<const int>(std::array{1, 2, 3})), streamed(three, 1, 2, 3));
    EXPECT_EQ(streamed(std::map<int, std::string>{{2, "b"}, {1, "a"}}),
              streamed(2ULL, 1, "a", 2, "b"));
    EXPECT_EQ(streamed(std::optional<int>()), streamed(false));
    EXPECT_EQ(streamed(std::optional(house::Point{1, 2})), streamed(true, 1, 2));
    EXPECT_EQ(streamed(std::pair(1, std::string("a"))), streamed(1, "a"));
    EXPECT_EQ(streamed(std::vector{ZTVariant(1)}), streamed(1ULL, ZTVariant(1)));
    EXPECT_EQ(streamed(std::vector<ZTBase*>{nullptr}), streamed(1ULL, false));
    EXPECT_EQ(streamed(ZTVariant(std::vector{1})),
              streamed(ztTypeName<std::vector<int>>(), 1ULL, 1));
}

TEST(ContainerOnStream, LeavesTheOperatorsOfAHostAlone)
{
    EXPECT_EQ(streamed(house::Path()), streamed("path", 0));
    EXPECT_EQ(streamed(std::vector<short>{5}), streamed(1));
    EXPECT_EQ(streamed(ZTVariant(std::vector<short>{5})),
              streamed(ztTypeName<std::vector<short>>(), 1));
    ZTDataStream stream;
    EXPECT_FALSE(ztMetaType<std::vector<short>>().deserialize(stream, nullptr));
}

/// A medium that the library cannot look into.
struct Elsewhere : ZTDataStream {
    using ZTDataStream::ZTDataStream;
};

/// Whether it comes back whole, and stays as it was wherever the stream ends before.
template <class Stream, class T>
void expectWholeOrUntouched(const T& value, const T& other)
{
    const ZTLogCapture log; // variants among the elements tell what is missing
    const std::string bytes = streamed(value);
    for (std::size_t size = 0; size <= bytes.size(); ++size) {
        Stream stream(bytes.substr(0, size));
        T target = other;
        stream >> target;
        EXPECT_EQ(stream.good(), size == bytes.size()) << ztTypeName<T>() << size;
        EXPECT_EQ(target, stream.good() ? value : other) << ztTypeName<T>() << size;
    }
}

TEST(ContainerOnStream, IsReadWholeOrLeftAsItWas)
{
    const auto expectBoth = [](const auto& value, const auto& other) {
        expectWholeOrUntouched<ZTDataStream>(value, other);
        expectWholeOrUntouched<Elsewhere>(value, other);
    };
    expectBoth(std::vector{1, 2, 3}, std::vector{7});
    expectBoth(std::vector{true, false}, std::vector{true});
    expectBoth(std::deque<std::string>{"a", "", "c"}, std::deque<std::string>{"x"});
    expectBoth(std::list<long>{-1, 2}, std::list<long>{});
    expectBoth(std::array{1.5, 2.5}, std::array{0.0, 1.0});
    expectBoth(std::set<std::string>{"b", "a"}, std::set<std::string>{"x"});
    expectBoth(std::unordered_map<int, std::vector<house::Point>>{{1, {{1, 2}, {3, 4}}}},
               std::unordered_map<int, std::vector<house::Point>>{{4, {}}});
    expectBoth(std::multimap<int, int>{{1, 2}, {1, 3}}, std::multimap<int, int>{});
    expectBoth(std::optional(std::optional(5)), std::optional(std::optional<int>()));
    expectBoth(std::pair(1, std::vector<std::string>{"a"}),
               std::pair(2, std::vector<std::string>()));
    expectBoth(std::vector{ZTVariant(1), ZTVariant("a")}, std::vector{ZTVariant()});
}

TEST(ContainerOnStream, RefusesALengthThatThereAreNoBytesFor)
{
    for (unsigned long long length : {4ULL, 1ULL << 32, ~0ULL}) {
        const std::string bytes = streamed(length, 1, 2, 3).substr(0, 8 + 3);
        std::vector<unsigned char> row{9};
        ZTDataStream stream = streamOf(bytes);
        EXPECT_FALSE((stream >> row).good());
        EXPECT_EQ(row, std::vector<unsigned char>{9});
        std::map<bool, bool> map;
        ZTDataStream again = streamOf(bytes);
        EXPECT_FALSE((again >> map).good());
        ZTVariant variant;
        ZTDataStream third = streamOf(streamed(ztTypeName<std::vector<unsigned char>>()) + bytes);
        (void)ztMetaType<std::vector<unsigned char>>();
        EXPECT_FALSE((third >> variant).good());
        EXPECT_EQ(variant, ZTVariant(std::vector<unsigned char>()));
    }
}

TEST(ContainerOnStream, OfWhatIsNotReadIsNotReadEither)
{
    ZTDataStream stream;
    const ZTVariant held(std::vector<ZTBase*>{nullptr});
    stream << held;
    ZTVariant target;
    EXPECT_LOGS("Zintar: ZTVariant deserialization failed for type " + held.type().name() + ".\n",
                [&] { stream >> target; });
}

/// Variants in vectors in variants.
std::string nested(int count)
{
    std::string bytes;
    for (int i = 0; i < count; ++i)
        bytes += streamed(ztTypeName<std::vector<ZTVariant>>(), 1ULL);
    return bytes + streamed(ZTVariant(7));
}

TEST(ContainerOnStream, NestsUpToALimit)
{
    (void)ztMetaType<std::vector<ZTVariant>>();
    ZTVariant value;
    ZTDataStream deep = streamOf(nested(200));
    EXPECT_TRUE((deep >> value).good());
    EXPECT_EQ(streamed(value), nested(200));
    ZTDataStream tooDeep = streamOf(nested(50'000));
    EXPECT_NE(support::logOf([&] { tooDeep >> value; }), "");
}

TEST(ContainerAsText, ShowsItsElements)
{
    const auto text = [](const auto& value) {
        const ZTVariant held(value);
        std::ostringstream stream;
        held.type().print(stream, held.data());
        return stream.str();
    };
    EXPECT_EQ(text(std::vector<std::string>{"a", "b\""}), "[\"a\", \"b\\\"\"]");
    EXPECT_EQ(text(std::vector<unsigned char>{65, 66}), "[65, 66]");
    EXPECT_EQ(text(std::vector<char>{'A'}), "[A]");
    EXPECT_EQ(text(std::map<int, std::optional<double>>{{1, 1.5}, {2, {}}}), "{1: 1.5, 2: none}");
    EXPECT_EQ(text(std::pair(1, house::Point{2, 3})), "(1, {x: 2, y: 3})");
    EXPECT_EQ(text(std::vector{ZTVariant(1), ZTVariant("a")}), "[1, \"a\"]");
    EXPECT_EQ(text(std::array<int, 0>()), "[]");
}
} // namespace
