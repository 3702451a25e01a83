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
bool toZeroKelvin(const void*, void* target)
{
    *static_cast<Kelvin*>(target) = Kelvin();
    return true;
}

class Converters : public testing::Test
{
protected:
    void SetUp() override { zt::detail::ztRegisterConverter(celsius, kelvin, &toKelvin); }

    const ZTMetaType& celsius = ztMetaType<Celsius>();
    const ZTMetaType& kelvin = ztMetaType<Kelvin>();
    const ZTMetaType& bad = ZTMetaType::ZTBadMetaType;
    Celsius source{7};
    Kelvin target{1};
};

TEST_F(Converters, ServeOneDirectionOfOnePair)
{
    EXPECT_TRUE(celsius.canConvert(kelvin));
    EXPECT_TRUE(celsius.convert(&source, kelvin, &target));
    EXPECT_EQ(target.degrees, 280);
    EXPECT_FALSE(kelvin.canConvert(celsius));
    EXPECT_FALSE(kelvin.convert(&target, celsius, &source));
    EXPECT_EQ(source.degrees, 7);
}

TEST_F(Converters, MayRefuseAValue)
{
    source.degrees = -300;
    EXPECT_LOGS_NOTHING([&] { EXPECT_FALSE(celsius.convert(&source, kelvin, &target)); });
    EXPECT_TRUE(celsius.canConvert(kelvin));
}

TEST_F(Converters, TheLastOneOfAPairStands)
{
    zt::detail::ztRegisterConverter(celsius, kelvin, &toZeroKelvin);
    EXPECT_TRUE(celsius.convert(&source, kelvin, &target));
    EXPECT_EQ(target.degrees, 0);
}

TEST_F(Converters, DoNotChain)
{
    struct Rankine {};
    zt::detail::ztRegisterConverter(kelvin, ztMetaType<Rankine>(), &toZeroKelvin);
    EXPECT_TRUE(kelvin.canConvert(ztMetaType<Rankine>()));
    EXPECT_FALSE(celsius.canConvert(ztMetaType<Rankine>()));
}

TEST_F(Converters, NeverHaveTheBadTypeAsTarget)
{
    for (const ZTMetaType* from : {&celsius, &bad}) {
        EXPECT_FALSE(from->canConvert(bad));
        EXPECT_FALSE(from->convert(&source, bad, &target));
    }
    EXPECT_FALSE(bad.canConvert(celsius));
    EXPECT_FALSE(bad.convert(&source, kelvin, &target));
    EXPECT_EQ(target.degrees, 1);
}

TEST_F(Converters, NoneIsBuiltIn)
{
    const ZTMetaType* types[] = {&ztMetaType<int>(), &ztMetaType<double>(),
                                 &ztMetaType<std::string>(), &ztMetaType<bool>()};
    for (const ZTMetaType* from : types)
        for (const ZTMetaType* to : types)
            EXPECT_EQ(from->canConvert(*to), from == to) << from->name() << " " << to->name();
}

TEST(ConversionToItself, SucceedsAndTouchesTheTargetOnlyByAConverter)
{
    struct Own {
        int number = 0;
    };
    Own source{5};
    Own target{1};
    const ZTMetaType& type = ztMetaType<Own>();
    EXPECT_TRUE(type.convert(&source, type, &target));
    EXPECT_EQ(target.number, 1);
    zt::detail::ztRegisterConverter(type, type, [](const void* from, void* to) {
        *static_cast<Own*>(to) = *static_cast<const Own*>(from);
        return true;
    });
    EXPECT_TRUE(type.convert(&source, type, &target));
    EXPECT_EQ(target.number, 5);
}

enum class Rule { DoesNotApply, HandsOn, YieldsNull };

Rule rule(const ZTMetaType& from, const ZTMetaType& to)
{
    bool null = false;
    bool notNull = true;
    bool applies = zt::detail::can_convert_meta_class(from, to, null);
    EXPECT_EQ(zt::detail::can_convert_meta_class(from, to, notNull), applies);
    EXPECT_EQ(null == notNull, applies); // written when the rule applies, and only then
    return !applies ? Rule::DoesNotApply : null ? Rule::YieldsNull : Rule::HandsOn;
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
    static const auto fishTable = support::emptyTable("Fish", &animalClass);
    static const ZTStaticMetaClass fishClass(&fishTable);
    static const auto dreamTable = support::emptyTable("Dream", &animalClass);
    static const support::DynamicClass dreamClass(&dreamTable);
    const ZTMetaType& animal = support::registerPointer<Animal>(animalClass);
    const ZTMetaType& constAnimal = support::registerPointer<const Animal>(animalClass);
    const ZTMetaType& bird = support::registerPointer<Bird>(birdClass);
    const ZTMetaType& fish = support::registerPointer<Fish>(fishClass);
    const ZTMetaType& dream = support::registerPointer<Dream>(dreamClass);

    EXPECT_LOGS_NOTHING([&] {
        EXPECT_EQ(rule(bird, animal), Rule::HandsOn);
        EXPECT_EQ(rule(animal, bird), Rule::HandsOn);
        EXPECT_EQ(rule(constAnimal, animal), Rule::HandsOn);
        EXPECT_EQ(rule(bird, fish), Rule::YieldsNull);
        EXPECT_EQ(rule(dream, animal), Rule::YieldsNull);
        EXPECT_EQ(rule(animal, dream), Rule::YieldsNull);
        EXPECT_EQ(rule(dream, dream), Rule::YieldsNull);
        EXPECT_EQ(rule(ztMetaType<int>(), ztMetaType<double>()), Rule::DoesNotApply);
        EXPECT_EQ(rule(animal, ztMetaType<int>()), Rule::DoesNotApply);
        EXPECT_EQ(rule(ZTMetaType::ZTBadMetaType, animal), Rule::DoesNotApply);
        EXPECT_EQ(rule(animal, ZTMetaType::ZTBadMetaType), Rule::DoesNotApply);
    });
    EXPECT_FALSE(bird.canConvert(animal)); // converters alone are asked here
}
} // namespace
