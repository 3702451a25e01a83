#include "support/logs.h"

#include <zintar/create.h>
#include <zintar/declare.h>
#include <zintar/eventlistener.h>

#include <memory>
#include <vector>

namespace
{
struct NotEqual {
    int value = 0;
};
/// Its assignment runs code of the host.
struct Trap {
    std::shared_ptr<int> resource;
    static inline ZTBase* victim = nullptr;
    Trap() = default;
    Trap(const Trap&) = default;
    Trap& operator=(const Trap& other)
    {
        if (this != &other)
            resource = other.resource;
        delete std::exchange(victim, nullptr);
        return *this;
    }
};

struct Dimmable {
    virtual ~Dimmable() = default;
    virtual int steps() const { return m_steps; }
    virtual void setSteps(int steps) { m_steps = steps; }
    virtual double dim(double by) { return level -= by; }
    double level = 1;
    const int serial = 12;
    int m_steps = 3;
};

class Lamp : public ZTBase, public Dimmable
{
    ZT_OBJECT(Lamp, ZTBase)
public:
    Lamp() = default;
    explicit Lamp(double start) : brightness(start) {}

    virtual double first(double) { return -1; }
    double dim(double by) override { return Dimmable::dim(by) * 100; }
    void brightnessChanged(double value) { sendEvent<&Self::brightnessChanged>(value); }
    void labelChanged(const std::string& value) { sendEvent<&Self::labelChanged>(value); }
    void changed() { sendEvent<&Self::changed>(); }
    void moved(int to, double by) { sendEvent<&Self::moved>(to, by); }

    double brightness = 0;
    std::string label;
    NotEqual part;
    Trap trap;
    int before = 5;
    int place = 0;

private:
    static constexpr auto members()
    {
        return zt::members(
            zt::event<&Self::brightnessChanged>(), zt::event<&Self::labelChanged>(),
            zt::event<&Self::changed>(), zt::event<&Self::moved>(),
            zt::property<&Self::place>().notify<&Self::moved>(),
            zt::property<&Self::brightness>().notify<&Self::brightnessChanged>(),
            zt::property<&Self::label>().info("a", "b").notify<&Self::labelChanged>(),
            zt::property<&Self::part>().notify<&Self::changed>(),
            zt::property<&Self::trap>().notify<&Self::changed>(),
            zt::constructor<double>(), // which is no member, and moves none
            // Of the other base.
            zt::property<&Self::level>().notify<&Self::brightnessChanged>().info("unit", "1"),
            zt::property<&Self::steps, &Self::setSteps>(), zt::property<&Self::serial>(),
            zt::method<&Dimmable::dim>().parameters("by").defaults(0.25),
            zt::method<&Self::first>());
    }
};
ZT_CLASS(Lamp)

/// A super class's data member, announced by an event of its own.
class Spot : public Lamp
{
    ZT_OBJECT(Spot, Lamp)
public:
    void beforeChanged(int value) { sendEvent<&Self::beforeChanged>(value); }

private:
    static constexpr auto members()
    {
        return zt::members(zt::event<&Self::beforeChanged>(),
                           zt::property<&Self::before>().notify<&Self::beforeChanged>());
    }
};
ZT_CLASS(Spot)

/// Announces with the value before.
class Slider : public ZTBase
{
    ZT_OBJECT(Slider, ZTBase)
public:
    void levelChanged(double now, double before) { sendEvent<&Self::levelChanged>(now, before); }
    void titleChanged(const std::string& now, const std::string& before)
    {
        sendEvent<&Self::titleChanged>(now, before);
    }
    void otherChanged(double now, int channel) { sendEvent<&Self::otherChanged>(now, channel); }

