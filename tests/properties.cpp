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

TEST_F(Properties, UnknownNameIsNothing)
{
    EXPECT_LOGS_NOTHING([&] {
        EXPECT_FALSE(valve.property("x").isValid());
        EXPECT_FALSE(valve.setProperty("x", 1));
        EXPECT_FALSE(valve.setProperty("Opening", 1, false));
    });
    EXPECT_EQ(names(), "");
    EXPECT_EQ(diary.take(), "");
}

TEST_F(Properties, ClassIsAskedFirst)
{
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
    EXPECT_TRUE(valve.setProperty("x", 1, true));
    EXPECT_EQ(diary.take(), "x=ZTVariant(int, 1)");
    EXPECT_TRUE(valve.setProperty("x", 1, true));
    EXPECT_EQ(diary.take(), "");
    EXPECT_TRUE(valve.setProperty("x", 1.0, true));
    EXPECT_EQ(diary.take(), "x=ZTVariant(double, 1)");
    EXPECT_EQ(valve.property("x"), ZTVariant(1.0));
    EXPECT_TRUE(valve.setProperty("", true, true));
    EXPECT_TRUE(valve.setProperty("X", 2, true));
    EXPECT_EQ(names(), "[][X][x]");
    const std::string_view name = valve.dynamicProperties().front();
    const std::string text(name);
    for (int i = 0; i < 1000; ++i)
        valve.setProperty(std::to_string(i), i, true);
    EXPECT_EQ(name, text);
    EXPECT_FALSE(valve.setProperty("x", 3));
    diary.take();
    ZTEventBlocker blocker(&valve, true);
    EXPECT_TRUE(valve.setProperty("x", 4, true));
    EXPECT_EQ(valve.property("x"), ZTVariant(4));
    EXPECT_EQ(diary.take(), "");
}

TEST_F(Properties, InvalidValueIsAValue)
{
    valve.setProperty("x", ZTVariant(), true);
    EXPECT_EQ(names() + diary.take(), "[x]x=ZTVariant(ZTBadMetaType, )");
    EXPECT_FALSE(valve.property("x").isValid());
    valve.setProperty("x", 1, true);
    valve.setProperty("x", ZTVariant(), true);
    valve.setProperty("x", ZTVariant(), true);
    EXPECT_EQ(names() + diary.take(), "[x]x=ZTVariant(int, 1) x=ZTVariant(ZTBadMetaType, )");
}

TEST_F(Properties, ValueThatCannotBeComparedAlwaysChanges)
{
    struct Opaque {};
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

/// A class whose functions tell with what they were called.
ZTVariant typeOfObject(const ZTVariant& object) { return ZTVariant(object.type().name()); }
ZTVariant noteObject(const ZTVariant& object, const ZTVariant& value)
{
    (*ztVariantPointer<Diary*>(value))->add(object.type().name());
    return {};
}

TEST_F(Properties, FunctionsGetTheObjectAsARoot)
{
    zt::detail::ZTStaticMetaPropertyData property("p", &typeOfObject, &noteObject, 0, nullptr);
    zt::detail::ZTStaticMetaPropertyData mute("m", nullptr, nullptr, 0, nullptr);
    const zt::detail::ZTStaticMetaPropertyData* list[] = {&property, &mute};
    const zt::detail::ZTStaticMetaClassData table(0, nullptr, 0, nullptr, 2, list, 0, nullptr,
                                                  nullptr, nullptr);
    const ZTStaticMetaClass metaClass(&table);
    struct Object : ZTBase {
        const ZTMetaClass* type;
        const ZTMetaClass* metaClass() const override { return type; }
    } object;
    object.type = &metaClass;
    EXPECT_EQ(object.property("p"), ZTVariant("const struct ZTBase*"));
    EXPECT_TRUE(object.setProperty("p", &diary) && object.setProperty("p", &diary, true));
    EXPECT_EQ(diary.take(), "struct ZTBase* struct ZTBase*");
    EXPECT_TRUE(object.setProperty("m", 1, true));
    EXPECT_FALSE(object.property("m").isValid());
    EXPECT_TRUE(object.dynamicProperties().empty());
}
} // namespace
