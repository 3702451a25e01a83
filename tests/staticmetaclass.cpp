#include "support/classes.h"
#include "support/describe.h"

#include <gtest/gtest.h>

#include <array>
#include <memory>

// Tables as somebody may lay them out by hand. What both families of descriptors promise is tried
// elsewhere.
namespace
{
using namespace zt::detail;

struct Lamp {
    int level = 3;
    void changed() {}
    int dim(int by) { return level -= by; }
};

Lamp* lampOf(const ZTVariant& object) { return *static_cast<Lamp**>(object.data()); }

ZTVariant getLevel(const ZTVariant& object) { return ZTVariant(lampOf(object)->level); }
ZTVariant setLevel(const ZTVariant& object, const ZTVariant& value)
{
    lampOf(object)->level = *static_cast<int*>(value.data());
    return ZTVariant(true);
}
ZTVariant callDim(const ZTVariant& object, const ZTArgumentArray& arguments)
{
    return ZTVariant(lampOf(object)->dim(*static_cast<int*>(arguments[0].data())));
}
int lampByFunction(const ZTMetaClass*, void* function)
{
    return *static_cast<int (Lamp::**)(int)>(function) == &Lamp::dim ? 1 : -7;
}
int lampBySignature(const ZTMetaClass*, std::string_view name, bool isConst,
                    const std::type_index& signature)
{
    return !isConst && name == "dim" && signature == typeid(void (*)(int)) ? 1 : -7;
}

/// The class of `Lamp`, and one derived from it that has one property and no callback.
struct LampTables {
    ZTStaticMetaClassInfoData category{"category", "light"};
    std::array<std::string_view, 2> modeNames{"Off", "On"};
    std::array<int, 2> modeValues{0, -5};
    ZTStaticMetaEnumData mode{"Mode", 2, modeNames.data(), modeValues.data()};
    ZTStaticMetaEnumData beam{"Beam", 2, nullptr, nullptr};
    std::array<ZTPropertyInfo, 1> levelInfos{ZTPropertyInfo("unit", "lumen")};
    ZTStaticMetaPropertyData level{"level", &getLevel, &setLevel, 1, levelInfos.data()};
    ZTStaticMetaPropertyData levelAgain{"level", nullptr, nullptr, 0, nullptr};
    std::array<const ZTMetaType*, 2> dimTypes{&ztMetaType<int>(), nullptr};
    ZTStaticMetaInvokableData changed{"changed", false, 0, nullptr, ZTAccessSpecifier::Protected};
    ZTStaticMetaInvokableData dim{"dim", false, 2, &callDim, ZTAccessSpecifier::Public};

    std::array<const ZTStaticMetaClassInfoData*, 1> infos{&category};
    std::array<const ZTStaticMetaEnumData*, 2> enums{&mode, &beam};
    std::array<const ZTStaticMetaPropertyData*, 2> properties{&level, &levelAgain};
    std::array<const ZTStaticMetaInvokableData*, 2> invokables{&changed, &dim};
    ZTStaticMetaClassData table{1,
                                infos.data(),
                                2,
                                enums.data(),
                                2,
                                properties.data(),
                                2,
                                invokables.data(),
                                &lampByFunction,
                                &lampBySignature};
    ZTStaticMetaClass lamp{&table};

    std::array<const ZTStaticMetaPropertyData*, 1> ownProperties{&level};
    ZTStaticMetaClassData spotTable{0, nullptr, 0,       nullptr, 1, ownProperties.data(),
                                    0, nullptr, nullptr, nullptr};
    ZTStaticMetaClass spot{&spotTable};

