#include "support/hostclasses.h"

#include <zintar/zintar.h>

#include <functional>

namespace
{
class Record : public ZTDynamicBase
{
    ZT_OBJECT(Record, ZTDynamicBase)
public:
    using ZTDynamicBase::initializeMetaClass;

private:
    static constexpr auto members() { return zt::members(); }
};
ZT_CLASS(Record)

using Owned = std::unique_ptr<ZTMetaClass>;

/// A class with a stored "level" of 1 and a "title".
struct StoredProperties : testing::Test {
    StoredProperties()
    {
        builder.setTypeName("Lamp");
        builder.setSuperClass(&Record::typeMetaClass());
        builder.addStoredProperty("level", 1.0).addPropInfo("unit", "lux");
        builder.addStoredProperty("title", "none");
        lamp.reset(builder.toMetaClass());
        object.initializeMetaClass(lamp.get());
        const ZTMetaInvokable* changed = lamp->property("level")->changeEvent();
        ZTBase::subscribe(&object, changed, &object, [this](double level) {
            heard.push_back(level);
            if (whenHeard)
                whenHeard();
        });
    }

    ZTMetaClassBuilder builder;
    Owned lamp;
    std::vector<double> heard;
    std::function<void()> whenHeard;
    Record object;
};

TEST_F(StoredProperties, BeginWithTheirStartAndTellOfChanges)
{
    EXPECT_EQ(object.property<double>("level"), 1.0);
    EXPECT_TRUE(object.setProperty("level", 1.0));
    EXPECT_TRUE(object.setProperty("level", 0.5));
    EXPECT_TRUE(object.setProperty("level", 0.5));
    EXPECT_TRUE(object.setProperty("title", "desk"));
    EXPECT_EQ(heard, std::vector{0.5});
    EXPECT_EQ(object.property<double>("level"), 0.5);
    EXPECT_EQ(object.property<std::string>("title"), "desk");
    EXPECT_TRUE(object.dynamicProperties().empty());

    Record other;
    other.initializeMetaClass(lamp.get());
    EXPECT_EQ(other.property<double>("level"), 1.0);

    const ZTMetaProperty& level = *lamp->property("level");
    EXPECT_EQ(&level.metaType(), &ztMetaType<double>());
    EXPECT_TRUE(level.canGet() && level.canSet());
    EXPECT_EQ(level.changeEvent()->name(), "levelChanged");
    EXPECT_EQ(level.propInfoValue(0), "lux");
}

TEST_F(StoredProperties, TakeNothingThatDoesNotFit)
{
    ztRegisterConverter([](int whole) { return double(whole); });
    EXPECT_TRUE(object.setProperty("level", 3));
    EXPECT_LOGS("Zintar Warning: Retrieved default-constructed value of type \"double\" while "
                "converting from ZTVariant. Conversion failed from type type \"bool\".\n"
                "Zintar Warning: Retrieved default-constructed value of type \"double\" converting "
                "from invalid ZTVariant.\n",
                [&] {
                    object.setProperty("level", true);
                    object.setProperty("level", ZTVariant());
                });
    EXPECT_EQ(object.property<double>("level"), 3.0);
    EXPECT_EQ(heard, std::vector{3.0});
}

TEST_F(StoredProperties, FollowAMovedObject)
{
    object.setProperty("level", 4.0);
    Record moved(std::move(object));
    EXPECT_EQ(moved.property<double>("level"), 4.0);
    moved.setProperty("level", 5.0);
    EXPECT_EQ(heard.size(), 2U);
}

TEST_F(StoredProperties, MayBeSetAndEndWithinTheirOwnEvent)
{
    whenHeard = [&] {
        whenHeard = nullptr;
        object.setProperty("level", 8.0);
    };
    object.setProperty("level", 7.0);
    EXPECT_EQ(heard, (std::vector{7.0, 8.0}));

    auto* dying = new Record;
    dying->initializeMetaClass(lamp.get());
    ZTBase::subscribe(dying, lamp->property("title")->changeEvent(), dying,
                      [&](const std::string&) { delete dying; });
    dying->setProperty("title", "a text that is too long to stand in the string itself");
}

TEST_F(StoredProperties, AreCopiedWithTheirClassAndReplacedByFunctions)
{
    ZTMetaClassBuilder copy(lamp.get());
    copy.property(1).setSetter(zt::detail::SetterFunction()); // from now on read only
    const Owned made(copy.toMetaClass());
    Record other;
    other.initializeMetaClass(made.get());
    other.setProperty("level", 2.0);
    other.setProperty("title", "desk");
    EXPECT_EQ(other.property<double>("level"), 2.0);
    EXPECT_EQ(other.property<std::string>("title"), "none");
    EXPECT_FALSE(made->property("title")->canSet());
}

TEST_F(StoredProperties, HideThoseOfASuperClass)
{
    ZTMetaClassBuilder below;
    below.setSuperClass(lamp.get());
    below.addStoredProperty("level", "low");
    below.addStoredProperty("nothing", ZTVariant());
    const Owned made(below.toMetaClass());
    Record other;
    other.initializeMetaClass(made.get());
    other.setProperty("level", "high");
    lamp->property("level")->set(ZTVariant(&other), ZTVariant(6.0));
    EXPECT_EQ(other.property<std::string>("level"), "high");
    EXPECT_EQ(lamp->property("level")->get(ZTVariant(&other)), ZTVariant(6.0));
    EXPECT_FALSE(made->property("nothing")->canGet() || made->property("nothing")->canSet());
}

TEST_F(StoredProperties, OfObjectsTakeOnlyObjectsOfTheirClass)
{
    builder.addStoredProperty("twin", static_cast<Record*>(nullptr));
    const Owned made(builder.toMetaClass());
    Record other;
    ZTBase plain;
    other.initializeMetaClass(made.get());
    other.setProperty("twin", static_cast<ZTBase*>(&object));
    EXPECT_EQ(other.property<Record*>("twin"), &object);
    EXPECT_NE(support::logOf([&] { other.setProperty("twin", &plain); }), "");
    EXPECT_EQ(other.property<Record*>("twin"), &object);
}

TEST_F(StoredProperties, AnOverridingMethodReachesTheOneAbove)
{
    auto describe = builder.addInvokable();
    describe.setName("describe");
    describe.setFunction([](const Record&, int indent) { return "lamp" + std::to_string(indent); });
    auto overload = builder.addInvokable();
    overload.setName("describe");
    overload.setFunction([](const Record&) { return std::string("short"); });
    const Owned made(builder.toMetaClass());

    ZTMetaClassBuilder below;
    EXPECT_EQ(below.superMethod<int>("describe"), nullptr);
    below.setSuperClass(made.get());
    auto better = below.addInvokable();
    better.setName("describe");
    better.setFunction(
        [above = below.superMethod<int>("describe")](const Record& self, int indent) {
            return "better " + ztVariantValue<std::string>(above->invoke(&self, indent));
        });
    EXPECT_EQ(below.superMethod<double>("describe"), nullptr);
    EXPECT_EQ(below.superMethod<double>("levelChanged"), nullptr); // an event
    const Owned finished(below.toMetaClass());
    Record other;
    other.initializeMetaClass(finished.get());
    const ZTMetaInvokable& own = *finished->invokable(finished->invokableOffset());
    EXPECT_EQ(own.invoke(&other, 4), ZTVariant("better lamp4"));
}

TEST(StoredChange, TellsTheValueBeforeToAnEventOfTwo)
{
    ZTMetaClassBuilder builder;
    builder.setSuperClass(&Record::typeMetaClass());
    auto levelMoved = builder.addInvokable();
    levelMoved.setName("levelMoved");
    levelMoved.setEvent<double, double>();
    builder.addStoredProperty("level", 1.0).setChangeEvent(levelMoved);
    auto gainMoved = builder.addInvokable();
    gainMoved.setName("gainMoved");
    gainMoved.setEvent<double, int>();
    builder.addStoredProperty("gain", 1.0).setChangeEvent(gainMoved);
    const Owned type(builder.toMetaClass());
    Record object;
    object.initializeMetaClass(type.get());
    const ZTEventListener moves(&object, type->invokable<void(double, double)>("levelMoved"));
    object.setProperty("level", 2.0);
    object.setProperty("level", 4);
    using Values = std::vector<ZTVariant>;
    EXPECT_EQ(moves.records(), (std::vector<Values>{{ZTVariant(2.0), ZTVariant(1.0)},
                                                    {ZTVariant(4.0), ZTVariant(2.0)}}));
    const ZTEventListener gains(&object, type->invokable<void(double, int)>("gainMoved"));
    EXPECT_NE(support::logOf([&] { object.setProperty("gain", 3.0); }), "");
    EXPECT_EQ(gains.records(), (std::vector<Values>{{ZTVariant(3.0), ZTVariant()}}));
}
} // namespace
