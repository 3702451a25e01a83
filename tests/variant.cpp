#include "support/counted.h"
#include "support/logs.h"

#include <zintar/typedvalue.h>

#include <cmath>
#include <memory>
#include <sstream>

namespace
{
static_assert(sizeof(ZTVariant) == 2 * sizeof(void*));
static_assert(!std::is_convertible_v<int, ZTVariant>);
static_assert(!std::is_convertible_v<ZTVariant, bool>);

using support::Counted;

void expectInvalid(const ZTVariant& variant)
{
    EXPECT_FALSE(variant.isValid());
    EXPECT_FALSE(variant);
    EXPECT_EQ(variant.data(), nullptr);
    EXPECT_EQ(&variant.type(), &ZTMetaType::ZTBadMetaType);
}

std::string printed(const ZTVariant& variant)
{
    std::ostringstream stream;
    stream << variant;
    return stream.str();
}

TEST(Variant, IsOfItsTypeEvenWithoutABlock)
{
    expectInvalid(ZTVariant());
    expectInvalid(ZTVariant(ZTVariant()));
    int source = 5;
    EXPECT_EQ(ZTVariant(ztMetaType<int>(), &source), ZTVariant(5));
    EXPECT_EQ(ZTVariant(ztMetaType<int>(), nullptr), ZTVariant(0));
    for (const char* name : {"void", "void*"}) {
        ZTVariant variant(ztMetaType(name), &source);
        EXPECT_TRUE(variant);
        EXPECT_EQ(variant.data(), nullptr);
        EXPECT_EQ(ZTVariant(variant).type().name(), name);
        variant.reset();
        expectInvalid(variant);
    }
}

/// No value of it can be made of a null source, which its functions have to bear.
struct Pin {
    explicit Pin(int n) : number(n) {}
    int number;
    bool operator==(const Pin&) const = default;
    friend std::ostream& operator<<(std::ostream& s, const Pin& p) { return s << p.number; }
};

TEST(Variant, WithoutABlockIsComparedPrintedAndCopied)
{
    const ZTVariant none(ztMetaType<Pin>(), nullptr);
    EXPECT_FALSE(none.data());
    EXPECT_NE(none, ZTVariant(Pin(5)));
    EXPECT_NE(ZTVariant(Pin(5)), none);
    EXPECT_EQ(ZTVariant(none).data(), nullptr);
    EXPECT_EQ(printed(none), "ZTVariant(" + none.type().name() + ", )");
    const ZTVariant six(Pin(6));
    ZTVariant pin(Pin(5));
    for (const ZTVariant* next : {&six, &none, &six}) {
        pin = *next;
        EXPECT_TRUE(next == &none ? !pin.data() : pin == six && pin.data() != six.data());
    }
    // A type that cannot copy but makes a default value is asked for one.
    std::unique_ptr<int> source;
    const ZTVariant uncopied(ztMetaType<std::unique_ptr<int>>(), &source);
    EXPECT_FALSE(uncopied.data());
    EXPECT_TRUE(ZTVariant(uncopied).data());
}

TEST(Variant, HoldsTextAsString)
{
    const char* null = nullptr;
    EXPECT_EQ(ZTVariant(std::string_view("abcd").substr(0, 3)), ZTVariant(std::string("abc")));
    EXPECT_EQ(ZTVariant(null), ZTVariant(std::string()));
    char buffer[8] = "abc";
    const char unended[3] = {'a', 'b', 'c'};
    EXPECT_EQ(ZTVariant(buffer), ZTVariant("abc"));
    EXPECT_EQ(ZTVariant(unended), ZTVariant("abc"));
}

struct CountedVariant : testing::Test {
    CountedVariant() { Counted::reset(); }
    ~CountedVariant() override { EXPECT_EQ(Counted::alive, 0); }
};

int number(const ZTVariant& variant) { return ztVariantPointer<Counted>(variant)->number; }

TEST_F(CountedVariant, CopyHasABlockOfItsOwnAndAMoveTakesItAlong)
{
    ZTVariant variant(Counted(3));
    EXPECT_EQ(Counted::copies, 0);
    void* block = variant.data();
    ZTVariant copy(variant);
    EXPECT_EQ(Counted::copies, 1);
    ztVariantPointer<Counted>(copy)->number = 4;
    EXPECT_EQ(number(variant), 3);

    ZTVariant moved(std::move(variant));
    copy = std::move(moved);
    expectInvalid(variant);
    expectInvalid(moved);
    EXPECT_EQ(copy.data(), block);
    EXPECT_EQ(Counted::copies, 1);
    EXPECT_EQ(Counted::alive, 1);

    ZTVariant& itself = copy;
    copy = itself;
    copy = std::move(itself);
    EXPECT_EQ(copy.data(), block);
    variant = copy;
    EXPECT_EQ(number(variant) + number(copy), 6);
    copy = ZTVariant();
    expectInvalid(copy);
    EXPECT_EQ(Counted::alive, 1);
}

TEST_F(CountedVariant, KeepsItsValueThroughItselfAndAThrowingCopy)
{
    ZTVariant inner(Counted(3));
    ZTVariant copied(ztMetaType<ZTVariant>(), &inner);
    ZTVariant moved(copied);
    copied = *ztVariantPointer<ZTVariant>(copied);
    moved = std::move(*ztVariantPointer<ZTVariant>(moved));
    EXPECT_EQ(number(copied) + number(moved), 6);
    moved = ZTVariant(Counted(4));
    Counted::throwAtCopy = 1;
    EXPECT_THROW(moved = copied, std::runtime_error);
    EXPECT_EQ(number(moved), 4);
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

TEST(Variant, ComparesWithinOneType)
{
    struct Opaque {};
    const ZTVariant nan(std::nan(""));
    EXPECT_EQ(holding(ZTVariant(), ZTVariant()), "== <= >= ");
    EXPECT_EQ(holding(ZTVariant(5), ZTVariant(short(5))), "!= ");
    EXPECT_EQ(holding(ZTVariant(5), ZTVariant(6)), "!= < <= ");
    EXPECT_EQ(holding(ZTVariant(6), ZTVariant(5)), "!= > >= ");
    EXPECT_EQ(holding(nan, ZTVariant(1.0)), "!= > >= ");
    EXPECT_EQ(holding(ZTVariant(1.0), nan), "!= > >= ");
    EXPECT_EQ(holding(ZTVariant(Opaque()), ZTVariant(Opaque())), "!= <= >= ");
}

TEST(Variant, ComparesWithAValueOfItsType)
{
    const ZTVariant five(5), text("five"), wide(5L);
    EXPECT_TRUE(five == 5 && 5 == five && five != 6 && !(five != 5));
    EXPECT_TRUE(text == "five" && text == std::string("five") && "five" == text);
    EXPECT_TRUE(text != static_cast<const char*>(nullptr) && ZTVariant("") == "");
    EXPECT_TRUE(wide == 5L && wide == 5LL);
    EXPECT_TRUE(five != 5.0 && five != 5L && five != "5" && five != nullptr && ZTVariant() != 5);
    EXPECT_TRUE(ZTVariant(ztMetaType<void>(), nullptr) != 0);
    EXPECT_TRUE(ZTVariant(std::nan("")) != std::nan(""));
    // What contains variants is none.
    EXPECT_EQ(std::vector<ZTVariant>{five}, std::vector<ZTVariant>{ZTVariant(5)});
}

TEST(Variant, ComparesFarBelow)
{
    ZTVariant one(1), two(2);
    for (int depth = 0; depth < 400; ++depth) {
        one = ZTVariant(ztMetaType<ZTVariant>(), &one);
        two = ZTVariant(ztMetaType<ZTVariant>(), &two);
    }
    EXPECT_TRUE(one < two);
    EXPECT_NE(one, two);
    EXPECT_TRUE(two > one);
    EXPECT_EQ(one, ZTVariant(one));
}

TEST(Variant, PrintsItsTypeAndValue)
{
    ZTVariant five(5);
    ZTLogCapture log;
    EXPECT_EQ(printed(ZTVariant()), "ZTVariant(ZTBadMetaType, )");
    EXPECT_EQ(printed(ZTVariant(ztMetaType<ZTVariant>(), &five)),
              "ZTVariant(struct ZTVariant, ZTVariant(int, 5))");
    EXPECT_EQ(log.text(), "");
    EXPECT_EQ(printed(ZTVariant(ztMetaType("void"), nullptr)), "ZTVariant(void, )");
    EXPECT_EQ(log.err(), "Zintar: ZTVariant print failed for type void.\n");
    EXPECT_EQ(log.out(), "");
}
} // namespace
