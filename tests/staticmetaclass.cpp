#include "support/describe.h"
#include "support/logs.h"

#include <zintar/staticmetaclass.h>

#include <array>

// Tables as somebody may lay them out by hand, with less in them than a declaration gives. What
// both families of descriptors promise is tried elsewhere.
namespace
{
using namespace zt::detail;

bool isEmptyView(std::string_view text) { return text.empty() && text.data(); }
ZTVariant first(const ZTVariant&, const ZTArgumentArray& arguments) { return arguments[0]; }

struct Lamp {
    void dim(int) {}
};
int lampByFunction(const ZTMetaClass*, void* function)
{
    return *static_cast<void (Lamp::**)(int)>(function) == &Lamp::dim ? 1 : -7;
}
int lampBySignature(const ZTMetaClass*, std::string_view name, bool isConst,
                    const std::type_index& signature)
{
    return !isConst && name == "dim" && signature == typeid(void (*)(int)) ? 1 : -7;
}

/// The class of `Lamp`, and one derived from it that has one property and no callback.
struct StaticClass : testing::Test {
    ZTStaticMetaEnumData beam{"Beam", 2, nullptr, nullptr};
    ZTStaticMetaPropertyData level{"level", nullptr, nullptr, 0, nullptr}, levelAgain{level};
    ZTStaticMetaInvokableData changed{"changed", false, 0, nullptr, ZTAccessSpecifier::Protected};
    ZTStaticMetaInvokableData dim{"dim", false, 2, &first, ZTAccessSpecifier::Public};
    std::array<const ZTStaticMetaEnumData*, 1> enums{&beam};
    std::array<const ZTStaticMetaPropertyData*, 2> properties{&level, &levelAgain};
    std::array<const ZTStaticMetaInvokableData*, 2> invokables{&changed, &dim};

    ZTStaticMetaClassData table{0,
                                nullptr,
                                1,
                                enums.data(),
                                2,
                                properties.data(),
                                2,
                                invokables.data(),
                                &lampByFunction,
                                &lampBySignature};
    ZTStaticMetaClass lamp{&table};
    ZTStaticMetaClassData spotTable{0, nullptr, 0,       nullptr, 1, properties.data(),
                                    0, nullptr, nullptr, nullptr};
    ZTStaticMetaClass spot{&spotTable};

