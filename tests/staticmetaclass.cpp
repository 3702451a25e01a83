#include "support/classes.h"
#include "support/logs.h"

#include <array>
#include <memory>

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

template <class Function>
bool isFunction(void* variable, Function function)
{
    return *static_cast<Function*>(variable) == function;
}
int lampByFunction(const ZTMetaClass*, void* function)
{
    if (isFunction(function, &Lamp::dim))
        return 1;
    return isFunction(function, &Lamp::changed) ? 0 : -7;
}
int lampBySignature(const ZTMetaClass*, std::string_view name, bool isConst,
                    const std::type_index& signature)
{
    if (isConst)
        return -1;
    if (name == "dim" && signature == typeid(void (*)(int)))
        return 1;
    return name == "changed" && signature == typeid(void (*)()) ? 0 : -7;
}

/// The class of `Lamp`, as a generator would lay it out by hand.
struct LampTables {
    ZTStaticMetaClassInfoData category{"category", "light"};
    std::array<std::string_view, 2> modeNames{"Off", "On"};
    std::array<int, 2> modeValues{0, -5};
    ZTStaticMetaEnumData mode{"Mode", 2, modeNames.data(), modeValues.data()};
    std::array<ZTPropertyInfo, 1> levelInfos{ZTPropertyInfo("unit", "lumen")};
    ZTStaticMetaPropertyData level{"level", &getLevel, &setLevel, 1, levelInfos.data()};
    ZTStaticMetaPropertyData levelAgain{"level", nullptr, nullptr, 0, nullptr};
    std::array<const ZTMetaType*, 2> dimTypes{&ztMetaType<int>(), nullptr};
    ZTStaticMetaInvokableData changed{"changed", false, 0, nullptr, ZTAccessSpecifier::Protected};
    ZTStaticMetaInvokableData dim{"dim", false, 2, &callDim, ZTAccessSpecifier::Public};

    std::array<const ZTStaticMetaClassInfoData*, 1> infos{&category};
    std::array<const ZTStaticMetaEnumData*, 1> enums{&mode};
    std::array<const ZTStaticMetaPropertyData*, 2> properties{&level, &levelAgain};
    std::array<const ZTStaticMetaInvokableData*, 2> invokables{&changed, &dim};
    ZTStaticMetaClassData table{1,
                                infos.data(),
                                1,
                                enums.data(),
                                2,
                                properties.data(),
                                2,
                                invokables.data(),
                                &lampByFunction,
                                &lampBySignature};
    ZTStaticMetaClass lamp{&table};

    LampTables()
    {
        // The descriptor is there already: it reads the table at each call.
        table.typeName = "struct Lamp";
        table.metaType = &ztMetaType<Lamp*>();
        level.metaType = &ztMetaType<int>();
        level.changeEventIndex = 0;
        level.changeEvent = lamp.invokable(0U);
        changed.isEvent = true;
        changed.index = 0;
        dim.index = 1;
        dim.returnMetaType = &ztMetaType<int>();
        dim.parameterMetaTypes = dimTypes.data();
    }
};

/// A class derived from `Lamp`, which declares each kind of member once and has no callback.
struct SpotTables : LampTables {
    ZTStaticMetaClassInfoData ownCategory{"category", "stage"};
    ZTStaticMetaEnumData beam{"Beam", 2, nullptr, nullptr};
    ZTStaticMetaPropertyData ownLevel{"level", &getLevel, nullptr, 0, nullptr};
    ZTStaticMetaInvokableData ownChanged{"changed", false, 0, nullptr, ZTAccessSpecifier::Public};
    std::array<const ZTStaticMetaClassInfoData*, 1> ownInfos{&ownCategory};
    std::array<const ZTStaticMetaEnumData*, 1> ownEnums{&beam};
    std::array<const ZTStaticMetaPropertyData*, 1> ownProperties{&ownLevel};
    std::array<const ZTStaticMetaInvokableData*, 1> ownInvokables{&ownChanged};
    ZTStaticMetaClassData spotTable{
        1, ownInfos.data(),      1,       ownEnums.data(), 1, ownProperties.data(),
        1, ownInvokables.data(), nullptr, nullptr};
    ZTStaticMetaClass spot{&spotTable};

    SpotTables()
    {
        spotTable.superClass = &lamp;
        spotTable.classInfoOffset = lamp.classInfoCount();
        spotTable.enumOffset = lamp.enumCount();
        spotTable.propertyOffset = lamp.propertyCount();
        spotTable.invokableOffset = lamp.invokableCount();
        ownChanged.index = 2;
    }
};

class StaticClass : public testing::Test, protected SpotTables
{};

