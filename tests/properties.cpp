#include "support/counted.h"
#include "support/hostclasses.h"

#include <algorithm>

namespace host
{
/// A class with one property of each sort; it notes how they are reached.
class Valve : public ZTBase
{
    ZT_OBJECT(Valve, ZTBase)
public:
    int opening() const { return m_opening; }
    void setOpening(int percent)
    {
        ++writes;
        m_opening = percent;
    }
    std::string maker() const { return "valve maker"; }
    int writes = 0;

private:
    static constexpr auto members()
    {
        return zt::members(zt::property<&Self::opening, &Self::setOpening>(),
                           zt::property<&Self::maker>());
    }
    int m_opening = 20;
};
ZT_CLASS(Valve)

/// Hides a property of its super class.
class SafetyValve : public Valve
{
    ZT_OBJECT(SafetyValve, Valve)
public:
    std::string ownMaker = "safe maker";

private:
    static constexpr auto members()
    {
        return zt::members(zt::property<&Self::ownMaker>().as("maker"));
    }
};
ZT_CLASS(SafetyValve)
} // namespace host

namespace
{
using namespace host;

class Properties : public testing::Test
{
protected:
    Properties()
    {
        ZTBase::subscribe(&valve, &ZTBase::dynamicPropertyChanged, &observer,
                          [this](const std::string& name, const ZTVariant& value) {
                              std::ostringstream text;
                              text << name << "=" << value;
                              diary.add(text.str());
                          });
    }
    std::string names() const
    {
        auto views = valve.dynamicProperties();
        std::sort(views.begin(), views.end());
        std::string text;
        for (std::string_view view : views)
            text += "[" + std::string(view) + "]";
        return text;
    }

