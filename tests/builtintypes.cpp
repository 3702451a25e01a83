#include "support/bytes.h"
#include "support/logs.h"

#include <zintar/base.h>
#include <zintar/dynamicbase.h>
#include <zintar/typedvalue.h>

#include <cmath>
#include <limits>
#include <sstream>

namespace
{
using Names = std::unordered_set<std::string>;
using support::bytesOf;

const std::string stringName =
    "class std::basic_string<char,struct std::char_traits<char>,class std::allocator<char> >";

template <class T>
ZTPartialOrdering compare(const T& a, const T& b)
{
    return ztMetaType<T>().compare(&a, &b);
}

/// One row of the table of built-in types, with a value and what becomes of it.
template <class T>
struct Row {
    std::string name;
    Names aliases;
    T value;
    std::string bytes; ///< empty when the type is not written
    bool readable;
    std::string text;
};

/// Every promise that a row makes.
template <class T>
void expectRow(const Row<T>& row)
{
    SCOPED_TRACE(row.name);
    const ZTMetaType& type = ztMetaType<T>();
    EXPECT_EQ(type.name(), row.name);
    EXPECT_EQ(type.aliases(), row.aliases);
    EXPECT_EQ(&ztMetaType(row.name), &type);
    for (const std::string& alias : row.aliases)
        EXPECT_EQ(&ztMetaType(alias), &type) << alias;
    EXPECT_EQ(type.metaClass(), nullptr);

    ZTDataStream stream;
    EXPECT_EQ(type.serialize(stream, &row.value), !row.bytes.empty());
    EXPECT_EQ(bytesOf(stream), row.bytes);
    T read{};
    EXPECT_EQ(type.deserialize(stream, &read), row.readable);
    EXPECT_EQ(compare(read, row.value) == ZTPartialOrdering::Equivalent, row.readable);

    std::ostringstream text;
    EXPECT_TRUE(type.print(text, &row.value));
    EXPECT_EQ(text.str(), row.text);

    void* copy = type.create(&row.value);
    void* fresh = type.create(nullptr);
    EXPECT_EQ(type.compare(copy, &row.value), ZTPartialOrdering::Equivalent);
    EXPECT_EQ(*static_cast<T*>(fresh), T());
    type.destroy(copy);
    type.destroy(fresh);
}

TEST(BuiltInTypes, HaveTheirNamesFunctionsAndBytes)
{
    expectRow<char>({"char", {}, -1, "FF FF FF FF", false, "\xFF"});
    expectRow<unsigned char>({"unsigned char", {}, 'A', "41", true, "A"});
    expectRow<short>({"short", {}, -2, "FE FF", true, "-2"});
    expectRow<unsigned short>({"unsigned short", {}, 0x1234, "34 12", true, "4660"});
    expectRow<int>({"int", {}, -2, "FE FF FF FF", true, "-2"});
    expectRow<unsigned int>({"unsigned int", {}, 0xFFFFFFFE, "FE FF FF FF", true, "4294967294"});
    expectRow<ZTLong>({"long", {}, 1, "01 00 00 00", false, "1"});
    expectRow<ZTULong>({"unsigned long", {}, 0xFFFFFFFE, "", false, "4294967294"});
    expectRow<long long>({"__int64", {"long long"}, -2, "FE FF FF FF FF FF FF FF", true, "-2"});
    expectRow<unsigned long long>({"unsigned __int64",
                                   {"unsigned long long"},
                                   0x0102030405060708,
                                   "08 07 06 05 04 03 02 01",
                                   true,
                                   "72623859790382856"});
    expectRow<bool>({"bool", {}, true, "01", true, "1"});
    expectRow<float>({"float", {}, 0.5F, "00 00 00 3F", true, "0.5"});
    expectRow<double>({"double", {}, -0.5, "00 00 00 00 00 00 E0 BF", true, "-0.5"});
    expectRow<std::string>(
        {stringName, {"std::string"}, "abc", "03 00 00 00 00 00 00 00 61 62 63", true, "abc"});
}

TEST(BuiltInTypes, VoidAndUntypedPointerHaveANameOnly)
{
    int value = 5;
    ZTDataStream stream;
    std::ostringstream text;
    for (const ZTMetaType* type : {&ztMetaType<void>(), &ztMetaType<void*>()}) {
        EXPECT_EQ(type->aliases(), Names());
        EXPECT_EQ(type->create(&value), nullptr);
        EXPECT_EQ(type->create(nullptr), nullptr);
        EXPECT_FALSE(type->serialize(stream, &value));
        EXPECT_FALSE(type->deserialize(stream, &value));
        EXPECT_FALSE(type->print(text, &value));
        EXPECT_EQ(type->compare(&value, &value), ZTPartialOrdering::Unordered);
    }
    EXPECT_EQ(&ztMetaType("void"), &ztMetaType<void>());
    EXPECT_EQ(&ztMetaType("void*"), &ztMetaType<void*>());
    EXPECT_EQ(ztMetaType<void*>().name(), "void*");
}

TEST(BuiltInTypes, NullPointerHasNothingToWrite)
{
    const ZTMetaType& type = ztMetaType<std::nullptr_t>();
    std::nullptr_t null = nullptr;
    ZTDataStream stream;
    std::ostringstream text;
    EXPECT_EQ(type.name(), "nullptr");
    EXPECT_EQ(type.aliases(), Names{"std::nullptr_t"});
    EXPECT_TRUE(type.serialize(stream, &null));
    EXPECT_EQ(stream.data(), "");
    EXPECT_FALSE(type.deserialize(stream, &null));
    EXPECT_TRUE(type.print(text, &null));
    EXPECT_EQ(text.str(), "nullptr");
    EXPECT_EQ(compare(null, null), ZTPartialOrdering::Equivalent);
    void* block = type.create(nullptr);
    EXPECT_EQ(*static_cast<void**>(block), nullptr);
    type.destroy(block);
}

TEST(BuiltInTypes, OthersAreUnknownByName)
{
    for (const char* name : {"signed char", "long double", "unsigned", "string", "wchar_t"})
        EXPECT_FALSE(ztMetaType(name)) << name;
}

TEST(BuiltInTypes, AnEightByteLongIsALongLong)
{
    if (sizeof(long) != 8)
        GTEST_SKIP() << "long is the 4-byte type here";
    EXPECT_EQ(&ztMetaType<long>(), &ztMetaType("__int64"));
    EXPECT_EQ(&ztMetaType<std::size_t>(), &ztMetaType("unsigned __int64"));
    ZTVariant variant(std::int64_t(-5));
    EXPECT_EQ(&variant.type(), &ztMetaType<long long>());
    EXPECT_EQ(ztVariantValue<long>(variant), -5);
    EXPECT_EQ(ztVariantValue<long long>(variant), -5);
    EXPECT_EQ(*ztVariantPointer<long long>(variant), -5);
    EXPECT_EQ(ztVariantValue<unsigned long>(ZTVariant(std::size_t(7))), 7U);
}

TEST(BuiltInTypes, TheFourByteLongBehavesAsAnInteger)
{
    ZTLong number = -7;
    ZTULong positive = 7;
    int wide = number;
    EXPECT_EQ(wide, -7);
    EXPECT_EQ(number + 8, 1);
    EXPECT_LT(number, wide + 1);
    EXPECT_EQ(static_cast<unsigned int>(positive), 7U);
    EXPECT_EQ(ztVariantValue<ZTLong>(ZTVariant(number)), -7);
    EXPECT_EQ(ZTVariant(number).type().name(), "long");
    EXPECT_EQ(ZTVariant(positive).type().name(), "unsigned long");
}

template <class T>
class OrderedNumber : public testing::Test
{};
using Numbers = testing::Types<char, unsigned char, short, unsigned short, int, unsigned int,
                               ZTLong, ZTULong, long long, unsigned long long, bool, float, double>;
TYPED_TEST_SUITE(OrderedNumber, Numbers);

TYPED_TEST(OrderedNumber, ComparesByItsSign)
{
    using Limits = std::conditional_t<
        std::is_same_v<TypeParam, ZTLong>, std::numeric_limits<int>,
        std::conditional_t<std::is_same_v<TypeParam, ZTULong>, std::numeric_limits<unsigned int>,
                           std::numeric_limits<TypeParam>>>;
    TypeParam low = Limits::lowest();
    TypeParam high = Limits::max();
    EXPECT_EQ(compare(low, high), ZTPartialOrdering::Less);
    EXPECT_EQ(compare(high, low), ZTPartialOrdering::Greater);
    EXPECT_EQ(compare(low, low), ZTPartialOrdering::Equivalent);
    EXPECT_EQ(compare(low, TypeParam(0)) == ZTPartialOrdering::Less, Limits::is_signed);
}

template <class T>
class Floating : public testing::Test
{};
using FloatingTypes = testing::Types<float, double>;
TYPED_TEST_SUITE(Floating, FloatingTypes);

TYPED_TEST(Floating, NanIsGreaterOnBothSides)
{
    const TypeParam nan = std::numeric_limits<TypeParam>::quiet_NaN();
    const TypeParam one = 1;
    EXPECT_EQ(compare(one, nan), ZTPartialOrdering::Greater);
    EXPECT_EQ(compare(nan, one), ZTPartialOrdering::Greater);
    EXPECT_EQ(compare(nan, nan), ZTPartialOrdering::Greater);
    EXPECT_EQ(compare(TypeParam(0.0), TypeParam(-0.0)), ZTPartialOrdering::Equivalent);
}

TEST(BuiltInTypes, StringsCompareByUnsignedBytes)
{
    using namespace std::string_literals;
    EXPECT_EQ(compare("abc"s, "abd"s), ZTPartialOrdering::Less);
    EXPECT_EQ(compare("abc"s, "ab"s), ZTPartialOrdering::Greater);
    EXPECT_EQ(compare(""s, ""s), ZTPartialOrdering::Equivalent);
    EXPECT_EQ(compare("a"s, "\xFF"s), ZTPartialOrdering::Less);
    EXPECT_EQ(compare("a\0b"s, "a\0c"s), ZTPartialOrdering::Less);
}

TEST(BuiltInTypes, PrintTextWithTheWidthOfTheStream)
{
    std::ostringstream stream;
    char letter = 'x';
    std::string text = "ab";
    stream.width(3);
    ztMetaType<char>().print(stream, &letter);
    stream.width(4);
    ztMetaType<std::string>().print(stream, &text);
    EXPECT_EQ(stream.str(), "  x  ab");
}

TEST(VariantType, HoldsAVariantByValue)
{
    const ZTMetaType& type = ztMetaType<ZTVariant>();
    EXPECT_EQ(type.name(), "struct ZTVariant");
    EXPECT_EQ(&ztMetaType("ZTVariant"), &type);
    EXPECT_EQ(type.aliases(), Names{"ZTVariant"});
    EXPECT_EQ(type.metaClass(), nullptr);

    ZTVariant inner("abc");
    ZTVariant outer(type, &inner);
    EXPECT_EQ(*ztVariantPointer<ZTVariant>(outer), inner);
    EXPECT_NE(ztVariantPointer<ZTVariant>(outer)->data(), inner.data());
    EXPECT_FALSE(*ztVariantPointer<ZTVariant>(ZTVariant(type, nullptr)));
    EXPECT_EQ(compare(ZTVariant(1), ZTVariant(2)), ZTPartialOrdering::Less);
    EXPECT_EQ(compare(ZTVariant(), ZTVariant()), ZTPartialOrdering::Equivalent);
    EXPECT_EQ(compare(ZTVariant(1), ZTVariant("a")), ZTPartialOrdering::Greater);
    EXPECT_EQ(compare(ZTVariant("a"), ZTVariant(1)), ZTPartialOrdering::Greater);
}

TEST(PointerTypes, OfTheLibraryCarryTheirClass)
{
    for (const ZTMetaType* type : {&ztMetaType<ZTBase*>(), &ztMetaType<const ZTBase*>()})
        EXPECT_EQ(type->metaClass(), &ZTBase::typeMetaClass());
    for (const ZTMetaType* type :
         {&ztMetaType<ZTDynamicBase*>(), &ztMetaType<const ZTDynamicBase*>()})
        EXPECT_EQ(type->metaClass(), &ZTDynamicBase::typeMetaClass());
    for (const ZTMetaType* type : {&ztMetaType<ZTMetaClass*>(), &ztMetaType<const ZTMetaClass*>()})
        EXPECT_EQ(type->metaClass(), nullptr);
    EXPECT_EQ(&ztMetaType("struct ZTBase*"), &ztMetaType<ZTBase*>());

    ZTBase object;
    ZTBase* pointer = &object;
    ZTDataStream stream;
    std::ostringstream text;
    std::ostringstream address;
    address << static_cast<const void*>(pointer);
    EXPECT_TRUE(ztMetaType<ZTBase*>().serialize(stream, &pointer));
    EXPECT_FALSE(ztMetaType<ZTBase*>().deserialize(stream, &pointer));
    EXPECT_EQ(bytesOf(stream), "01");
    EXPECT_TRUE(ztMetaType<ZTBase*>().print(text, &pointer));
    EXPECT_EQ(text.str(), address.str());
    EXPECT_FALSE(ztMetaType<ZTMetaClass*>().print(text, &pointer));
}
} // namespace
