#include <zintar/enumeration.h>

#include "support/logs.h"

#include <zintar/containers.h>
#include <zintar/converter.h>
#include <zintar/declare.h>
#include <zintar/kind.h>
#include <zintar/metaclassbuilder.h>

#include <memory>
#include <sstream>
#include <vector>

namespace house
{
enum class Mode { Off, Heat, Cool };
ZT_ENUM(Mode, Off, Heat, zt::enumerator("Cold", Cool))

enum class Access : unsigned { Read = 1, Write = 2, Run = 4, Edit = 3, High = 0x80000000 };
ZT_FLAGS(Access, Read, Write, Run, Edit, High)

// No class lists these.
enum class Season { Spring, Summer, Autumn };
ZT_ENUM(Season, Spring, Summer, zt::enumerator("Fall", Autumn))
enum class Days { Work = 1, Rest = 2 };
ZT_FLAGS(Days, Work, Rest)

enum class Rank { Low = 1, High = 2 };
enum class Unlisted { Some };

class Thermostat : public ZTBase
{
    ZT_OBJECT(Thermostat, ZTBase)
public:
    Mode cycle(Access given) { return given == Access::Read ? Mode::Heat : Mode::Off; }
    Mode mode = Mode::Off;
    Access access = Access::Read;
    Rank rank = Rank::Low;
    Unlisted unlisted = Unlisted::Some;

private:
    static constexpr auto members()
    {
        return zt::members(zt::enumeration<Mode>(), zt::enumeration<Access>(),
                           zt::enumeration<Rank>(zt::enumerators<Rank::Low, Rank::High>)
                               .as("Importance")
                               .info("category", "order")
                               .as(Rank::High, "Top")
                               .info(Rank::High, "label", "At the top")
                               .info(Rank::High, "colour", "red"),
                           zt::property<&Self::mode>(), zt::property<&Self::access>(),
                           zt::property<&Self::rank>(), zt::property<&Self::unlisted>(),
                           zt::method<&Self::cycle>());
    }
};
ZT_CLASS(Thermostat)

/// Lists the enumeration again, by another name.
class Cooler : public ZTBase
{
    ZT_OBJECT(Cooler, ZTBase)
    static constexpr auto members() { return zt::members(zt::enumeration<Mode>().as("State")); }
};
ZT_CLASS(Cooler)

enum class Early { One = 1 };
bool registerFirst()
{
    ztRegisterConverter([](Early) { return std::string("of the host"); });
    return true;
}
const bool isRegistered = registerFirst();

class Keeper : public ZTBase
{
    ZT_OBJECT(Keeper, ZTBase)
    static constexpr auto members()
    {
        return zt::members(zt::enumeration<Early>(zt::enumerators<Early::One>));
    }
};
ZT_CLASS(Keeper)
} // namespace house

