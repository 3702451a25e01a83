#include "support/bytes.h"
#include "support/logs.h"

#include <zintar/datastream.h>
#include <zintar/kind.h>
#include <zintar/record.h>
#include <zintar/typedvalue.h>
#include <zintar/view.h>

#include <map>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

// No file here includes `containers.h`: the containers in a record need no invitation.

namespace house
{
enum class Finish : unsigned char { Matt, Glossy = 200 };
struct Color {
    unsigned char red = 0, green = 0, blue = 0;
    Finish finish = Finish::Matt;
};
ZT_RECORD(Color, red, green, blue, finish)

struct Room {
    std::string name;
    std::vector<Color> walls;
    std::map<std::string, long> counts;
    std::optional<Color> door;
    std::vector<Room> closets;
};
ZT_RECORD(Room, name, walls, counts, door, closets)

/// Has operators of its own.
struct Version {
    int major = 0, minor = 0;
    bool operator==(const Version& other) const { return major == other.major; }
    friend std::ostream& operator<<(std::ostream& stream, const Version& version)
    {
        return stream << "v" << version.major;
    }
    friend ZTDataStream& operator<<(ZTDataStream& stream, const Version& version)
    {
        return stream << version.major;
    }
};
ZT_RECORD(Version, major, minor)
} // namespace house

namespace elsewhere
{
struct Base {
    int id = 3;
};
/// Nobody here may write into its namespace.
struct Sample : Base {
    int a = 0, b = 0, c = 0, d = 0, e = 0, f = 0, g = 0, h = 0, i = 0, j = 0, k = 0, l = 0, m = 0,
        n = 0, o = 0;
    const int fixed = 17;
};
struct Opaque {};
struct Sealed {
    Opaque opaque;
    int number = 0;
};
} // namespace elsewhere
ZT_RECORD(elsewhere::Sample, id, a, b, c, d, e, f, g, h, i, j, k, l, m, n, o, fixed)
ZT_RECORD(elsewhere::Sealed, opaque, number)

