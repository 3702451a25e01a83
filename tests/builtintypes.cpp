#include "support/bytes.h"

#include <zintar/base.h>
#include <zintar/dynamicbase.h>
#include <zintar/typedvalue.h>

#include <gtest/gtest.h>

#include <limits>
#include <sstream>

namespace
{
using Names = std::unordered_set<std::string>;

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

/// A number compares by its sign.
template <class T>
void expectOrdered()
{
    using Limits = std::numeric_limits<T>;
    EXPECT_EQ(compare(Limits::lowest(), Limits::max()), ZTPartialOrdering::Less);
    EXPECT_EQ(compare(Limits::max(), Limits::lowest()), ZTPartialOrdering::Greater);
    EXPECT_EQ(compare(Limits::lowest(), T(0)),
              Limits::is_signed ? ZTPartialOrdering::Less : ZTPartialOrdering::Equivalent);
    if constexpr (Limits::has_quiet_NaN) {
        EXPECT_EQ(compare(T(1), Limits::quiet_NaN()), ZTPartialOrdering::Greater);
        EXPECT_EQ(compare(Limits::quiet_NaN(), T(1)), ZTPartialOrdering::Greater);
        EXPECT_EQ(compare(T(0.0), T(-0.0)), ZTPartialOrdering::Equivalent);
    }
}

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
        EXPECT_EQ(&ztMetaType(alias), &type);
    EXPECT_EQ(type.metaClass(), nullptr);

    ZTDataStream stream;
    EXPECT_EQ(type.serialize(stream, &row.value), !row.bytes.empty());
    EXPECT_EQ(support::bytesOf(stream), row.bytes);
    T read{};
    EXPECT_EQ(type.deserialize(stream, &read), row.readable);
    EXPECT_EQ(compare(read, row.value) == ZTPartialOrdering::Equivalent, row.readable);
    std::ostringstream text;
    EXPECT_TRUE(type.print(text, &row.value));
    EXPECT_EQ(text.str(), row.text);

    if constexpr (std::is_arithmetic_v<T>)
        expectOrdered<T>();
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

TEST(BuiltInTypes, VoidHasANameOnlyAndNullNothingToWrite)
{
    ZTDataStream stream;
    std::ostringstream text;
    std::nullptr_t null = nullptr;
    for (const char* name : {"void", "void*"}) {
        const ZTMetaType* type = &ztMetaType(name);
        EXPECT_TRUE(*type && type->aliases().empty());
        EXPECT_TRUE(!type->create(&null) && !type->create(nullptr));
        EXPECT_FALSE(type->serialize(stream, &null) || type->deserialize(stream, &null));
        EXPECT_FALSE(type->print(text, &null));
        EXPECT_EQ(type->compare(&null, &null), ZTPartialOrdering::Unordered);
    }
    EXPECT_EQ(ztMetaType<void>().name() + ztMetaType<void*>().name(), "voidvoid*");
    const ZTMetaType& nullType = ztMetaType<std::nullptr_t>();
    EXPECT_EQ(&ztMetaType("std::nullptr_t"), &nullType);
    EXPECT_TRUE(nullType.serialize(stream, &null) && nullType.print(text, &null));
    EXPECT_FALSE(nullType.deserialize(stream, &null));
    EXPECT_EQ(nullType.name() + stream.data() + text.str(), "nullptrnullptr");
    EXPECT_EQ(compare(null, null), ZTPartialOrdering::Equivalent);
    EXPECT_FALSE(ztMetaType("signed char") || ztMetaType("long double")); // no such rows
}

TEST(BuiltInTypes, AnEightByteLongIsALongLong)
{
    if (sizeof(long) != 8)
        return; // long is the 4-byte type here
    EXPECT_EQ(&ztMetaType<long>(), &ztMetaType("__int64"));
    EXPECT_EQ(&ztMetaType<std::size_t>(), &ztMetaType("unsigned __int64"));
    const ZTVariant variant(std::int64_t(-5));
    EXPECT_EQ(&variant.type(), &ztMetaType<long long>());
    EXPECT_EQ(ztVariantValue<long>(variant) + ztVariantValue<long long>(variant), -10);
    EXPECT_EQ(ztVariantValue<unsigned long>(ZTVariant(std::size_t(7))), 7U);
    EXPECT_EQ(ztVariantValue<ZTLong>(ZTVariant(ZTLong(-7))), -7);
}

TEST(BuiltInTypes, CompareStringsByTheirBytesAndVariantsByTheirValues)
{
    using namespace std::string_literals;
    EXPECT_EQ(compare("abc"s, "ab"s), ZTPartialOrdering::Greater);
    EXPECT_EQ(compare("a"s, "\xFF"s), ZTPartialOrdering::Less);
    EXPECT_EQ(compare("a\0b"s, "a\0c"s), ZTPartialOrdering::Less);
    EXPECT_EQ(compare(ZTVariant(1), ZTVariant(2)), ZTPartialOrdering::Less);
    EXPECT_EQ(compare(ZTVariant(), ZTVariant()), ZTPartialOrdering::Equivalent);
    EXPECT_EQ(compare(ZTVariant(1), ZTVariant("1")), ZTPartialOrdering::Greater);
    EXPECT_EQ(compare(ZTVariant("1"), ZTVariant(1)), ZTPartialOrdering::Greater);
    const ZTMetaType& type = ztMetaType<ZTVariant>();
    EXPECT_EQ(type.name(), "struct ZTVariant");
    EXPECT_EQ(&ztMetaType("ZTVariant"), &type);
    ZTVariant inner("abc");
    EXPECT_EQ(*ztVariantPointer<ZTVariant>(ZTVariant(type, &inner)), inner);
    EXPECT_FALSE(*ztVariantPointer<ZTVariant>(ZTVariant(type, nullptr)));
}

TEST(BuiltInTypes, PrintPointersToObjectsAlone)
{
    const ZTBase* pointer = nullptr;
    const ZTMetaClass* metaClass = nullptr;
    std::ostringstream text;
    EXPECT_TRUE(ztMetaType<const ZTBase*>().print(text, &pointer));
    EXPECT_FALSE(ztMetaType<const ZTMetaClass*>().print(text, &metaClass));
    EXPECT_EQ(text.str(), "0");
}
} // namespace
