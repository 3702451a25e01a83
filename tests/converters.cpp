#include "support/classes.h"
#include "support/logs.h"

#include <zintar/metatypeof.h>

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
    Own source{5};
    Own target{1};
    const ZTMetaType& type = ztMetaType<Own>();
    EXPECT_TRUE(type.convert(&source, type, &target));
    EXPECT_EQ(target.degrees, 1);
    zt::detail::ztRegisterConverter(type, type, &toKelvin);
    EXPECT_TRUE(type.convert(&source, type, &target));
    EXPECT_EQ(target.degrees, 278);
}

std::string rule(const ZTMetaType& from, const ZTMetaType& to)
{
    bool null = false;
    bool notNull = true;
    bool applies = zt::detail::can_convert_meta_class(from, to, null);
    EXPECT_EQ(zt::detail::can_convert_meta_class(from, to, notNull), applies);
    EXPECT_EQ(null == notNull, applies); // written when the rule applies, and only then
    return !applies ? "does not apply" : null ? "yields null" : "hands on";
}

TEST(ClassTreeRule, FollowsTheStaticClassesUpAndDown)
{
    struct Animal {};
    struct Bird {};
    struct Fish {};
    struct Dream {};
    static const auto animalTable = support::emptyTable("Animal");
    static const ZTStaticMetaClass animalClass(&animalTable);
    static const auto birdTable = support::emptyTable("Bird", &animalClass);
    static const ZTStaticMetaClass birdClass(&birdTable);
    static const ZTStaticMetaClass fishClass(&birdTable);
    static const support::DynamicClass dreamClass(&birdTable);
    const ZTMetaType& animal = support::registerPointer<Animal>(animalClass);
    const ZTMetaType& constAnimal = support::registerPointer<const Animal>(animalClass);
    const ZTMetaType& bird = support::registerPointer<Bird>(birdClass);
    const ZTMetaType& fish = support::registerPointer<Fish>(fishClass);
    const ZTMetaType& dream = support::registerPointer<Dream>(dreamClass);

    const ZTMetaType &integer = ztMetaType<int>(), &bad = ZTMetaType::ZTBadMetaType;

    support::CapturedLog log;
    for (auto [from, to] : {std::pair(&bird, &animal), {&animal, &bird}, {&constAnimal, &animal}})
        EXPECT_EQ(rule(*from, *to), "hands on");
    for (auto [from, to] :
         {std::pair(&bird, &fish), {&dream, &animal}, {&animal, &dream}, {&dream, &dream}})
        EXPECT_EQ(rule(*from, *to), "yields null");
    for (auto [from, to] : {std::pair(&integer, &ztMetaType<double>()),
                            {&animal, &integer},
                            {&bad, &animal},
                            {&animal, &bad}})
        EXPECT_EQ(rule(*from, *to), "does not apply");
    EXPECT_EQ(log.all(), "");
    EXPECT_FALSE(bird.canConvert(animal)); // converters alone are asked here
}
} // namespace
