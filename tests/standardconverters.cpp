#include "support/logs.h"

#include <zintar/base.h>
#include <zintar/converter.h>
#include <zintar/reference.h>
#include <zintar/standardconverters.h>

#include <cmath>
#include <limits>
#include <string>

namespace
{
struct StandardConverters : testing::Test {
    StandardConverters() { ztRegisterStandardConverters(); }
};

/// The value as a `T`, or nothing where it is refused.
template <class T, class From>
std::optional<T> as(const From& from)
{
    const ZTVariant variant(from);
    T value{};
    if (!variant.type().convert(variant.data(), ztMetaType<zt::detail::Canonical<T>>(), &value))
        return std::nullopt;
    return value;
}

template <class T>
using Limits = std::numeric_limits<T>;

// The first of all: there must not have been a call of the registration before.
TEST(StandardConvertersBefore, AreNotThere)
{
    EXPECT_EQ(as<double>(5), std::nullopt);
    EXPECT_EQ(as<std::string>(5), std::nullopt);
    EXPECT_FALSE(ZTVariant(nullptr).canConvert(ztMetaType<ZTBase*>()));
    ztRegisterConverter([](int number) { return "number " + std::to_string(number); });
    ztRegisterStandardConverters();
    EXPECT_EQ(as<std::string>(5), "number 5"); // the host's stays
    EXPECT_EQ(as<double>(5), 5.0);
}

TEST_F(StandardConverters, KeepANumberOrRefuseIt)
{
    EXPECT_EQ(as<unsigned char>(255), static_cast<unsigned char>(255));
    EXPECT_EQ(as<unsigned char>(256), std::nullopt);
    EXPECT_EQ(as<signed char>(-129), std::nullopt);
    EXPECT_EQ(as<unsigned int>(-1), std::nullopt);
    EXPECT_EQ(as<unsigned long>(-1), std::nullopt);
    EXPECT_EQ(as<int>(0xffffffffU), std::nullopt);
    EXPECT_EQ(as<long>(Limits<unsigned long long>::max()), std::nullopt);
    EXPECT_EQ(as<long long>(Limits<int>::min()), Limits<int>::min());
    EXPECT_EQ(as<int>(ZTLong(-7)), -7);
    EXPECT_EQ(as<ZTULong>(0xffffffffLL), 0xffffffffU);
    EXPECT_EQ(as<ZTULong>(0x100000000LL), std::nullopt);
    EXPECT_EQ(as<int>('a'), 97);
    EXPECT_EQ(as<bool>(1), true);
    EXPECT_EQ(as<bool>(2), std::nullopt);
    EXPECT_EQ(as<bool>(0.5), std::nullopt);
    EXPECT_EQ(as<double>(true), 1.0);
}

TEST_F(StandardConverters, KnowTheBordersOfFloatingPointNumbers)
{
    const double infinite = Limits<double>::infinity();
    EXPECT_EQ(as<int>(2.0), 2);
    EXPECT_EQ(as<int>(2.5), std::nullopt);
    EXPECT_EQ(as<int>(2147483648.0), std::nullopt);
    EXPECT_EQ(as<int>(-2147483648.0), Limits<int>::min());
    EXPECT_EQ(as<long long>(0x1p63), std::nullopt);
    EXPECT_EQ(as<long long>(-0x1p63), Limits<long long>::min());
    EXPECT_EQ(as<unsigned long long>(0x1p64), std::nullopt);
    EXPECT_EQ(as<unsigned int>(-0.5), std::nullopt);
    EXPECT_EQ(as<int>(infinite), std::nullopt);
    EXPECT_EQ(as<int>(std::nan("")), std::nullopt);
    EXPECT_EQ(as<float>(16777216), 0x1p24F);
    EXPECT_EQ(as<float>(16777217), std::nullopt);
    EXPECT_EQ(as<double>(Limits<long long>::max()), std::nullopt);
    EXPECT_EQ(as<double>(Limits<long long>::min()), -0x1p63);
    EXPECT_EQ(as<float>(0.5), 0.5F);
    EXPECT_EQ(as<float>(0.1), std::nullopt);
    EXPECT_EQ(as<float>(1e300), std::nullopt);
    EXPECT_EQ(as<float>(infinite), Limits<float>::infinity());
    EXPECT_TRUE(std::isnan(as<float>(std::nan("")).value()));
    EXPECT_EQ(as<double>(0.1F), double(0.1F));
}

TEST_F(StandardConverters, ReadTheWholeText)
{
    EXPECT_EQ(as<int>("-12"), -12);
    for (const char* text : {"", " 1", "1 ", "+1", "1x", "0x1", "1.0", "2147483648", "-2147483649"})
        EXPECT_EQ(as<int>(text), std::nullopt) << text;
    EXPECT_EQ(as<int>(std::string("1\0", 2)), std::nullopt);
    EXPECT_EQ(as<unsigned int>("-1"), std::nullopt);
    EXPECT_EQ(as<unsigned char>("200"), static_cast<unsigned char>(200));
    EXPECT_EQ(as<float>("0.1"), 0.1F);
    EXPECT_EQ(as<double>("1e400"), std::nullopt);
    EXPECT_EQ(as<ZTLong>("7"), 7);
    EXPECT_EQ(as<bool>("true"), true);
    EXPECT_EQ(as<bool>("True"), std::nullopt);
    EXPECT_EQ(as<bool>("1"), std::nullopt);
    EXPECT_EQ(as<char>("x"), 'x');
    EXPECT_EQ(as<char>("xy"), std::nullopt);
}

TEST_F(StandardConverters, WriteWhatReadsAsTheSame)
{
    EXPECT_EQ(as<std::string>(0.1), "0.1");
    EXPECT_EQ(as<std::string>(0.1F), "0.1");
    EXPECT_EQ(as<std::string>(false), "false");
    EXPECT_EQ(as<std::string>('x'), "x");
    EXPECT_EQ(as<std::string>(static_cast<unsigned char>(7)), "7");
    EXPECT_EQ(as<std::string>(Limits<unsigned long long>::max()), "18446744073709551615");
    for (double number : {Limits<double>::max(), Limits<double>::denorm_min(), 1.0 / 3, -0.0})
        EXPECT_EQ(as<double>(*as<std::string>(number)), number);
    const long double third = 1.0L / 3;
    EXPECT_EQ(as<long double>(*as<std::string>(third)), third);
}

TEST_F(StandardConverters, MakeANullPointerOneToAnyObject)
{
    struct Lamp : ZTBase {
    } lamp;
    const ZTVariant null(nullptr);
    EXPECT_LOGS_NOTHING([&] {
        EXPECT_EQ(ztVariantValue<Lamp*>(null), nullptr);
        EXPECT_EQ(ztVariantValue<const ZTBase*>(null), nullptr);
        EXPECT_EQ(ztVariantValue<ZTRef<Lamp>>(null), nullptr);
    });
    ZTRef<Lamp> reference(&lamp);
    EXPECT_TRUE(null.canConvert(ztMetaType<ZTRef<Lamp>>()));
    EXPECT_TRUE(null.type().convert(null.data(), ztMetaType<ZTRef<Lamp>>(), &reference));
    EXPECT_EQ(reference, nullptr);
    EXPECT_FALSE(null.canConvert(ztMetaType<int*>()));
    EXPECT_FALSE(null.canConvert(ztMetaType<int>()));
}
} // namespace
