#include "support/hostclasses.h"

#include <cstdint>

namespace host
{
/// The top of three levels.
class Device : public ZTBase
{
    ZT_OBJECT(Device, ZTBase)
public:
    void renamed(const std::string& name) { sendEvent<&Self::renamed>(name); }
    void forgotten() { sendEvent<&Self::forgotten>(); }
    void literal(const char* text) { sendEvent<&Self::renamed>(text); }

private:
    static constexpr auto members()
    {
        return zt::members(zt::info("vendor", "acme"), zt::property<&Self::m_label>().as("label"),
                           zt::event<&Self::renamed>(), zt::method<&Self::reset>());
    }
    void reset() { m_label = "none"; }
    std::string m_label = "new";
};
ZT_CLASS(Device)

/// One member of each kind.
class Heater : public Device
{
    ZT_OBJECT(Heater, Device)
public:
    enum class Mode { Off = -1, Heat = 5 };
    int level() const { return m_level; }
    void setLevel(int level) { levelChanged(m_level = level); }
    void levelChanged(int level) { sendEvent<&Self::levelChanged>(level); }
    double boost(int minutes, double factor) { return (m_level += minutes) * factor; }

private:
    static constexpr auto members()
    {
        return zt::members(
            zt::info("vendor", "thermo"),
            zt::enumeration<Mode>(zt::enumerators<Mode::Off, Mode::Heat>),
            zt::property<&Self::level, &Self::setLevel>().notify<&Self::levelChanged>().info(
                "unit", "watt"),
            zt::event<&Self::levelChanged>(),
            zt::method<&Self::boost>().access(ZTAccessSpecifier::Protected));
    }
    int m_level = 1;
};
ZT_CLASS(Heater)

/// The same as `Heater`, with a table that somebody wrote by hand.
class HandHeater : public Device
{
public:
    static const ZTMetaClass& typeMetaClass();
    const ZTMetaClass* metaClass() const override { return &typeMetaClass(); }
    void setLevel(int value)
    {
        level = value;
        sendEvent(6, {ZTVariant(value)});
    }
    int level = 1;
};

/// The third level; its property is announced by an event of the first.
class SmartHeater : public Heater
{
    ZT_OBJECT(SmartHeater, Heater)
    static constexpr auto members()
    {
        return zt::members(zt::property<&Self::spare>().notify<&Device::renamed>());
    }
    const int spare = 0;
};
ZT_CLASS(SmartHeater)
} // namespace host

namespace byhand
{
using namespace zt::detail;
using host::HandHeater;

HandHeater* heaterIn(const ZTVariant& object) { return ztVariantValue<HandHeater*>(object); }

ZTVariant getLevel(const ZTVariant& object)
{
    return ZTVariant(ztVariantValue<const HandHeater*>(object)->level);
}
ZTVariant setLevel(const ZTVariant& object, const ZTVariant& value)
{
    int level = 0;
    if (retrieve<int>(value, level))
        heaterIn(object)->setLevel(level);
    return {};
}
ZTVariant levelChanged(const ZTVariant& object, const ZTArgumentArray& arguments)
{
    if (HandHeater* heater = heaterIn(object))
        EventRaiser::raise(*heater, 6, {ZTVariant(ztVariantValue<int>(arguments[0]))});
    return {};
}
ZTVariant boost(const ZTVariant& object, const ZTArgumentArray& arguments)
{
    HandHeater* heater = heaterIn(object);
    heater->level += ztVariantValue<int>(arguments[0]);
    return ZTVariant(heater->level * ztVariantValue<double>(arguments[1]));
}
int bySignature(const ZTMetaClass*, std::string_view name, bool isConst,
                const std::type_index& signature)
{
    if (!isConst && name == "levelChanged" && signature == typeid(void (*)(int)))
        return 0;
    return !isConst && name == "boost" && signature == typeid(void (*)(int, double)) ? 1 : -1;
}

const ZTStaticMetaClassInfoData vendor("vendor", "thermo");
const std::string_view modeNames[] = {"Off", "Heat"};
const int modeValues[] = {-1, 5};
const ZTStaticMetaEnumData mode("Mode", 2, modeNames, modeValues);
const ZTPropertyInfo units[] = {{"unit", "watt"}};
ZTStaticMetaPropertyData level("level", &getLevel, &setLevel, 1, units);
ZTStaticMetaInvokableData changed("levelChanged", false, 1, &levelChanged,
                                  ZTAccessSpecifier::Public);
ZTStaticMetaInvokableData boosted("boost", false, 2, &boost, ZTAccessSpecifier::Protected);
const ZTStaticMetaClassInfoData* const infos[] = {&vendor};
const ZTStaticMetaEnumData* const enums[] = {&mode};
const ZTStaticMetaPropertyData* const properties[] = {&level};
const ZTStaticMetaInvokableData* const invokables[] = {&changed, &boosted};
ZTStaticMetaClassData table(1, infos, 1, enums, 1, properties, 2, invokables, nullptr,
                            &bySignature);

/// What the constructors of the records leave open.
void fill(const ZTMetaClass& metaClass)
{
    const ZTMetaClass& super = host::Device::typeMetaClass();
    table.superClass = &super;
    table.classInfoOffset = super.classInfoCount();
    table.enumOffset = super.enumCount();
    table.propertyOffset = super.propertyCount();
    table.invokableOffset = super.invokableCount();
    table.typeName = ztTypeName<HandHeater>();
    table.metaType = &registerType<HandHeater*>(&metaClass);
    registerType<const HandHeater*>(&metaClass);
    static const ZTMetaType* const types[] = {&ztMetaType<int>(), &ztMetaType<double>()};
    level.metaType = types[0];
    level.changeEventIndex = changed.index = 6;
    level.changeEvent = metaClass.invokable(6U);
    changed.isEvent = true;
    changed.returnMetaType = &ztMetaType<void>();
    boosted.returnMetaType = types[1];
    changed.parameterMetaTypes = boosted.parameterMetaTypes = types;
    boosted.index = 7;
}
} // namespace byhand