TEST_F(StaticClass, TablesDropEmptyListsAndSurviveAMove)
{
    const ZTStaticMetaPropertyData bareProperty("p", nullptr, nullptr, 0, nullptr);
    const ZTStaticMetaInvokableData bareInvokable;
    EXPECT_EQ(bareProperty.changeEventIndex, -1);
    EXPECT_EQ(bareInvokable.index, -1);
    EXPECT_EQ(static_cast<int>(bareInvokable.accessSpecifier), 0);
    const ZTStaticMetaClassData noMembers(0, infos.data(), 0, enums.data(), 0, properties.data(), 0,
                                          invokables.data(), nullptr, nullptr);
    EXPECT_TRUE(!noMembers.classInfos && !noMembers.enums && !noMembers.properties &&
                !noMembers.invokables);
    ZTStaticMetaClassData moved;
    moved = std::move(table);
    EXPECT_EQ(moved.invokables, invokables.data());
    EXPECT_EQ(lamp.typeName(), "struct Lamp"); // the source of a move stays as it was
    EXPECT_EQ(lamp.invokableCount(), 2U);
}

TEST_F(StaticClass, WithoutAnythingAnswersNeutrally)
{
    const ZTStaticMetaClassData blank;
    const auto owned = createStaticMetaClass(&blank);
    const ZTMetaClass& empty = *owned;
    EXPECT_FALSE(empty || empty.metaType());
    EXPECT_EQ(empty.invokableOffset() + empty.invokableCount() + empty.propertyCount(), 0U);
    EXPECT_TRUE(!empty.classInfo(0U) && !empty.metaEnum(0) && !empty.property(0U));
    EXPECT_TRUE(!empty.classInfo("") && !empty.property("") && !empty.invokable(0U));
    EXPECT_EQ(empty.indexOfInvokable(static_cast<void*>(&spot)), -1);
    EXPECT_EQ(empty.indexOfInvokable<void()>("changed"), -1);
    EXPECT_EQ(empty.indexOfInvokable("changed", false, {}), -1);
}

TEST_F(StaticClass, SharesOneIndexSpaceWithItsSuperClass)
{
    EXPECT_EQ(spot.superClass(), &lamp);
    EXPECT_EQ(spot.classInfoOffset(), 1U);
    EXPECT_EQ(spot.classInfoCount(), 2U);
    EXPECT_EQ(spot.enumOffset(), 1U);
    EXPECT_EQ(spot.enumCount(), 2U);
    EXPECT_EQ(spot.propertyOffset(), 2U);
    EXPECT_EQ(spot.propertyCount(), 3U);
    EXPECT_EQ(spot.invokableOffset(), 2U);
    EXPECT_EQ(spot.invokableCount(), 3U);

    EXPECT_EQ(spot.classInfo(0U), lamp.classInfo(0U));
    EXPECT_EQ(spot.classInfo(1U)->value(), "stage");
    EXPECT_EQ(spot.metaEnum(0), lamp.metaEnum(0));
    EXPECT_EQ(spot.metaEnum(1)->name(), "Beam");
    EXPECT_EQ(spot.property(1U), lamp.property(1U));
    EXPECT_FALSE(spot.property(2U)->canSet());
    EXPECT_EQ(spot.invokable(1U), lamp.invokable(1U));
    EXPECT_EQ(spot.invokable(2U)->index(), 2);
    EXPECT_TRUE(!spot.classInfo(2U) && !spot.metaEnum(2) && !spot.property(3U) &&
                !spot.invokable(3U));
    spotTable.superClass = nullptr;
    EXPECT_TRUE(!spot.classInfo(0U) && !spot.metaEnum(0) && !spot.property(0U) &&
                !spot.invokable(0U));
}

TEST_F(StaticClass, FindsItsOwnMemberByNameFirst)
{
    EXPECT_EQ(spot.property("level"), spot.property(2U));
    EXPECT_EQ(lamp.property("level"), lamp.property(0U)); // the first of two with that name
    EXPECT_EQ(spot.classInfo("category"), spot.classInfo(1U));
    EXPECT_TRUE(!spot.property("Level") && !spot.property("leve") && !spot.classInfo(""));
}

TEST_F(StaticClass, FindsInvokablesByFunctionAndSignature)
{
    int (Lamp::*dimFunction)(int) = &Lamp::dim;
    EXPECT_EQ(spot.indexOfInvokable(&dimFunction), 1); // it has no callback: the super class's turn
    EXPECT_EQ(spot.invokable(&dimFunction), lamp.invokable(1U));
    EXPECT_EQ(spot.invokable<void(int)>("dim"), lamp.invokable(1U));
    EXPECT_EQ(spot.indexOfInvokable<void(const int&)>("dim"), -1);
    EXPECT_EQ(spot.indexOfInvokable<void(int)>("dim", true), -1);

    // The position in the own list becomes a class-wide index; a negative one is no answer.
    spotTable.indexOfInvokableByFunction = [](const ZTMetaClass*, void*) { return 0; };
    EXPECT_EQ(spot.indexOfInvokable(&dimFunction), 2);
    spotTable.indexOfInvokableByFunction = [](const ZTMetaClass*, void*) { return -7; };
    EXPECT_EQ(spot.indexOfInvokable(&dimFunction), 1);
}