namespace
{
using namespace house;

const ZTMetaEnum& enumerationOf(const ZTMetaType& type)
{
    static const Thermostat nobody;
    return ztEnumeration(type) ? *ztEnumeration(type) : *nobody.metaClass()->metaEnum(0U);
}

TEST(Enumeration, IsFoundByTheTypeOfAnyMember)
{
    const ZTMetaClass& type = Thermostat::typeMetaClass();
    const ZTMetaEnum* mode = ztEnumeration(type.property("mode")->metaType());
    ASSERT_TRUE(mode);
    EXPECT_EQ(mode, type.metaEnum(0U));
    EXPECT_EQ(mode->metaType(), ztMetaType<Mode>());
    const ZTMetaInvokable* cycle = type.invokable<void(Access)>("cycle");
    EXPECT_EQ(ztEnumeration(cycle->returnMetaType()), mode);
    EXPECT_EQ(ztEnumeration(cycle->parameterMetaType(0)), type.metaEnum(1U));
    EXPECT_EQ(ztEnumeration(ztMetaType<Unlisted>()), nullptr);
    EXPECT_EQ(ztEnumeration(ztMetaType<int>()), nullptr);
    EXPECT_EQ(ztEnumeration(ZTMetaType::ZTBadMetaType), nullptr);
}

TEST(Enumeration, IsListedByAnyNumberOfClasses)
{
    const ZTMetaEnum* again = Cooler::typeMetaClass().metaEnum(0U);
    EXPECT_EQ(again->name(), "State");
    EXPECT_EQ(again->metaType(), ztMetaType<Mode>());
    EXPECT_EQ(again->nameOf(2), "Cold");
    EXPECT_NE(again, ztEnumeration(ztMetaType<Mode>())) << "the first one keeps the type";
}

TEST(Enumeration, IsKnownToItsTypeAlsoWhenNoClassListsIt)
{
    const ZTMetaEnum* season = ztEnumeration(ztMetaType<Season>());
    ASSERT_TRUE(season);
    EXPECT_EQ(season->name(), "Season");
    EXPECT_EQ(season->metaType(), ztMetaType<Season>());
    EXPECT_EQ(season->valueOf("Fall"), 2);
    EXPECT_EQ(ztVariantValue<Season>(ZTVariant("Summer")), Season::Summer);
    EXPECT_EQ(ztVariantValue<std::string>(ZTVariant(Season::Autumn)), "Fall");
    EXPECT_EQ(ztKind(ztMetaType<Days>()), ZTKind::Flags);
    EXPECT_EQ(ztVariantValue<std::string>(ZTVariant(Days(3))), "Work|Rest");
}

TEST(Enumeration, TellsValuesAndNames)
{
    const ZTMetaEnum& mode = enumerationOf(ztMetaType<Mode>());
    EXPECT_FALSE(mode.isFlags());
    EXPECT_EQ(mode.valueOf("Heat"), 1);
    EXPECT_EQ(mode.valueOf("Cold"), 2);
    EXPECT_EQ(mode.nameOf(0), "Off");
    for (const char* none : {"Cool", "heat", " Heat", "", "Off|Heat"})
        EXPECT_EQ(mode.valueOf(none), std::nullopt) << none;
    EXPECT_EQ(mode.nameOf(-1), std::nullopt);
    EXPECT_EQ(mode.nameOf(3), std::nullopt);
}

TEST(Enumeration, IsANumberWithinAContainerAlsoAsFlags)
{
    const ZTVariant held(std::vector<Access>{Access::Read, Access::Run});
    std::ostringstream out;
    ASSERT_TRUE(held.type().print(out, held.data()));
    EXPECT_EQ(out.str(), "[1, 4]");
}

TEST(Enumeration, TellsFlagsTogether)
{
    const ZTMetaEnum& access = enumerationOf(ztMetaType<Access>());
    EXPECT_TRUE(access.isFlags());
    EXPECT_EQ(ztKind(ztMetaType<Access>()), ZTKind::Flags);
    EXPECT_EQ(ztKind(ztMetaType<Mode>()), ZTKind::Enumeration);
    EXPECT_EQ(access.valueOf("Read|Run"), 5);
    EXPECT_EQ(access.valueOf(" Run | Edit "), 7);
    EXPECT_EQ(access.valueOf(""), 0);
    EXPECT_EQ(access.valueOf(" "), 0);
    for (const char* none : {"Read|", "|", "Read|Fly", "Read Write"})
        EXPECT_EQ(access.valueOf(none), std::nullopt) << none;
    EXPECT_EQ(access.nameOf(3), "Edit") << "one that is all of it comes first";
    EXPECT_EQ(access.nameOf(5), "Read|Run");
    EXPECT_EQ(access.nameOf(7), "Read|Write|Run");
    EXPECT_EQ(access.nameOf(0), "");
    EXPECT_EQ(access.nameOf(8), std::nullopt);
    EXPECT_EQ(access.nameOf(9), std::nullopt);
    EXPECT_EQ(access.nameOf(static_cast<int>(0x80000001)), "Read|High");
}

TEST(Enumeration, ConvertsToAndFromNamesAndNumbers)
{
    Thermostat hall;
    EXPECT_LOGS_NOTHING([&] {
        hall.setProperty("mode", "Heat");
        EXPECT_EQ(hall.mode, Mode::Heat);
        EXPECT_EQ(hall.property<std::string>("mode"), "Heat");
        hall.setProperty("mode", 2);
        EXPECT_EQ(hall.property<int>("mode"), 2);
        hall.setProperty("access", "Write|High");
        EXPECT_EQ(hall.access, static_cast<Access>(0x80000002));
        EXPECT_EQ(hall.property<std::string>("access"), "Write|High");
        hall.setProperty("access", 0);
        EXPECT_EQ(hall.property<std::string>("access"), "");
    });
    const ZTMetaInvokable* cycle = hall.metaClass()->invokable<void(Access)>("cycle");
    EXPECT_EQ(ztVariantValue<std::string>(cycle->invoke(&hall, "Read")), "Heat");

    // What names nothing leaves the property alone.
    for (const ZTVariant& wrong : {ZTVariant("Warm"), ZTVariant(3), ZTVariant(""), ZTVariant(-1)}) {
        EXPECT_NE(support::logOf([&] { hall.setProperty("mode", wrong); }), "");
        EXPECT_EQ(hall.mode, Mode::Cool);
    }
    EXPECT_NE(support::logOf([&] { hall.setProperty("access", 8); }), "");
    hall.mode = static_cast<Mode>(7);
    EXPECT_NE(support::logOf([&] { EXPECT_EQ(hall.property<std::string>("mode"), ""); }), "");
    EXPECT_EQ(hall.property<int>("mode"), 7);
}

TEST(Enumeration, LeavesTheConvertersOfTheHost)
{
    EXPECT_EQ(ztVariantValue<std::string>(ZTVariant(Early::One)), "of the host");
    EXPECT_EQ(ztVariantValue<Early>(ZTVariant("One")), Early::One);
}

TEST(Enumeration, BearsNamesAndAnnotationsOfItsEnumerators)
{
    const ZTMetaEnum& rank = *Thermostat::typeMetaClass().metaEnum(2U);
    EXPECT_EQ(rank.name(), "Importance");
    EXPECT_EQ(rank.enumerator(1), "Top");
    EXPECT_EQ(rank.valueOf("Top"), 2);
    EXPECT_EQ(rank.valueOf("High"), std::nullopt);
    ASSERT_EQ(rank.infoCount(), 1U);
    EXPECT_EQ(rank.infoKey(0), "category");
    EXPECT_EQ(rank.infoValue(0), "order");
    EXPECT_EQ(rank.infoValue(1), "");
    EXPECT_EQ(rank.enumeratorInfoCount(0), 0U);
    ASSERT_EQ(rank.enumeratorInfoCount(1), 2U);
    EXPECT_EQ(rank.enumeratorInfoKey(1, 1), "colour");
    EXPECT_EQ(rank.enumeratorInfoValue(1, 0), "At the top");
    EXPECT_EQ(rank.enumeratorInfoValue(7, 0), "");
    const ZTMetaEnum cutDown(rank);
    EXPECT_FALSE(cutDown.metaType() || cutDown.isFlags() || cutDown.infoCount() ||
                 cutDown.valueOf("Top"));
}

TEST(Enumeration, IsCopiedAndMadeAtRunTime)
{
    ZTMetaClassBuilder builder(&Thermostat::typeMetaClass());
    auto rank = builder.metaEnum("Importance");
    rank.remove(0);
    rank.addEnumeratorInfo(9, "lost", "");
    auto made = builder.addEnum();
    made.setName("Rights");
    made.add("Look", 1);
    made.add("Touch", 2);
    made.setIsFlags(true);
    made.addInfo("since", "2");
    made.addEnumeratorInfo(1, "label", "Touch it");
    const std::unique_ptr<ZTMetaClass> type(builder.toMetaClass());
    const ZTMetaEnum& copied = *type->metaEnum(2U);
    EXPECT_EQ(copied.metaType(), ztMetaType<Rank>());
    EXPECT_EQ(copied.enumeratorInfoCount(0), 2U) << "annotations move with their enumerator";
    EXPECT_EQ(copied.enumeratorInfoValue(0, 0), "At the top");
    const ZTMetaEnum& rights = *type->metaEnum(3U);
    EXPECT_FALSE(rights.metaType());
    EXPECT_EQ(rights.valueOf("Look|Touch"), 3);
    EXPECT_EQ(rights.nameOf(3), "Look|Touch");
    EXPECT_EQ(rights.infoValue(0), "2");
    EXPECT_EQ(rights.enumeratorInfoValue(1, 0), "Touch it");
    made.clearInfos();
    EXPECT_EQ(rights.infoCount(), 1U) << "a finished class is apart from its builder";
}
} // namespace