const ZTMetaClass& host::HandHeater::typeMetaClass()
{
    static const std::unique_ptr<ZTMetaClass> metaClass = [] {
        auto made = zt::detail::createStaticMetaClass(&byhand::table);
        byhand::fill(*made);
        return made;
    }();
    return *metaClass;
}

namespace
{
using namespace host;

/// All that the class itself declares, in its order.
std::string describe(const ZTMetaClass& type)
{
    std::string text = ": " + std::string(type.superClass()->typeName()) + "\n";
    auto line = [&text](auto... parts) { ((text += std::string(parts)), ...) += "\n"; };
    for (unsigned int i = type.classInfoOffset(); i < type.classInfoCount(); ++i)
        line("info ", type.classInfo(i)->key(), " ", type.classInfo(i)->value());
    for (unsigned int i = type.enumOffset(); i < type.enumCount(); ++i) {
        const ZTMetaEnum& one = *type.metaEnum(i);
        line("enum ", one.name());
        for (unsigned int e = 0; e < one.count(); ++e)
            line("  ", one.enumerator(e), " ", std::to_string(one.value(e)));
    }
    for (unsigned int i = type.propertyOffset(); i < type.propertyCount(); ++i) {
        const ZTMetaProperty& one = *type.property(i);
        line("property ", one.metaType().name(), " ", one.name(), one.canGet() ? " get" : "",
             one.canSet() ? " set" : "", " ", std::to_string(one.changeEventIndex()), " ",
             one.changeEvent() ? one.changeEvent()->name() : "-");
        for (unsigned int e = 0; e < one.propInfoCount(); ++e)
            line("  ", one.propInfoKey(e), " ", one.propInfoValue(e));
    }
    for (unsigned int i = type.invokableOffset(); i < type.invokableCount(); ++i)
        line(textOf(*type.invokable(i)), " ",
             std::to_string(int(type.invokable(i)->accessSpecifier())));
    return text;
}

struct Source {
    std::string name;
    std::function<std::unique_ptr<ZTBase>()> make;
};

/// Runs on the declared class and on the one written by hand.
class HeaterClass : public testing::TestWithParam<Source>
{
protected:
    std::unique_ptr<ZTBase> heater = GetParam().make();
    const ZTMetaClass& type = *heater->metaClass();
    Diary diary;
    ZTBase observer;
};

TEST_P(HeaterClass, TellsItsMembers)
{
    EXPECT_EQ(describe(type), ": struct host::Device\n"
                              "info vendor thermo\n"
                              "enum Mode\n"
                              "  Off -1\n"
                              "  Heat 5\n"
                              "property int level get set 6 levelChanged\n"
                              "  unit watt\n"
                              "event 6 void levelChanged(int) 2\n"
                              "method 7 double boost(int, double) 1\n");
    const std::string name = "struct host::" + GetParam().name;
    EXPECT_EQ(type.typeName(), name);
    EXPECT_EQ(ztMetaType(name + "*").metaClass(), &type);
    EXPECT_EQ(ztMetaType("const " + name + "*").metaClass(), &type);
    EXPECT_EQ(type.classInfo("vendor")->value(), "thermo");
    EXPECT_EQ(type.classInfo(0U)->value(), "acme");
}

TEST_P(HeaterClass, FindsInvokablesBySignature)
{
    EXPECT_EQ((type.indexOfInvokable<void(int, double)>("boost")), 7);
    EXPECT_EQ((type.indexOfInvokable<void(int, double)>("boost", true)), -1);
    EXPECT_EQ((type.indexOfInvokable<void(int)>("boost")), -1);
    EXPECT_EQ(type.indexOfInvokable<void(const std::string&)>("renamed"), 4);
    EXPECT_EQ(type.indexOfInvokable<void(ZTBase*)>("destroyed"), 0);
}

TEST_P(HeaterClass, ReadsAndWritesProperties)
{
    ZTBase::subscribe(heater.get(), type.property("level")->changeEvent(), &observer,
                      [&](int level) { diary.add(std::to_string(level)); });
    EXPECT_TRUE(heater->setProperty("level", 30));
    EXPECT_TRUE(heater->setProperty("label", "kitchen"));
    EXPECT_EQ(heater->property("level"), ZTVariant(30));
    EXPECT_EQ(heater->property("label"), ZTVariant("kitchen"));
    EXPECT_NE(support::logOf([&] { heater->setProperty("level", "high"); }), "");
    EXPECT_EQ(heater->property("level"), ZTVariant(30));
    EXPECT_EQ(diary.take(), "30");
}

TEST_P(HeaterClass, CallsMethodsAndRaisesEvents)
{
    ZTBase::subscribe(heater.get(), type.invokable(6U), &observer,
                      [&](int level) { diary.add(std::to_string(level)); });
    EXPECT_EQ(type.invokable(7U)->invoke(heater.get(), 4, 0.5), ZTVariant(2.5));
    EXPECT_FALSE(type.invokable(6U)->invoke(heater.get(), 8).isValid());
    type.invokable(5U)->invoke(heater.get());
    EXPECT_EQ(heater->property("label"), ZTVariant("none"));
    EXPECT_EQ(diary.take(), "8");
}

INSTANTIATE_TEST_SUITE_P(
    All, HeaterClass,
    testing::Values(Source{"Heater", [] { return std::make_unique<Heater>(); }},
                    Source{"HandHeater", [] { return std::make_unique<HandHeater>(); }}),
    [](const auto& source) { return source.param.name; });

TEST(Declare, CountsOnOverThreeLevels)
{
    const ZTMetaClass& smart = SmartHeater::typeMetaClass();
    EXPECT_EQ(describe(smart), ": struct host::Heater\nproperty int spare get 4 renamed\n");
    EXPECT_EQ(smart.invokableCount(), 8U);
    EXPECT_EQ(smart.propertyCount(), 3U);
    auto boost = &SmartHeater::boost;
    EXPECT_EQ(smart.indexOfInvokable(&boost), 7);
    EXPECT_EQ(Device::typeMetaClass().indexOfInvokable(&boost), -1);

    SmartHeater object;
    Diary diary;
    Hearer hearer("h", diary);
    ZTBase::subscribe(&object, &SmartHeater::renamed, &hearer, &Hearer::hearText);
    ZTBase::subscribe(&object, &Heater::levelChanged, &hearer, &Hearer::hear);
    object.literal("text");
    object.literal(nullptr);
    object.setProperty("level", 3);
    EXPECT_EQ(diary.take(), "h:text h: h:3");
}

TEST(Declare, EventThatIsNotListedIsToldWhenItIsRaised)
{
    Device device;
    EXPECT_LOGS("Zintar Error: Cannot send event with out of bounds index -1 on object of type "
                "struct host::Device.\n",
                [&] { device.forgotten(); });
}
} // namespace