    double level = 1;
    std::string title = "none";
    double other = 0;

private:
    static constexpr auto members()
    {
        return zt::members(zt::event<&Self::levelChanged>(), zt::event<&Self::titleChanged>(),
                           zt::event<&Self::otherChanged>(),
                           zt::property<&Self::level>().notify<&Self::levelChanged>(),
                           zt::property<&Self::title>().notify<&Self::titleChanged>(),
                           zt::property<&Self::other>().notify<&Self::otherChanged>());
    }
};
ZT_CLASS(Slider)

TEST(DataMember, AnnouncesTheValueBeforeToo)
{
    Slider slider;
    const ZTEventListener all(&slider);
    slider.setProperty("level", 2);
    slider.setProperty("level", 2.0);
    slider.setProperty("title", "desk");
    slider.setProperty("title", "lamp");
    slider.setProperty("other", 5.0); // its event tells something else: it is the host's to raise
    using Values = std::vector<ZTVariant>;
    EXPECT_EQ(all.records(), (std::vector<Values>{{ZTVariant(2.0), ZTVariant(1.0)},
                                                  {ZTVariant("desk"), ZTVariant("none")},
                                                  {ZTVariant("lamp"), ZTVariant("desk")}}));
    EXPECT_EQ(slider.other, 5.0);
    // What is announced stays what it was, whatever a handler does.
    ZTBase::subscribe(&slider, &Slider::titleChanged, &slider,
                      [&](const std::string& now, const std::string& before) {
                          slider.title.assign(100, 'x');
                          EXPECT_EQ(before + ">" + now, "lamp>sun");
                      });
    slider.setProperty("title", "sun");
}

template <class Value, class Unit = int>
class Gauge : public ZTBase
{
    ZT_OBJECT(Gauge, ZTBase)
public:
    void changed(const Value& now) { sendEvent<&Self::changed>(now); }
    Value twice() const { return value + value; }
    Value value{};
    Unit unit{};

private:
    static constexpr auto members()
    {
        return zt::members(zt::event<&Self::changed>(),
                           zt::property<&Self::value>().template notify<&Self::changed>(),
                           zt::property<&Self::unit>(), zt::method<&Self::twice>());
    }
};
ZT_CLASS(Gauge, int)
ZT_CLASS(Gauge, std::string, double)

TEST(DataMember, AnnouncesThatASetChangesIt)
{
    Lamp lamp;
    std::vector<double> heard;
    std::string label;
    int changes = 0;
    ZTBase::subscribe(&lamp, &Lamp::brightnessChanged, &lamp, [&](double value) {
        EXPECT_TRUE(value == lamp.brightness || value == lamp.level) << "it is set by then";
        heard.push_back(value);
    });
    ZTBase::subscribe(&lamp, &Lamp::labelChanged, &lamp,
                      [&](const std::string& value) { label = value; });
    ZTBase::subscribe(&lamp, &Lamp::changed, &lamp, [&] { ++changes; });

    lamp.setProperty("brightness", 0.5);
    lamp.setProperty("brightness", 0.5);
    lamp.metaClass()->property("brightness")->set(&lamp, 0.75);
    EXPECT_EQ(heard, (std::vector<double>{0.5, 0.75})) << "an equal value changes nothing";
    lamp.setProperty("label", "hall");
    EXPECT_EQ(label, "hall");
    lamp.setProperty("part", NotEqual{1});
    lamp.setProperty("part", NotEqual{1});
    EXPECT_EQ(changes, 2) << "what cannot be compared is always told";
    ZTBase::subscribe(&lamp, &Lamp::moved, &lamp, [] { FAIL() << "up to the host"; });
    lamp.setProperty("place", 3);
    EXPECT_EQ(lamp.place, 3) << "an event that takes something else is named only";
    EXPECT_NE(support::logOf([&] { lamp.setProperty("brightness", "dark"); }), "");
    EXPECT_EQ(heard.size(), 2U) << "what does not fit changes nothing";
}

TEST(DataMember, OfASuperClassAnnouncesByAnEventOfTheClass)
{
    Spot spot;
    int heard = 0;
    ZTBase::subscribe(&spot, &Spot::beforeChanged, &spot, [&](int value) { heard = value; });
    spot.setProperty("before", 6);
    EXPECT_EQ(heard, 6);
    // An object that has the data member and not the event is refused.
    Lamp lamp;
    EXPECT_NE(support::logOf([&] { spot.metaClass()->property("before")->set(&lamp, 9); }), "");
    EXPECT_EQ(lamp.before, 5);
}

TEST(DataMember, MayEndItsObjectWhileItIsSet)
{
    auto* lamp = new Lamp;
    Trap::victim = lamp;
    lamp->setProperty("trap", Trap());
    EXPECT_EQ(Trap::victim, nullptr);
}

TEST(PlainBase, GivesPropertiesAndMethods)
{
    Lamp lamp;
    lamp.brightness = 0.1;
    const ZTMetaClass& type = *lamp.metaClass();
    EXPECT_TRUE(lamp.setProperty("level", 0.5));
    EXPECT_TRUE(lamp.setProperty("steps", 8));
    EXPECT_EQ(lamp.level, 0.5);
    EXPECT_EQ(lamp.property<double>("level"), 0.5);
    EXPECT_EQ(lamp.property<int>("steps"), 8);
    EXPECT_EQ(lamp.property<int>("serial"), 12);
    EXPECT_FALSE(type.property("serial")->canSet());
    EXPECT_EQ(type.property("level")->propInfoValue(0), "1");
    const ZTMetaInvokable* dim = type.invokable<void(double)>("dim");
    ASSERT_TRUE(dim);
    EXPECT_EQ(dim->parameterName(0), "by");
    EXPECT_EQ(dim->invoke(&lamp), ZTVariant(25.0)) << "the override of the class";
    EXPECT_EQ(lamp.brightness, 0.1) << "nothing beside it was touched";
    EXPECT_NE(type.invokable<void(double)>("first"), dim);

    ZTBase other;
    EXPECT_NE(support::logOf([&] { type.property("level")->set(&other, 0.1); }), "");
    EXPECT_NE(support::logOf([&] { EXPECT_FALSE(dim->invoke(&other, 0.1)); }), "");
}

TEST(PlainBase, StandsBesideConstructors)
{
    const std::unique_ptr<ZTBase> lamp(ztCreate(Lamp::typeMetaClass(), nullptr, 0.7));
    ASSERT_TRUE(lamp);
    EXPECT_EQ(lamp->property<double>("brightness"), 0.7);
    EXPECT_EQ(lamp->property<int>("serial"), 12);
}

TEST(PlainBase, AnnouncesItsDataMember)
{
    Lamp lamp;
    double heard = 0;
    ZTBase::subscribe(&lamp, &Lamp::brightnessChanged, &lamp, [&](double value) { heard = value; });
    lamp.setProperty("level", 0.5);
    EXPECT_EQ(heard, 0.5);
}

TEST(InstanceOfATemplate, IsAClassOfItsOwn)
{
    Gauge<int> whole;
    Gauge<std::string, double> text;
    EXPECT_NE(whole.metaClass(), text.metaClass());
    EXPECT_EQ(whole.metaClass()->typeName(), "struct (anonymous)::Gauge<int,int>");
    EXPECT_EQ(ztMetaType<Gauge<int>*>().metaClass(), &Gauge<int>::typeMetaClass());
    int heard = 0;
    ZTBase::subscribe(&whole, &Gauge<int>::changed, &whole, [&](int value) { heard = value; });
    whole.setProperty("value", 4);
    EXPECT_EQ(heard, 4);
    text.setProperty("value", "ab");
    text.setProperty("unit", 0.5);
    const ZTMetaInvokable* twice = text.metaClass()->invokable<void()>("twice", true);
    EXPECT_EQ(twice->invoke(&text), ZTVariant("abab"));
    EXPECT_EQ(text.unit, 0.5);
}

TEST(UserData, IsLeftAtADeclaredClass)
{
    int word = 0;
    const ZTMetaClass& type = Lamp::typeMetaClass();
    type.setUserData(&word);
    EXPECT_EQ(type.userData(), &word);
    type.setUserData(nullptr);
}
} // namespace