    Diary diary;
    SafetyValve valve;
    ZTBase observer;
};

TEST_F(Properties, ClassIsAskedFirstAndAnUnknownNameIsNothing)
{
    EXPECT_LOGS_NOTHING([&] {
        EXPECT_FALSE(valve.property("x") || valve.setProperty("x", 1));
        EXPECT_FALSE(valve.setProperty("Opening", 1, false));
    });
    EXPECT_TRUE(valve.setProperty("opening", 30));
    EXPECT_TRUE(valve.setProperty("opening", 40, true));
    EXPECT_EQ(valve.writes, 2);
    EXPECT_EQ(valve.property("opening"), ZTVariant(40));
    EXPECT_EQ(valve.property<int>("opening"), 40);
    EXPECT_TRUE(valve.setProperty("maker", "another"));
    EXPECT_EQ(valve.ownMaker + valve.Valve::maker(), "anothervalve maker");
    EXPECT_EQ(names() + diary.take(), "");
}

TEST_F(Properties, ValueThatDoesNotFitLeavesWhatWasThere)
{
    const std::string text = ztMetaType<std::string>().name();
    const std::string head = "Zintar Warning: Retrieved default-constructed value of type \"int\" ";
    EXPECT_LOGS(head + "while converting from ZTVariant. Conversion failed from type type \"" +
                    text + "\".\n",
                [&] { EXPECT_TRUE(valve.setProperty("opening", "wide")); });
    EXPECT_LOGS(head + "converting from invalid ZTVariant.\n",
                [&] { EXPECT_TRUE(valve.setProperty("opening", ZTVariant())); });
    EXPECT_EQ(valve.opening(), 20);
    EXPECT_EQ(valve.writes, 0);
}

TEST_F(Properties, DynamicPropertySendsEachChange)
{
    const struct {
        ZTVariant value;
        std::string told;
    } steps[] = {{ZTVariant(1), "x=ZTVariant(int, 1)"},
                 {ZTVariant(1), ""},
                 {ZTVariant(1.0), "x=ZTVariant(double, 1)"},
                 {ZTVariant(), "x=ZTVariant(ZTBadMetaType, )"},
                 {ZTVariant(), ""}};
    for (const auto& step : steps) {
        EXPECT_TRUE(valve.setProperty("x", step.value, true));
        EXPECT_EQ(diary.take(), step.told);
        EXPECT_EQ(valve.property("x"), step.value);
    }
    ZTEventBlocker blocker(&valve, true);
    EXPECT_TRUE(valve.setProperty("x", 4, true) && valve.setProperty("", true, true));
    EXPECT_FALSE(valve.setProperty("X", 2));
    EXPECT_EQ(names() + diary.take(), "[][x]");
    EXPECT_EQ(valve.property("x"), ZTVariant(4));
    const std::string_view name = valve.dynamicProperties().front();
    const std::string text(name);
    for (int i = 0; i < 1000; ++i)
        valve.setProperty(std::to_string(i), i, true);
    EXPECT_EQ(name, text);
}

TEST_F(Properties, FirstInvalidValueAndOneThatCannotBeComparedAreChanges)
{
    struct Opaque {};
    valve.setProperty("x", ZTVariant(), true);
    EXPECT_EQ(names() + diary.take(), "[x]x=ZTVariant(ZTBadMetaType, )");
    int heard = 0;
    ZTBase::subscribe(&observer, &ZTBase::dynamicPropertyChanged, &valve, [&] { ++heard; });
    for (int i = 0; i < 3; ++i)
        observer.setProperty("x", Opaque(), true);
    observer.setProperty("x", observer.property("x"), true);
    EXPECT_EQ(heard, 4);
}

TEST_F(Properties, HandlerWritesTheSamePropertyAgain)
{
    ZTBase::subscribe(&valve, &ZTBase::dynamicPropertyChanged, &observer,
                      [this](const std::string& name, const ZTVariant& value) {
                          const ZTVariant before = value;
                          EXPECT_EQ(valve.property(name), value);
                          if (before == ZTVariant(1))
                              valve.setProperty(name, 2, true);
                          EXPECT_EQ(value, before);
                          EXPECT_EQ(name, "x");
                      });
    valve.setProperty("x", 1, true);
    EXPECT_EQ(diary.take(), "x=ZTVariant(int, 1) x=ZTVariant(int, 2)");
    EXPECT_EQ(valve.property<int>("x"), 2);
}

TEST_F(Properties, NamesOfAllLengthsAreToldApart)
{
    std::vector<std::string> names;
    for (std::size_t length = 0; length <= 40; ++length)
        for (std::size_t odd = 0; odd <= length; ++odd) {
            names.emplace_back(length, 'x');
            if (odd < length)
                names.back()[odd] = '\0';
        }
    for (std::size_t i = 0; i < names.size(); ++i)
        ASSERT_TRUE(observer.setProperty(names[i], i, true));
    EXPECT_EQ(observer.dynamicProperties().size(), names.size());
    for (std::size_t i = 0; i < names.size(); ++i)
        EXPECT_EQ(observer.property<std::size_t>(names[i]), i);
    EXPECT_FALSE(observer.property(std::string(41, 'x')));
}

TEST_F(Properties, ThrowingCopyLosesNothing)
{
    using support::Counted;
    observer.setProperty("x", Counted(1), true);
    const ZTVariant next(Counted(2));
    Counted::reset();
    Counted::throwAtCopy = 1;
    EXPECT_THROW(observer.setProperty("x", next, true), std::runtime_error);
    EXPECT_EQ(observer.property<Counted>("x"), Counted(1));
    EXPECT_TRUE(observer.setProperty("x", next, true));
    EXPECT_EQ(observer.property<Counted>("x"), Counted(2));
}

TEST_F(Properties, FunctionsGetTheObjectAsARoot)
{
    ZTMetaClassBuilder builder;
    builder.setSuperClass(&ZTDynamicBase::typeMetaClass());
    builder.addProperty().setName("mute");
    auto property = builder.addProperty();
    property.setName("p");
    property.setGetter([](const ZTVariant& object) { return ZTVariant(object.type().name()); });
    property.setSetter([&](const ZTVariant& object, const ZTVariant&) {
        diary.add(object.type().name());
        return ZTVariant();
    });
    const std::unique_ptr<ZTMetaClass> metaClass(builder.toMetaClass());
    Machine object;
    object.initializeMetaClass(metaClass.get());
    EXPECT_EQ(object.property("p"), ZTVariant("const struct ZTBase*"));
    EXPECT_TRUE(object.setProperty("p", 1) && object.setProperty("p", 1, true));
    EXPECT_EQ(diary.take(), "struct ZTBase* struct ZTBase*");
    EXPECT_TRUE(object.setProperty("mute", 1, true));
    EXPECT_FALSE(object.property("mute").isValid());
    EXPECT_TRUE(object.dynamicProperties().empty());
}
} // namespace