namespace host
{
enum class Colour : std::uint8_t { Red = 1, Blue = 200 };

/// Members of many shapes, and another base.
class Mixed : public Speaker, public std::string
{
    ZT_OBJECT(Mixed, Speaker)
public:
    int add(int a) { return a + 1; }
    int add(int a, int b) const { return a + b; }
    void moved(int x) { sendEvent<static_cast<void (Self::*)(int)>(&Self::moved)>(x); }
    void moved(const std::string& to)
    {
        sendEvent<static_cast<void (Self::*)(const std::string&)>(&Self::moved)>(to);
    }
    Colour mix(Colour one) const noexcept { return one == Colour::Red ? Colour::Blue : one; }
    const char* echo(const char* text) { return text; }
    ZTVariant pass(const ZTVariant& value) { return value; }
    std::int64_t big = 1LL << 40;
    Colour colour = Colour::Red;

private:
    static constexpr auto members()
    {
        using Add = int (Self::*)(int);
        using AddBoth = int (Self::*)(int, int) const;
        using MovedBy = void (Self::*)(int);
        using MovedTo = void (Self::*)(const std::string&);
        return zt::members(
            zt::enumeration<Colour>(zt::enumerators<Colour::Red, Colour::Blue>).as("Paint"),
            zt::property<&Self::big>(), zt::property<&Self::colour>(),
            zt::method<static_cast<Add>(&Self::add)>(),
            zt::method<static_cast<AddBoth>(&Self::add)>().as("sum"),
            zt::event<static_cast<MovedBy>(&Self::moved)>(),
            zt::event<static_cast<MovedTo>(&Self::moved)>(), zt::method<&Self::mix>(),
            zt::method<&Self::echo>(), zt::method<&Self::pass>());
    }
};
ZT_CLASS(Mixed)
} // namespace host

