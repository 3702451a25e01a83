#include "support/counted.h"
#include "support/logs.h"

#include <zintar/metaclass.h>
#include <zintar/typedvalue.h>

#include <cmath>
#include <memory>
#include <sstream>

namespace
{
static_assert(sizeof(ZTVariant) == 2 * sizeof(void*));
static_assert(!std::is_convertible_v<int, ZTVariant>);
static_assert(!std::is_convertible_v<ZTVariant, bool>);
static_assert(std::is_nothrow_move_constructible_v<ZTVariant>);
static_assert(ZTMetaInvokable::MaxParamCount == 10);
static_assert(std::is_same_v<ZTArgumentArray, std::array<ZTVariant, 10>>);

using support::Counted;

void expectInvalid(const ZTVariant& variant)
{
    EXPECT_FALSE(variant);
    EXPECT_FALSE(variant.isValid());
    EXPECT_EQ(variant.data(), nullptr);
    EXPECT_EQ(&variant.type(), &ZTMetaType::ZTBadMetaType);
}

TEST(Variant, WithoutAValueIsInvalid)
{
    expectInvalid(ZTVariant());
    ZTVariant reset;
    reset.reset();
    expectInvalid(reset);
    expectInvalid(ZTVariant(reset));
    for (const ZTVariant& argument : ZTArgumentArray())
        expectInvalid(argument);
    expectInvalid(ZTVariant(ZTMetaType::ZTBadMetaType, nullptr));
}

TEST(Variant, IsOfItsTypeEvenWithoutABlock)
{
    int source = 5;
    EXPECT_EQ(ztVariantValue<int>(ZTVariant(ztMetaType<int>(), &source)), 5);
    EXPECT_EQ(ztVariantValue<int>(ZTVariant(ztMetaType<int>(), nullptr)), 0);
    for (const char* name : {"void", "void*"}) {
        ZTVariant variant(ztMetaType(name), &source);
        EXPECT_TRUE(variant);
        EXPECT_EQ(variant.data(), nullptr);
        EXPECT_EQ(variant.type().name(), name);
        EXPECT_TRUE(ZTVariant(variant));
    }
}

TEST(Variant, CopyOfOneWithoutABlockIsMadeByTheType)
{
    // The type cannot copy but makes a default value, which is what a null source asks it for.
    std::unique_ptr<int> source;
    ZTVariant variant(ztMetaType<std::unique_ptr<int>>(), &source);
    ASSERT_EQ(variant.data(), nullptr);
    ZTVariant copy(variant);
    EXPECT_NE(copy.data(), nullptr);
    ZTVariant assigned;
    assigned = variant;
    EXPECT_NE(assigned.data(), nullptr);
}

TEST(Variant, HoldsTextAsString)
{
    const char* null = nullptr;
    char array[] = "abc";
    for (const ZTVariant& variant :
         {ZTVariant("abc"), ZTVariant(array), ZTVariant(std::string_view("abcd").substr(0, 3)),
          ZTVariant(std::string("abc"))}) {
        EXPECT_EQ(&variant.type(), &ztMetaType<std::string>());
        EXPECT_EQ(ztVariantValue<std::string>(variant), "abc");
    }
    EXPECT_EQ(ztVariantValue<std::string>(ZTVariant(null)), "");
}

class CountedVariant : public testing::Test
{
protected:
    CountedVariant() { Counted::reset(); }
    ~CountedVariant() override { EXPECT_EQ(Counted::alive, 0); }