    StaticClass()
    {
        // The descriptor is there already: it reads the table at each call.
        table.typeName = "Lamp";
        spotTable.superClass = &lamp;
        spotTable.enumOffset = lamp.enumCount();
        spotTable.propertyOffset = lamp.propertyCount();
        spotTable.invokableOffset = lamp.invokableCount();
    }
};

TEST_F(StaticClass, WithoutListsAndFunctionsAnswersNeutrally)
{
    EXPECT_TRUE(lamp.metaEnum(0)->enumerator(1).empty());
    EXPECT_EQ(lamp.metaEnum(0)->value(1), -1);
    EXPECT_FALSE(lamp.invokable(0U)->invoke(ZTVariant(), {ZTVariant(2)}));
    EXPECT_FALSE(lamp.invokable(1U)->parameterMetaType(0));
    const ZTMetaProperty& bare = *lamp.property(1U);
    EXPECT_FALSE(bare.metaType());
    EXPECT_FALSE(bare.get(ZTVariant(1)));
    EXPECT_FALSE(bare.set(ZTVariant(), ZTVariant(1)));
}

TEST_F(StaticClass, InvokesWithTooFewArgumentsAndWarns)
{
    const ZTMetaInvokable& method = *lamp.invokable(1U);
    const int object = 0;
    ZTLogCapture log;
    EXPECT_EQ(method.invoke(&object, ZTVariant("abc"), 2), ZTVariant("abc"));
    EXPECT_EQ(log.text(), "");
    EXPECT_EQ(method.invoke(&object, 1), ZTVariant(1));
    EXPECT_EQ(log.err(), "Zintar: Insufficient parameters supplied for ZTmetaInvokable invoke for "
                         "invokable \"dim\".\n");
}

TEST_F(StaticClass, SlicedDescriptorsAnswerNeutrally)
{
    const ZTStaticMetaClassInfoData infoData("key", "value");
    const ZTMetaClassInfo info = ZTStaticMetaClassInfo(&infoData);
    const ZTMetaEnum enumeration = *lamp.metaEnum(0);
    const ZTMetaInvokable invokable = *lamp.invokable(1U);
    const ZTMetaProperty property = *lamp.property(0U);
    ZTMetaClass sliced = lamp;
    for (bool isSet :
         {bool(info), bool(enumeration), bool(invokable), bool(property), bool(sliced)})
        EXPECT_TRUE(isSet);
    for (std::string_view text : {info.key(), enumeration.enumerator(0), property.propInfoKey(0),
                                  property.propInfoValue(0), sliced.typeName()})
        EXPECT_TRUE(isEmptyView(text));
    EXPECT_EQ(support::textOf(invokable), "method 0 ZTBadMetaType ()");
    EXPECT_EQ(support::textOf(property), "ZTBadMetaType , -1");
    EXPECT_EQ(support::describe(sliced), ": -\n");
    EXPECT_FALSE(enumeration.count());
    EXPECT_FALSE(enumeration.value(0));
    EXPECT_FALSE(invokable.isDynamic());
    EXPECT_FALSE(invokable.parameterMetaType(0));
    EXPECT_EQ(invokable.accessSpecifier(), ZTAccessSpecifier::Public);
    EXPECT_LOGS_NOTHING([&] { EXPECT_FALSE(invokable.invoke(ZTVariant())); });
    EXPECT_FALSE(property.get(ZTVariant(1)));
    EXPECT_FALSE(property.set(ZTVariant(1), ZTVariant(1)));
    sliced.setUserData(&sliced);
    EXPECT_FALSE(sliced.userData());
    EXPECT_FALSE(sliced.invokable(0U));
    EXPECT_EQ(sliced.indexOfInvokable<void()>("name") + sliced.indexOfInvokable(&sliced), -2);
}

TEST_F(StaticClass, DescriptorsAreTrueWhenTheirTextsWereSet)
{
    const ZTStaticMetaClassInfoData infos[] = {{"", ""}, {"k", {}}, {{}, "v"}, {}};
    for (const ZTStaticMetaClassInfoData& info : infos)
        EXPECT_EQ(static_cast<bool>(ZTStaticMetaClassInfo(&info)), &info == &infos[0]);
    EXPECT_TRUE(lamp);
    EXPECT_TRUE(*lamp.metaEnum(0));
    EXPECT_TRUE(*lamp.property(0U));
    EXPECT_TRUE(*lamp.invokable(0U));
    beam.name = level.name = changed.name = table.typeName = {};
    EXPECT_FALSE(lamp);
    EXPECT_FALSE(*lamp.metaEnum(0));
    EXPECT_FALSE(*lamp.property(0U));
    EXPECT_FALSE(*lamp.invokable(0U));
}

TEST_F(StaticClass, FindsTheFirstOfItsOwn)
{
    EXPECT_EQ(lamp.property("level"), lamp.property(0U));
    EXPECT_EQ(spot.property("level"), spot.property(2U));
    spotTable.superClass = nullptr;
    EXPECT_FALSE(spot.metaEnum(0));
    EXPECT_FALSE(spot.property(0U));
    EXPECT_FALSE(spot.invokable(0U));
}

TEST_F(StaticClass, AsksItsCallbacksThenTheSuperClass)
{
    void (Lamp::*dimFunction)(int) = &Lamp::dim;
    EXPECT_EQ(spot.indexOfInvokable(&dimFunction), 1);
    EXPECT_EQ(spot.invokable<void(int)>("dim"), lamp.invokable(1U));
    EXPECT_EQ(spot.indexOfInvokable<void(int)>("dim", true), -1);
    // The position in the own list becomes a class-wide index; a negative one is no answer.
    spotTable.indexOfInvokableByFunction = [](const ZTMetaClass*, void*) { return 0; };
    EXPECT_EQ(spot.indexOfInvokable(&dimFunction), 2);
    spotTable.indexOfInvokableByFunction = [](const ZTMetaClass*, void*) { return -7; };
    EXPECT_EQ(spot.indexOfInvokable(&dimFunction), 1);
}

TEST_F(StaticClass, OfABlankTableIsEmpty)
{
    ZTStaticMetaClassData blank;
    blank.enumCount = 1; // of a list that is not there
    const auto owned = createStaticMetaClass(&blank);
    const ZTMetaClass& empty = *owned;
    EXPECT_FALSE(empty.metaType());
    EXPECT_FALSE(empty.classInfo(""));
    EXPECT_FALSE(empty.property(""));
    EXPECT_EQ(empty.indexOfInvokable(static_cast<void*>(&spot)), -1);
    EXPECT_EQ(empty.indexOfInvokable<void()>("changed"), -1);
}

TEST_F(StaticClass, CopyHasDescriptorsOfItsOwnAndAMoveTakesThem)
{
    ZTStaticMetaClass copy(spot);
    int word = 0;
    copy.setUserData(&word);
    EXPECT_EQ(spot.userData(), &word); // which is in the table
    EXPECT_NE(copy.property(2U), spot.property(2U));
    EXPECT_TRUE(copy.isDerivedFrom(&lamp));
    EXPECT_FALSE(copy.isDerivedFrom(&spot));

    ZTStaticMetaClass source(lamp);
    const ZTMetaInvokable* first = source.invokable(0U);
    ZTStaticMetaClass moved(std::move(source));
    EXPECT_EQ(moved.invokable(0U), first);
    ZTStaticMetaClass& itself = source = lamp; // a moved-from one may be assigned to
    const ZTMetaInvokable* kept = source.invokable(1U);
    source = itself;
    EXPECT_EQ(source.invokable(1U), kept);
    EXPECT_EQ(kept->name(), "dim");
    copy = std::move(moved);
    EXPECT_EQ(copy.invokable(0U), first);
    EXPECT_EQ(copy.invokableCount(), 2U);
}
} // namespace