namespace
{
TEST(Declare, MembersOfManyShapes)
{
    const std::string text = ztMetaType<std::string>().name(), colour = "enum host::Colour";
    EXPECT_EQ(describe(Mixed::typeMetaClass()),
              ": struct host::Speaker\n"
              "enum Paint\n  Red 1\n  Blue 200\n"
              "property " +
                  ztMetaType<long long>().name() +
                  " big get set -1 -\n"
                  "property " +
                  colour +
                  " colour get set -1 -\n"
                  "method 8 int add(int) 2\n"
                  "method 9 int sum(int, int) const 2\n"
                  "event 10 void moved(int) 2\n"
                  "event 11 void moved(" +
                  text +
                  ") 2\n"
                  "method 12 " +
                  colour + " mix(" + colour +
                  ") const 2\n"
                  "method 13 " +
                  text + " echo(" + text +
                  ") 2\n"
                  "method 14 struct ZTVariant pass(struct ZTVariant) 2\n");

    Mixed object;
    auto call = [&](unsigned int index, auto... arguments) {
        return object.metaClass()->invokable(index)->invoke(&object, arguments...);
    };
    EXPECT_EQ(call(8, 1), ZTVariant(2));
    EXPECT_EQ(call(9, 1, 5), ZTVariant(6));
    EXPECT_EQ(call(12, Colour::Red), ZTVariant(Colour::Blue));
    EXPECT_EQ(call(13, "twice"), ZTVariant("twice"));
    EXPECT_EQ(call(14, 2.5), ZTVariant(2.5));
    EXPECT_TRUE(object.setProperty("big", std::int64_t(5)));
    EXPECT_TRUE(object.setProperty("colour", Colour::Blue));
    EXPECT_EQ(object.property<std::int64_t>("big"), 5);
    EXPECT_EQ(object.colour, Colour::Blue);
}

TEST(Declare, OverloadedEventsAreTwo)
{
    Mixed object;
    Diary diary;
    Hearer hearer("h", diary);
    using MovedTo = void (Mixed::*)(const std::string&);
    ZTBase::subscribe(&object, static_cast<MovedTo>(&Mixed::moved), &hearer, &Hearer::hearText);
    ZTBase::subscribe(&object, object.metaClass()->invokable<void(int)>("moved"), &hearer,
                      &Hearer::hear);
    object.moved(5);
    object.moved("home");
    EXPECT_EQ(diary.take(), "h:5 h:home");
}
} // namespace