    static int number(const ZTVariant& variant)
    {
        return ztVariantPointer<Counted>(variant)->number;
    }
};

TEST_F(CountedVariant, CopyHasABlockOfItsOwn)
{
    ZTVariant variant(Counted(3));
    EXPECT_EQ(Counted::copies, 0);
    ZTVariant copy(variant);
    EXPECT_EQ(Counted::copies, 1);
    ztVariantPointer<Counted>(copy)->number = 4;
    EXPECT_EQ(number(variant), 3);
    EXPECT_EQ(Counted::alive, 2);
}

TEST_F(CountedVariant, MoveTakesTheBlockAlong)
{
    ZTVariant source(Counted(3));
    void* block = source.data();
    int moves = Counted::moves;
    ZTVariant moved(std::move(source));
    expectInvalid(source);
    ZTVariant assigned(Counted(4));
    assigned = std::move(moved);
    expectInvalid(moved);
    EXPECT_EQ(assigned.data(), block);
    EXPECT_EQ(Counted::copies, 0);
    EXPECT_EQ(Counted::moves - moves, 1); // the one into `assigned`'s first block
    EXPECT_EQ(Counted::alive, 1);
}

TEST_F(CountedVariant, AssignmentReplacesTheValue)
{
    ZTVariant variant(Counted(3));
    variant = ZTVariant(7);
    EXPECT_EQ(Counted::alive, 0);
    EXPECT_EQ(ztVariantValue<int>(variant), 7);
    const ZTVariant other(Counted(4));
    variant = other;
    EXPECT_EQ(number(variant), 4);
    EXPECT_EQ(number(other), 4);
    const ZTVariant invalid;
    variant = invalid;
    expectInvalid(variant);
    EXPECT_EQ(Counted::alive, 1);
}

TEST_F(CountedVariant, AssignmentToItselfDoesNothing)
{
    ZTVariant variant(Counted(3));
    void* block = variant.data();
    ZTVariant& itself = variant;
    variant = itself;
    EXPECT_EQ(variant.data(), block);
    variant = std::move(itself);
    EXPECT_EQ(variant.data(), block);
    EXPECT_EQ(number(variant), 3);
    EXPECT_EQ(Counted::copies, 0);
}

TEST_F(CountedVariant, TakesTheValueOutOfItself)
{
    ZTVariant inner(Counted(3));
    ZTVariant copied(ztMetaType<ZTVariant>(), &inner);
    ZTVariant moved(copied);
    copied = *ztVariantPointer<ZTVariant>(copied);
    EXPECT_EQ(number(copied), 3);
    moved = std::move(*ztVariantPointer<ZTVariant>(moved));
    EXPECT_EQ(number(moved), 3);
}

TEST_F(CountedVariant, KeepsItsValueWhenACopyThrows)
{
    const ZTVariant source(Counted(3));
    ZTVariant target(Counted(4));
    Counted::throwAtCopy = 1;
    EXPECT_THROW(target = source, std::runtime_error);
    EXPECT_EQ(number(target), 4);
    Counted::throwAtCopy = 1;
    EXPECT_THROW(ZTVariant{source}, std::runtime_error);
    EXPECT_EQ(Counted::alive, 2);
}

/// The operators that hold, in the order == != < <= > >=.
std::string holding(const ZTVariant& a, const ZTVariant& b)
{
    std::string names;
    for (auto [holds, name] :
         {std::pair(a == b, "== "), std::pair(a != b, "!= "), std::pair(a < b, "< "),
          std::pair(a <= b, "<= "), std::pair(a > b, "> "), std::pair(a >= b, ">= ")})
        names += holds ? name : "";
    return names;
}

TEST(VariantComparison, FollowsTheTypes)
{
    struct Opaque {};
    const ZTVariant nan(std::nan(""));
    EXPECT_EQ(holding(ZTVariant(), ZTVariant()), "== <= >= ");
    EXPECT_EQ(holding(ZTVariant(5), ZTVariant()), "!= ");
    EXPECT_EQ(holding(ZTVariant(5), ZTVariant(short(5))), "!= ");
    EXPECT_EQ(holding(ZTVariant(5), ZTVariant(5)), "== <= >= ");
    EXPECT_EQ(holding(ZTVariant(5), ZTVariant(6)), "!= < <= ");
    EXPECT_EQ(holding(ZTVariant(6), ZTVariant(5)), "!= > >= ");
    EXPECT_EQ(holding(nan, ZTVariant(1.0)), "!= > >= ");
    EXPECT_EQ(holding(ZTVariant(1.0), nan), "!= > >= ");
    EXPECT_EQ(holding(ZTVariant(Opaque()), ZTVariant(Opaque())), "!= <= >= ");
    EXPECT_EQ(holding(ZTVariant("ab"), ZTVariant("abc")), "!= < <= ");
}

TEST(Variant, ConvertsToItsOwnTypeAlone)
{
    EXPECT_TRUE(ZTVariant(5).canConvert(ztMetaType<int>()));
    EXPECT_FALSE(ZTVariant(5).canConvert(ztMetaType<long long>()));
    EXPECT_FALSE(ZTVariant(5).canConvert(ZTMetaType::ZTBadMetaType));
    EXPECT_FALSE(ZTVariant().canConvert(ztMetaType<int>()));
    EXPECT_FALSE(ZTVariant().canConvert(ZTMetaType::ZTBadMetaType));
}

std::string printed(const ZTVariant& variant)
{
    std::ostringstream stream;
    stream << variant;
    return stream.str();
}

TEST(VariantPrinting, ShowsTypeAndValue)
{
    ZTVariant five(5);
    EXPECT_LOGS_NOTHING([&] {
        EXPECT_EQ(printed(five), "ZTVariant(int, 5)");
        EXPECT_EQ(printed(ZTVariant()), "ZTVariant(ZTBadMetaType, )");
        EXPECT_EQ(printed(ZTVariant(ztMetaType<ZTVariant>(), &five)),
                  "ZTVariant(struct ZTVariant, ZTVariant(int, 5))");
        EXPECT_EQ(printed(ZTVariant("abc")),
                  "ZTVariant(class std::basic_string<char,struct std::char_traits<char>,"
                  "class std::allocator<char> >, abc)");
    });
}

TEST(VariantPrinting, WarnsOfATypeThatCannot)
{
    support::CapturedLog log;
    EXPECT_EQ(printed(ZTVariant(ztMetaType("void"), nullptr)), "ZTVariant(void, )");
    EXPECT_EQ(log.err(), "Zintar: ZTVariant print failed for type void.\n");
    EXPECT_EQ(log.out(), "");
}
} // namespace
