#include "support/logs.h"

#include <zintar/metatypeof.h>
#include <zintar/variant.h>

namespace
{
struct Celsius {
    double degrees = 0;
};
struct Kelvin {
    double degrees = 0;
};

bool toKelvin(const void* source, void* target)
{
    double celsius = static_cast<const Celsius*>(source)->degrees;
    static_cast<Kelvin*>(target)->degrees = celsius + 273;
    return celsius >= -273;
}
bool toZero(const void*, void* target)
{
    static_cast<Kelvin*>(target)->degrees = 0;
    return true;
}

class Converters : public testing::Test
{
protected:
    Converters() { zt::detail::ztRegisterConverter(celsius, kelvin, &toKelvin); }

    const ZTMetaType& celsius = ztMetaType<Celsius>();
    const ZTMetaType& kelvin = ztMetaType<Kelvin>();
    const ZTMetaType& bad = ZTMetaType::ZTBadMetaType;
    Celsius source{7};
    Kelvin target{1};
};

TEST_F(Converters, ServeOneDirectionOfOnePair)
{
    struct Rankine {};
    zt::detail::ztRegisterConverter(kelvin, ztMetaType<Rankine>(), &toZero);
    EXPECT_TRUE(celsius.canConvert(kelvin));
    EXPECT_TRUE(celsius.convert(&source, kelvin, &target));
    EXPECT_EQ(target.degrees, 280);
    EXPECT_FALSE(kelvin.canConvert(celsius));
    EXPECT_FALSE(kelvin.convert(&target, celsius, &source));
    EXPECT_EQ(source.degrees, 7);
    EXPECT_FALSE(celsius.canConvert(ztMetaType<Rankine>())); // not by way of a third type
    EXPECT_FALSE(ztMetaType<int>().canConvert(ztMetaType<double>()));
}

TEST_F(Converters, MayRefuseAValueAndBeReplaced)
{
    source.degrees = -300;
    EXPECT_LOGS_NOTHING([&] { EXPECT_FALSE(celsius.convert(&source, kelvin, &target)); });
    EXPECT_TRUE(celsius.canConvert(kelvin));
    zt::detail::ztRegisterConverter(celsius, kelvin, &toZero);
    EXPECT_TRUE(celsius.convert(&source, kelvin, &target));
    EXPECT_EQ(target.degrees, 0);
}

TEST_F(Converters, HaveNothingToDoWithTheBadType)
{
    for (auto [from, to] : {std::pair(&celsius, &bad), {&bad, &bad}, {&bad, &kelvin}})
        EXPECT_FALSE(from->canConvert(*to) || from->convert(&source, *to, &target));
    EXPECT_EQ(target.degrees, 1);
    EXPECT_TRUE(ZTVariant(source).canConvert(celsius) && ZTVariant(source).canConvert(kelvin));
    EXPECT_FALSE(ZTVariant(target).canConvert(celsius) || ZTVariant(source).canConvert(bad));
    EXPECT_FALSE(ZTVariant().canConvert(celsius) || ZTVariant().canConvert(bad));
}

TEST(ConversionToItself, TouchesTheTargetOnlyByAConverter)
{
    struct Own {
        double degrees = 0;
    };
    Own source{5}, target{1};
    const ZTMetaType& type = ztMetaType<Own>();
    EXPECT_TRUE(type.convert(&source, type, &target));
    EXPECT_EQ(target.degrees, 1);
    zt::detail::ztRegisterConverter(type, type, &toKelvin);
    EXPECT_TRUE(type.convert(&source, type, &target));
    EXPECT_EQ(target.degrees, 278);
}
} // namespace
