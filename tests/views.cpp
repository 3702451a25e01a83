#include "support/logs.h"
#include "support/sampleclasses.h"

#include <zintar/base.h>
#include <zintar/converter.h>
#include <zintar/datastream.h>
#include <zintar/kind.h>
#include <zintar/reference.h>
#include <zintar/typedvalue.h>
#include <zintar/view.h>

#include <array>
#include <deque>
#include <filesystem>
#include <list>
#include <map>
#include <optional>
#include <set>
#include <span>
#include <sstream>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace
{
class Incomplete;

/// The elements, one behind the other.
template <class T>
std::vector<T> walked(const ZTSequenceView& view)
{
    std::vector<T> values;
    for (const ZTVariant& element : view)
        values.push_back(ztVariantValue<T>(element));
    return values;
}

template <class Container>
struct Sequence : testing::Test {};
using Sequences = testing::Types<std::vector<int>, std::deque<int>, std::list<int>,
                                 std::vector<long>, std::vector<bool>>;
TYPED_TEST_SUITE(Sequence, Sequences);

TYPED_TEST(Sequence, IsWalkedAndChangedInTheVariant)
{
    using E = typename TypeParam::value_type;
    ZTVariant held{TypeParam()};
    const ZTSequenceView view(held);
    EXPECT_EQ(&view.elementType(), &ztMetaType<E>());
    EXPECT_TRUE(view.canSet() && view.canAdd() && view.canInsert() && view.canErase());
    EXPECT_TRUE(view.add(E(1)) && view.add(E(0)) && view.insert(0, E(0)) && view.insert(3, E(1)));
    EXPECT_EQ(walked<E>(view), (std::vector<E>{0, 1, 0, 1}));
    EXPECT_TRUE(view.set(0, E(1)) && view.erase(1));
    EXPECT_EQ(*ztVariantPointer<TypeParam>(held), (TypeParam{1, 0, 1}));
    for (std::size_t i = 0; i < 3; ++i)
        EXPECT_EQ(view.at(i), ZTVariant(E(i != 1))) << i;
    EXPECT_FALSE(view.at(3).isValid());
    EXPECT_FALSE(view.set(3, E(1)) || view.insert(4, E(1)) || view.erase(3));
    EXPECT_EQ(view.size(), 3U);
    EXPECT_TRUE(view.clear() && view.isEmpty());
    EXPECT_EQ(walked<E>(view), std::vector<E>());
}

TEST(SequenceView, LeavesAValueThatDoesNotFitOutAndSaysNothing)
{
    struct Level {
        int value;
    };
    ztRegisterConverter([](const Level& level) -> std::optional<int> {
        return level.value < 0 ? std::nullopt : std::optional(level.value);
    });
    ZTVariant held(std::vector<int>{7});
    const ZTSequenceView view(held);
    EXPECT_LOGS_NOTHING([&] {
        EXPECT_FALSE(view.add("text") || view.set(0, 1.5) || view.insert(0, ZTVariant()));
        EXPECT_FALSE(view.add(Level{-1}));
        EXPECT_TRUE(view.add(Level{3}));
    });
    EXPECT_TRUE(view.add(view.at(0)));
    EXPECT_EQ(walked<int>(view), (std::vector{7, 3, 7}));
}

TEST(SequenceView, OnlyReadsWhatIsConst)
{
    const ZTVariant held(std::vector<int>{7});
    const ZTSequenceView view(held);
    EXPECT_TRUE(view && view.isReadOnly());
    EXPECT_FALSE(view.canSet() || view.canAdd() || view.canErase());
    EXPECT_FALSE(view.set(0, 1) || view.add(1) || view.erase(0) || view.clear());
    EXPECT_EQ(walked<int>(view), std::vector{7});

    const std::vector<std::vector<int>> rows{{1}, {2, 3}};
    const ZTSequenceView outer(ztMetaType<std::vector<std::vector<int>>>(), &rows);
    EXPECT_FALSE(outer.at<ZTSequenceView>(1).add(4));
    EXPECT_EQ(outer.at<ZTSequenceView>(1).size(), 2U);
    static_assert(!std::is_constructible_v<ZTSequenceView, ZTVariant>);
}

TEST(SequenceView, OffersWhatTheContainerCan)
{
    ZTVariant set(std::set<int>{3, 1});
    const ZTSequenceView ofSet(set);
    EXPECT_FALSE(ofSet.canSet() || ofSet.canInsert());
    EXPECT_FALSE(ofSet.set(0, 5) || ofSet.insert(0, 5));
    EXPECT_TRUE(ofSet.add(2) && ofSet.add(2) && ofSet.erase(0));
    EXPECT_EQ(walked<int>(ofSet), (std::vector{2, 3}));

    std::array<int, 2> numbers{1, 2};
    std::span<int> row(numbers);
    for (const ZTSequenceView& fixed : {ZTSequenceView(ztMetaType<std::array<int, 2>>(), &numbers),
                                        ZTSequenceView(ztMetaType<std::span<int>>(), &row)}) {
        EXPECT_TRUE(fixed.canSet());
        EXPECT_FALSE(fixed.canAdd() || fixed.canErase() || fixed.clear());
        EXPECT_EQ(fixed.size(), 2U);
    }
    ZTVariant span{std::span<int>(numbers)};
    EXPECT_TRUE(ZTSequenceView(span).set(1, 9));
    EXPECT_EQ(numbers[1], 9);
    ZTVariant constSpan{std::span<const int>(numbers)};
    EXPECT_FALSE(ZTSequenceView(constSpan).set(1, 8));
    EXPECT_EQ(ZTSequenceView(constSpan).at(1), ZTVariant(9));
}

TEST(SequenceView, KnowsTheClassOfObjects)
{
    sample::Heater heater;
    ZTVariant held(std::vector<sample::Heater*>{nullptr});
    const ZTSequenceView view(held);
    EXPECT_EQ(view.elementType().metaClass(), &sample::Heater::typeMetaClass());
    EXPECT_TRUE(view.set(0, static_cast<ZTBase*>(&heater))); // along the class tree
    EXPECT_EQ(view.at(0), ZTVariant(&heater));
    EXPECT_FALSE(view.add(5));
}

TEST(SequenceView, HoldsVariantsAsTheyAre)
{
    ZTVariant held(std::vector<ZTVariant>{});
    const ZTSequenceView view(held);
    EXPECT_TRUE(view.add(5) && view.add(ZTVariant("five")) && view.add(ZTVariant()));
    EXPECT_EQ(*ztVariantPointer<std::vector<ZTVariant>>(held),
              (std::vector{ZTVariant(5), ZTVariant("five"), ZTVariant()}));
}

TEST(SequenceView, OfAnotherKindIsEmpty)
{
    struct Own {
        int number = 0;
    };
    for (ZTVariant held :
         {ZTVariant(), ZTVariant(5), ZTVariant("text"), ZTVariant(Own()),
          ZTVariant(std::map<int, int>{{1, 2}}), ZTVariant(std::filesystem::path("a/b"))}) {
        const ZTSequenceView view(held);
        EXPECT_FALSE(view);
        EXPECT_FALSE(view.elementType());
        EXPECT_EQ(view.size(), 0U);
        EXPECT_EQ(view.begin(), view.end());
        EXPECT_FALSE(view.at(0).isValid() || view.add(1) || view.clear());
    }
    // A type that was a value before there were views stays one.
    EXPECT_FALSE(ZTSequenceView(ztMetaType<std::vector<Incomplete*>>()).elementType());
}

struct Points : std::vector<std::pair<int, int>> {};

TEST(SequenceView, ReachesWhatIsInside)
{
    ZTVariant held(std::map<std::string, Points>{{"line", {}}});
    const auto line = ZTAssociationView(held).at<ZTSequenceView>("line");
    EXPECT_TRUE(line.add(std::pair(1, 2)));
    EXPECT_TRUE(line.at<ZTRecordView>(0).set("second", 5));
    const auto& lines = *ztVariantPointer<std::map<std::string, Points>>(held);
    EXPECT_EQ(lines.at("line")[0], std::pair(1, 5));
    EXPECT_FALSE(line.at<ZTRecordView>(1));
    EXPECT_FALSE(ZTAssociationView(held).at<ZTSequenceView>("curve"));
}

template <class Container>
struct Association : testing::Test {};
using Associations =
    testing::Types<std::map<std::string, long>, std::unordered_map<std::string, long>,
                   std::multimap<std::string, long>>;
TYPED_TEST_SUITE(Association, Associations);

TYPED_TEST(Association, IsAskedAndChangedByKey)
{
    ZTVariant held(TypeParam{{"hall", 1}});
    const ZTAssociationView view(held);
    EXPECT_EQ(&view.keyType(), &ztMetaType<std::string>());
    EXPECT_EQ(&view.valueType(), &ztMetaType<long>());
    EXPECT_TRUE(view.set("porch", 2L) && view.set("hall", 3LL));
    EXPECT_FALSE(view.set(5, 2L) || view.set("attic", "text"));
    EXPECT_EQ(view.size(), 2U);
    EXPECT_EQ(view.at("hall"), ZTVariant(3L));
    EXPECT_FALSE(view.at("attic").isValid() || view.contains("attic") || view.contains(5));
    std::map<std::string, long> entries;
    for (const auto& [key, value] : view)
        entries[ztVariantValue<std::string>(key)] = ztVariantValue<long>(value);
    EXPECT_EQ(entries, (std::map<std::string, long>{{"hall", 3}, {"porch", 2}}));
    EXPECT_TRUE(view.erase("hall"));
    EXPECT_FALSE(view.erase("hall"));
    const ZTAssociationView reading(std::as_const(held));
    EXPECT_FALSE(reading.set("porch", 5L) || reading.erase("porch") || reading.clear());
    EXPECT_TRUE(view.clear());
    EXPECT_EQ(view.begin(), view.end());
}

TEST(OptionalView, GivesAndTakesTheValue)
{
    ZTVariant held(std::optional<std::string>{});
    const ZTOptionalView view(held);
    EXPECT_TRUE(view);
    EXPECT_EQ(&view.valueType(), &ztMetaType<std::string>());
    EXPECT_FALSE(view.hasValue() || view.value().isValid() || view.set(5));
    EXPECT_TRUE(view.set("text"));
    EXPECT_EQ(view.value(), ZTVariant("text"));
    EXPECT_FALSE(ZTOptionalView(std::as_const(held)).reset());
    EXPECT_TRUE(view.reset());
    EXPECT_EQ(*ztVariantPointer<std::optional<std::string>>(held), std::nullopt);
}

TEST(PairView, IsARecordOfTwoFields)
{
    ZTVariant held(std::pair<const int, std::string>(1, "one"));
    const ZTRecordView view(held);
    EXPECT_EQ(view.count(), 2U);
    EXPECT_EQ(view.name(0), "first");
    EXPECT_EQ(view.at("second"), ZTVariant("one"));
    EXPECT_TRUE(view.set("second", "two"));
    EXPECT_FALSE(view.canSet(0) || view.set("first", 2));
    EXPECT_EQ((*ztVariantPointer<std::pair<const int, std::string>>(held)),
              (std::pair<const int, std::string>(1, "two")));
}

enum class Small : signed char {};

TEST(Kind, TellsWhatATypeHolds)
{
    struct Plain {};
    const std::pair<const ZTMetaType*, ZTKind> kinds[] = {
        {&ZTMetaType::ZTBadMetaType, {}},
        {&ztMetaType<Plain>(), {}},
        {&ztMetaType<void*>(), {}},
        {&ztMetaType<void>(), {ZTKind::Void}},
        {&ztMetaType<bool>(), {ZTKind::Boolean}},
        {&ztMetaType<unsigned char>(), {ZTKind::Integer, false, 8}},
        {&ztMetaType<long>(), {ZTKind::Integer, true, 64}},
        {&ztMetaType<ZTULong>(), {ZTKind::Integer, false, 32}},
        {&ztMetaType<float>(), {ZTKind::Floating, true, 32}},
        {&ztMetaType<std::string>(), {ZTKind::Text}},
        {&ztMetaType<Small>(), {ZTKind::Enumeration, true, 8}},
        {&ztMetaType<const ZTBase*>(), {ZTKind::ObjectPointer}},
        {&ztMetaType<ZTRef<ZTBase>>(), {ZTKind::Reference}},
        {&ztMetaType<std::set<int>>(), {ZTKind::Sequence}},
        {&ztMetaType<std::map<int, int>>(), {ZTKind::Association}},
        {&ztMetaType<std::optional<int>>(), {ZTKind::Optional}},
        {&ztMetaType<std::pair<int, int>>(), {ZTKind::Record}},
    };
    for (const auto& [type, expected] : kinds) {
        const ZTKind kind = ztKind(*type);
        EXPECT_EQ(kind.value, expected.value) << type->name();
        EXPECT_EQ(kind.isSigned, expected.isSigned) << type->name();
        EXPECT_EQ(kind.bits, expected.bits) << type->name();
    }
}

TEST(Container, HasNoFormUntilOneIsAskedFor)
{
    const ZTVariant held(std::vector{1});
    const std::string failed = " failed for type " + held.type().name() + ".\n";
    ZTDataStream stream;
    std::ostringstream text;
    EXPECT_LOGS("Zintar: ZTVariant serialization" + failed, [&] { stream << held; });
    EXPECT_LOGS("Zintar: ZTVariant print" + failed, [&] { text << held; });
    EXPECT_FALSE(held.type().serialize(stream, held.data()));
}
} // namespace