TEST_F(StaticClass, FindsInvokablesByParameterListFromTheRootOn)
{
    dimTypes[1] = &ztMetaType<double>();
    EXPECT_EQ(spot.indexOfInvokable("changed", false, {}), 0);
    EXPECT_EQ(spot.indexOfInvokable("changed", true, {}), -1);
    EXPECT_EQ(spot.invokable("dim", false, {&ztMetaType<int>(), &ztMetaType<double>()}),
              lamp.invokable(1U));
    EXPECT_EQ(spot.invokable("dim", false, {&ztMetaType<double>(), &ztMetaType<int>()}), nullptr);
    EXPECT_EQ(spot.invokable("dim", false, {&ztMetaType<int>()}), nullptr);
    EXPECT_EQ(spot.invokable("dim", false, {&ztMetaType<int>(), nullptr}), nullptr);
}

TEST_F(StaticClass, ReadsEnumsFromTheirTables)
{
    const ZTMetaEnum& modes = *lamp.metaEnum(0);
    EXPECT_EQ(modes.count(), 2U);
    EXPECT_EQ(modes.enumerator(1), "On");
    EXPECT_EQ(modes.value(1), -5);
    for (const ZTMetaEnum* absent : {&modes, spot.metaEnum(1)}) {
        unsigned int index = absent == &modes ? 2 : 0;
        EXPECT_EQ(absent->enumerator(index), "");
        EXPECT_NE(absent->enumerator(index).data(), nullptr);
        EXPECT_EQ(absent->value(index), -1);
    }
}

TEST_F(StaticClass, ReadsAndCallsThroughItsTables)
{
    Lamp object;
    const ZTVariant pointer(&object);
    const auto& property = static_cast<const ZTStaticMetaProperty&>(*lamp.property("level"));
    EXPECT_EQ(property.get(pointer), ZTVariant(3));
    EXPECT_EQ(property.set(pointer, ZTVariant(9)), ZTVariant(true));
    EXPECT_EQ(lamp.invokable(1U)->invoke(pointer, {ZTVariant(2)}), ZTVariant(7));
    EXPECT_EQ(property.getter(), &getLevel);
    EXPECT_EQ(property.setter(), &setLevel);
    EXPECT_EQ(property.changeEvent(), lamp.invokable(0U));
    EXPECT_EQ(property.propInfoValue(0), "lumen");
    EXPECT_NE(property.propInfoValue(1).data(), nullptr);
    const ZTMetaInvokable& dimming = *lamp.invokable(1U);
    EXPECT_EQ(&dimming.parameterMetaType(0), &ztMetaType<int>());
    for (unsigned int absent : {1U, 2U}) // a null entry, and one past the end
        EXPECT_EQ(&dimming.parameterMetaType(absent), &ZTMetaType::ZTBadMetaType);
}

TEST_F(StaticClass, WithoutFunctionsGivesInvalidVariants)
{
    const ZTMetaProperty& bare = *lamp.property(1U);
    EXPECT_FALSE(bare.canGet() || bare.canSet() || bare.metaType());
    EXPECT_FALSE(bare.get(ZTVariant()) || bare.set(ZTVariant(), ZTVariant(1)));
    EXPECT_FALSE(lamp.invokable(0U)->invoke(ZTVariant(), ZTArgumentArray()));
    EXPECT_FALSE(lamp.invokable(0U)->returnMetaType());
}

TEST_F(StaticClass, CopyReadsTheSameTableWithDescriptorsOfItsOwn)
{
    ZTStaticMetaClass copy(spot);
    int word = 0;
    copy.setUserData(&word);
    EXPECT_EQ(spot.userData(), &word);
    EXPECT_NE(copy.invokable(2U), spot.invokable(2U));
    EXPECT_EQ(copy.invokable(2U)->name().data(), spot.invokable(2U)->name().data());
    EXPECT_FALSE(copy.isDerivedFrom(&spot));
    EXPECT_TRUE(copy.isDerivedFrom(&lamp));
    ZTStaticMetaClass& itself = copy = lamp;
    copy = itself;
    EXPECT_EQ(copy.invokable(1U)->name(), "dim");
}

TEST_F(StaticClass, MoveTakesTheDescriptorsOver)
{
    ZTStaticMetaClass source(lamp);
    const ZTMetaInvokable* first = source.invokable(0U);
    ZTStaticMetaClass moved(std::move(source));
    EXPECT_EQ(moved.invokable(0U), first);
    source = lamp; // a moved-from one may be assigned to
    EXPECT_EQ(source.invokable(1U)->name(), "dim");
    ZTStaticMetaClass target(spot);
    target = std::move(moved);
    EXPECT_EQ(target.invokable(0U), first);
    EXPECT_EQ(target.invokableCount(), 2U);
}
} // namespace