namespace
{
using house::Color;
using house::Room;

const Room hall{
    "hall", {{1, 2, 3}, {4, 5, 6}}, {{"lamps", 7}}, Color{0, 0, 9}, {{"closet", {}, {}, {}, {}}}};

std::string printed(const ZTVariant& value)
{
    std::ostringstream text;
    text << value;
    return text.str();
}

TEST(Record, TellsAndChangesItsFields)
{
    ZTVariant held(Color{1, 2, 3});
    const ZTRecordView view(held);
    EXPECT_EQ(ztKind(held.type()), ZTKind::Record);
    EXPECT_EQ(view.count(), 4U);
    EXPECT_EQ(view.name(2), "blue");
    EXPECT_EQ(&view.type(2), &ztMetaType<unsigned char>());
    EXPECT_EQ(view.indexOf("blue"), 2);
    EXPECT_EQ(view.indexOf("pink"), -1);
    EXPECT_EQ(view.at("green"), ZTVariant(static_cast<unsigned char>(2)));
    EXPECT_TRUE(view.set("green", static_cast<unsigned char>(9)));
    EXPECT_TRUE(view.set(3, house::Finish::Glossy));
    EXPECT_FALSE(view.set("green", "text") || view.set("pink", 1) || view.set(4, 1));
    EXPECT_FALSE(view.at("pink").isValid() || view.at(4).isValid() || view.type(4));
    EXPECT_EQ(ztVariantPointer<Color>(held)->green, 9);
    const ZTRecordView reading(std::as_const(held));
    EXPECT_FALSE(reading.canSet(0) || reading.set("red", static_cast<unsigned char>(9)));

    const ZTRecordView ofType(ztMetaType<Color>());
    EXPECT_FALSE(ofType);
    EXPECT_EQ(ofType.count(), 4U);
    EXPECT_FALSE(ofType.at(0).isValid() || ofType.canSet(0));
}

TEST(Record, OfSomebodyElseHasAsManyFieldsAsItNeeds)
{
    ZTVariant held{elsewhere::Sample()};
    const ZTRecordView view(held);
    ASSERT_EQ(view.count(), 17U);
    EXPECT_EQ(view.at("id"), ZTVariant(3));
    EXPECT_EQ(view.name(16), "fixed");
    EXPECT_EQ(view.at(16), ZTVariant(17));
    EXPECT_FALSE(view.canSet(16));
    EXPECT_TRUE(view.set("o", 5));
    EXPECT_EQ(ztVariantPointer<elsewhere::Sample>(held)->o, 5);
}

TEST(Record, StreamsByItsFields)
{
    EXPECT_EQ(support::streamed(ZTVariant(Color{1, 2, 3, house::Finish::Glossy})),
              support::streamed("struct house::Color") + std::string("\1\2\3\xC8"));
    ZTDataStream stream;
    stream << ZTVariant(hall) << 5;
    ZTVariant back;
    int next = 0;
    EXPECT_LOGS_NOTHING([&] { stream >> back >> next; });
    EXPECT_EQ(back, ZTVariant(hall));
    EXPECT_EQ(next, 5);
    // A constant field is written, but nothing can be read into it.
    EXPECT_FALSE(support::streamed(ZTVariant(elsewhere::Sample())).empty());
    EXPECT_FALSE(ztMetaType<elsewhere::Sample>().deserialize(stream, back.data()));
}

TEST(Record, ThatEndsEarlyLeavesItsTargetAsItWas)
{
    ZTDataStream whole;
    ztMetaType<Room>().serialize(whole, &hall);
    const std::string bytes = whole.data();
    for (std::size_t size = 0; size < bytes.size(); ++size) {
        ZTDataStream stream = support::streamOf(bytes.substr(0, size));
        ZTVariant target(Room{"attic", {{9}}, {}, {}, {}});
        const ZTVariant before = target;
        EXPECT_TRUE(target.type().deserialize(stream, target.data()));
        EXPECT_FALSE(stream.good()) << size;
        EXPECT_EQ(target, before) << size;
    }
}

TEST(Record, ThatNestsWithoutEndIsSurvived)
{
    // A room without anything but a closet, which is such a room.
    std::string bytes = support::streamed("struct house::Room");
    for (int i = 0; i < 100'000; ++i)
        bytes += std::string(25, '\0') + support::streamed(1ULL);
    ZTDataStream stream = support::streamOf(bytes);
    ZTVariant target;
    stream >> target;
    EXPECT_FALSE(stream.good());
    EXPECT_EQ(target, ZTVariant(Room()));
}

TEST(Record, PrintsAndComparesByItsFields)
{
    EXPECT_EQ(
        printed(ZTVariant(hall)),
        "ZTVariant(struct house::Room, {name: \"hall\", "
        "walls: [{red: 1, green: 2, blue: 3, finish: 0}, {red: 4, green: 5, blue: 6, finish: 0}], "
        "counts: {\"lamps\": 7}, door: {red: 0, green: 0, blue: 9, finish: 0}, "
        "closets: [{name: \"closet\", walls: [], counts: {}, door: none, closets: []}]})");
    EXPECT_LT(ZTVariant(Color{1, 2, 3}), ZTVariant(Color{1, 3, 0}));
    EXPECT_GT(ZTVariant(Color{2}), ZTVariant(Color{1, 3, 0}));
    EXPECT_EQ(ZTVariant(Color{2}), ZTVariant(Color{2}));
    EXPECT_EQ(ZTVariant(hall), ZTVariant(hall));
    Room other = hall;
    other.counts["lamps"] = 8;
    EXPECT_NE(ZTVariant(hall), ZTVariant(other));
    // A longer row is above its beginning, some value above none.
    EXPECT_LT(ZTVariant(std::vector<Color>{{1}}), ZTVariant(std::vector<Color>{{1}, {}}));
    EXPECT_LT(ZTVariant(std::optional<Color>()), ZTVariant(std::optional<Color>(Color())));
}

TEST(Record, KeepsTheOperatorsThatItHas)
{
    const ZTVariant one(house::Version{1, 2});
    EXPECT_EQ(one, ZTVariant(house::Version{1, 3}));
    EXPECT_EQ(printed(one), "ZTVariant(struct house::Version, v1)");
    EXPECT_EQ(support::streamed(one), support::streamed("struct house::Version", 1));
    // What it writes by itself is not read by its fields.
    ZTDataStream stream;
    ZTVariant target(one);
    EXPECT_FALSE(one.type().deserialize(stream, target.data()));
}

TEST(Record, CanDoWhatAllItsFieldsCan)
{
    const ZTVariant sealed{elsewhere::Sealed()};
    const std::string failed = " failed for type struct elsewhere::Sealed.\n";
    ZTDataStream stream;
    EXPECT_LOGS("Zintar: ZTVariant serialization" + failed, [&] { stream << sealed; });
    EXPECT_LOGS("Zintar: ZTVariant print" + failed, [&] { printed(sealed); });
    EXPECT_NE(sealed, sealed);
    EXPECT_EQ(ZTRecordView(sealed).at("number"), ZTVariant(0));
}
} // namespace