    LampTables()
    {
        // The descriptor is there already: it reads the table at each call.
        table.typeName = "Lamp";
        level.metaType = &ztMetaType<int>();
        level.changeEventIndex = 0;
        level.changeEvent = lamp.invokable(0U);
        changed.isEvent = true;
        changed.index = 0;
        dim.index = 1;
        dim.returnMetaType = &ztMetaType<int>();
        dim.parameterMetaTypes = dimTypes.data();
        spotTable.superClass = &lamp;
        spotTable.classInfoOffset = lamp.classInfoCount();
        spotTable.enumOffset = lamp.enumCount();
        spotTable.propertyOffset = lamp.propertyCount();
        spotTable.invokableOffset = lamp.invokableCount();
    }
};

class StaticClass : public testing::Test, protected LampTables
{};

TEST_F(StaticClass, TellsWhatItsTableHolds)
{
    EXPECT_EQ(support::describe(lamp), "Lamp: -\n"
                                       "info 0 category=light\n"
                                       "enum 0 Mode Off=0 On=-5\n"
                                       "enum 1 Beam =-1 =-1\n" // it has no lists
                                       "property 0 int level get set unit=lumen, 0 changed\n"
                                       "property 1 ZTBadMetaType level, -1\n"
                                       "event 0 ZTBadMetaType changed(), 1\n"
                                       "method 1 int dim(int, ZTBadMetaType), 2\n");
    EXPECT_EQ(lamp.property("level"), lamp.property(0U)); // the first of two with that name
    EXPECT_EQ(spot.property("level"), spot.property(2U));
    spotTable.superClass = nullptr;
    EXPECT_TRUE(!spot.classInfo(0U) && !spot.metaEnum(0) && !spot.property(0U) &&
                !spot.invokable(0U));
}

TEST_F(StaticClass, CallsThroughItsTable)
{
    Lamp object;
    const ZTVariant pointer(&object);
    const auto& property = static_cast<const ZTStaticMetaProperty&>(*lamp.property("level"));
    EXPECT_EQ(property.get(pointer), ZTVariant(3));
    EXPECT_EQ(property.set(pointer, ZTVariant(9)), ZTVariant(true));
    EXPECT_EQ(lamp.invokable(1U)->invoke(pointer, {ZTVariant(2)}), ZTVariant(7));
    EXPECT_TRUE(property.getter() == &getLevel && property.setter() == &setLevel);
    const ZTMetaProperty& bare = *lamp.property(1U);
    EXPECT_FALSE(bare.get(ZTVariant()) || bare.set(ZTVariant(), ZTVariant(1)));
    EXPECT_FALSE(lamp.invokable(0U)->invoke(ZTVariant(), ZTArgumentArray()));
}

TEST_F(StaticClass, AsksItsCallbacksThenTheSuperClass)
{
    int (Lamp::*dimFunction)(int) = &Lamp::dim;
    EXPECT_EQ(spot.indexOfInvokable(&dimFunction), 1);
    EXPECT_EQ(spot.invokable<void(int)>("dim"), lamp.invokable(1U));
    EXPECT_EQ(spot.indexOfInvokable<void(int)>("dim", true), -1);
    // The position in the own list becomes a class-wide index; a negative one is no answer.
    spotTable.indexOfInvokableByFunction = [](const ZTMetaClass*, void*) { return 0; };
    EXPECT_EQ(spot.indexOfInvokable(&dimFunction), 2);
    spotTable.indexOfInvokableByFunction = [](const ZTMetaClass*, void*) { return -7; };
    EXPECT_EQ(spot.indexOfInvokable(&dimFunction), 1);
}

TEST_F(StaticClass, OfABlankTableAnswersNeutrally)
{
    const ZTStaticMetaClassData noMembers(0, infos.data(), 0, enums.data(), 0, properties.data(), 0,
                                          invokables.data(), nullptr, nullptr);
    EXPECT_TRUE(!noMembers.classInfos && !noMembers.enums && !noMembers.properties &&
                !noMembers.invokables);
    const ZTStaticMetaClassData blank;
    const auto owned = createStaticMetaClass(&blank);
    const ZTMetaClass& empty = *owned;
    EXPECT_FALSE(empty || empty.metaType());
    EXPECT_TRUE(!empty.classInfo(0U) && !empty.metaEnum(0) && !empty.property(0U));
    EXPECT_TRUE(!empty.classInfo("") && !empty.property("") && !empty.invokable(0U));
    EXPECT_EQ(empty.indexOfInvokable(static_cast<void*>(&spot)), -1);
    EXPECT_EQ(empty.indexOfInvokable<void()>("changed"), -1);
    ZTStaticMetaClassData moved;
    moved = std::move(table);
    EXPECT_EQ(moved.invokables, invokables.data());
    EXPECT_EQ(lamp.invokableCount(), 2U); // the source of a move stays as it was
}

TEST_F(StaticClass, CopyHasDescriptorsOfItsOwnAndAMoveTakesThem)
{
    ZTStaticMetaClass copy(spot);
    int word = 0;
    copy.setUserData(&word);
    EXPECT_EQ(spot.userData(), &word);
    EXPECT_NE(copy.property(2U), spot.property(2U));
    EXPECT_EQ(copy.property(2U)->name().data(), spot.property(2U)->name().data());
    EXPECT_FALSE(copy.isDerivedFrom(&spot));
    EXPECT_TRUE(copy.isDerivedFrom(&lamp));

    ZTStaticMetaClass source(lamp);
    const ZTMetaInvokable* first = source.invokable(0U);
    ZTStaticMetaClass moved(std::move(source));
    EXPECT_EQ(moved.invokable(0U), first);
    ZTStaticMetaClass& itself = source = lamp; // a moved-from one may be assigned to
    source = itself;
    EXPECT_EQ(source.invokable(1U)->name(), "dim");
    copy = std::move(moved);
    EXPECT_EQ(copy.invokable(0U), first);
    EXPECT_EQ(copy.invokableCount(), 2U);
}
} // namespace
