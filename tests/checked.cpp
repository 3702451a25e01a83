#include "support/logs.h"

#include <zintar/zintar.h>

#include <optional>

namespace
{
class Part : public ZTBase
{
    ZT_OBJECT(Part, ZTBase)
public:
    explicit Part(ZTBase* parent = nullptr) : ZTBase(parent) {}

private:
    static constexpr auto members() { return zt::members(); }
};

class Wheel : public Part
{
    ZT_OBJECT(Wheel, Part)
public:
    using Part::Part;

private:
    static constexpr auto members() { return zt::members(); }
};

class Engine : public Part
{
    ZT_OBJECT(Engine, Part)
public:
    using Part::Part;
    enum class Mode { Off, Eco, Sport };

    Mode mode = Mode::Off;
    double power = 1.5;
    Wheel* wheel = nullptr;
    ZTVariant anything;
    int serial() const { return 7; }

    std::string call;
    void tune(int) { call = "tune(int)"; }
    void tune(double) { call = "tune(double)"; }
    void attach(Part*) { call = "attach(Part*)"; }
    void attach(Wheel*) { call = "attach(Wheel*)"; }
    void mix(int, double) { call = "mix(int, double)"; }
    void mix(double, int) { call = "mix(double, int)"; }
    std::string run(int minutes, double level) const
    {
        return std::to_string(minutes) + "/" + std::to_string(static_cast<int>(level * 10));
    }
    void run(int) { call = "run(int)"; }
    void swap(int) { call = "swap"; }
    void swap(int) const {}

private:
    static constexpr auto members()
    {
        return zt::members(
            zt::enumeration<Mode>(zt::enumerators<Mode::Off, Mode::Eco, Mode::Sport>),
            zt::property<&Self::mode>(), zt::property<&Self::power>(), zt::property<&Self::wheel>(),
            zt::property<&Self::anything>(), zt::property<&Self::serial>(),
            zt::method<static_cast<void (Self::*)(int)>(&Self::tune)>(),
            zt::method<static_cast<void (Self::*)(double)>(&Self::tune)>(),
            zt::method<static_cast<void (Self::*)(Part*)>(&Self::attach)>(),
            zt::method<static_cast<void (Self::*)(Wheel*)>(&Self::attach)>(),
            zt::method<static_cast<void (Self::*)(int, double)>(&Self::mix)>(),
            zt::method<static_cast<void (Self::*)(double, int)>(&Self::mix)>(),
            zt::method<static_cast<std::string (Self::*)(int, double) const>(&Self::run)>()
                .parameters("minutes", "level")
                .defaults(0.5),
            zt::method<static_cast<void (Self::*)(int)>(&Self::run)>(),
            zt::method<static_cast<void (Self::*)(int)>(&Self::swap)>(),
            zt::method<static_cast<void (Self::*)(int) const>(&Self::swap)>());
    }
};
} // namespace

ZT_CLASS(Part)
ZT_CLASS(Wheel)
ZT_CLASS(Engine)

namespace
{
class Checked : public testing::Test
{
protected:
    Checked()
    {
        ztRegisterConverter([](const std::string& text) -> std::optional<double> {
            return text == "two" ? std::optional(2.0) : std::nullopt;
        });
        ztRegisterConverter([](int whole) { return static_cast<double>(whole); });
    }
    /// What is checked logs nothing of its own.
    ~Checked() override { EXPECT_EQ(log.text(), ""); }

    ZTLogCapture log;
    Engine engine;
};

TEST_F(Checked, SetTakesWhatFitsAndConvertsOnce)
{
    EXPECT_TRUE(ztTrySet(&engine, "power", 2.5));
    EXPECT_EQ(engine.power, 2.5);
    EXPECT_TRUE(ztTrySet(&engine, "power", "two"));
    EXPECT_EQ(engine.power, 2.0);
    EXPECT_TRUE(ztTrySet(&engine, "mode", "Eco"));
    EXPECT_EQ(engine.mode, Engine::Mode::Eco);
    EXPECT_TRUE(ztTrySet(&engine, "anything", 5));
    EXPECT_TRUE(engine.anything == ZTVariant(5));
    engine.setProperty("note", 1, true);
    EXPECT_TRUE(ztTrySet(&engine, "note", "text"));
    EXPECT_EQ(engine.property<std::string>("note"), "text");
}

TEST_F(Checked, SetSaysWhatDoesNotFitAndLeavesWhatWasThere)
{
    engine.setProperty("note", 1, true);
    const struct {
        const char* name;
        ZTVariant value;
        const char* error;
    } refused[] = {
        {"powr", ZTVariant(1.0),
         "Engine has no property \"powr\" (did you mean \"power\"?); it has anything, mode, note, "
         "power, serial, wheel"},
        {"colour", ZTVariant(1.0),
         "Engine has no property \"colour\"; it has anything, mode, note, power, serial, wheel"},
        {"serial", ZTVariant(1), "Engine.serial can only be read"},
        {"power", ZTVariant("warm\n"), "\"warm?\" does not fit Engine.power of type double"},
        {"power", ZTVariant(), "no value does not fit Engine.power of type double"},
        {"mode", ZTVariant("Boil"),
         "\"Boil\" does not fit Engine.mode of type Engine::Mode (Off, Eco, Sport)"},
    };
    for (const auto& one : refused)
        EXPECT_EQ(ztTrySet(&engine, one.name, one.value).error(), one.error);
    EXPECT_EQ(ztTrySet(&engine, "power", std::string(70, 'x')).error(),
              "\"" + std::string(60, 'x') + "...\" does not fit Engine.power of type double");
    EXPECT_EQ(engine.power, 1.5);
    EXPECT_EQ(ztTrySet(nullptr, "power", 1.0).error(), "there is no object");
}

TEST_F(Checked, APointerFitsByTheObjectThatItPointsTo)
{
    Wheel wheel;
    Part part;
    EXPECT_TRUE(ztTrySet(&engine, "wheel", static_cast<ZTBase*>(&wheel)));
    EXPECT_EQ(engine.wheel, &wheel);
    EXPECT_EQ(ztTrySet(&engine, "wheel", static_cast<ZTBase*>(&part)).error(),
              "a Part does not fit Engine.wheel of type Wheel*");
    EXPECT_EQ(ztTrySet(&engine, "wheel", &engine).error(),
              "an Engine does not fit Engine.wheel of type Wheel*");
    const Wheel& unchanging = wheel;
    EXPECT_EQ(ztTrySet(&engine, "wheel", &unchanging).error(),
              "a const Wheel does not fit Engine.wheel of type Wheel*");
    EXPECT_EQ(ztTryCall(&engine, "attach", &unchanging).error(),
              "a const Wheel does not fit parameter 1 of attach of type Wheel*");
    EXPECT_TRUE(ztTryConvert(ZTVariant(&unchanging), ztMetaType<const Part*>()));
    EXPECT_EQ(engine.wheel, &wheel);
    EXPECT_TRUE(ztTrySet(&engine, "wheel", nullptr));
    EXPECT_EQ(engine.wheel, nullptr);
    EXPECT_EQ(*ztTryGet<ZTBase*>(&engine, "wheel"), nullptr);
}

TEST_F(Checked, GetGivesTheValueAsTheTypeThatIsAskedFor)
{
    EXPECT_EQ(*ztTryGet<double>(&engine, "serial"), 7.0);
    EXPECT_EQ(*ztTryGet<ZTVariant>(&engine, "power"), ZTVariant(1.5));
    EXPECT_EQ(ztTryGet<int>(&engine, "power").error(), "power: 1.5 does not fit type int");
    EXPECT_EQ(ztTryGet<int>(&engine, "speed").valueOr(3), 3);
    EXPECT_EQ(ztTryGet(&engine, "speed").error(),
              "Engine has no property \"speed\"; it has anything, mode, power, serial, wheel");
}

TEST_F(Checked, ACallTakesTheOverloadThatFitsBest)
{
    Wheel own;
    Part part;
    const struct {
        ZTOutcome<ZTVariant> (*run)(Engine& engine);
        const char* called;
    } cases[] = {
        {[](Engine& e) { return ztTryCall(&e, "tune", 1); }, "tune(int)"},
        {[](Engine& e) { return ztTryCall(&e, "tune", 1.0); }, "tune(double)"},
        {[](Engine& e) { return ztTryCall(&e, "tune", "two"); }, "tune(double)"},
        {[](Engine& e) { return ztTryCall(&e, "run", 1); }, "run(int)"}, // needs no default
        {[](Engine& e) { return ztTryCall(&e, "swap", 1); }, "swap"},    // the one not const
    };
    for (const auto& one : cases) {
        engine.call.clear();
        const auto outcome = one.run(engine);
        EXPECT_TRUE(outcome) << outcome.error();
        EXPECT_EQ(engine.call, one.called);
    }
    EXPECT_TRUE(ztTryCall(&engine, "attach", &own));
    EXPECT_EQ(engine.call, "attach(Wheel*)");
    EXPECT_TRUE(ztTryCall(&engine, "attach", &part));
    EXPECT_EQ(engine.call, "attach(Part*)");
    EXPECT_EQ(ztVariantValue<std::string>(*ztTryCall(&engine, "run", 3, 0.1)), "3/1");
}

TEST_F(Checked, ACallThatFitsNothingOrTwoIsRefused)
{
    EXPECT_EQ(ztTryCall(&engine, "mix", 1, 1).error(),
              "Engine.mix(double, int) and mix(int, double) fit these arguments equally well");
    EXPECT_EQ(ztTryCall(&engine, "run").error(),
              "Engine.run(int) cannot be called with 0 arguments");
    EXPECT_EQ(ztTryCall(&engine, "run", 1, "hot").error(),
              "\"hot\" does not fit parameter \"level\" of run of type double");
    EXPECT_EQ(ztTryCall(&engine, "tune", "hot").error(),
              "\"hot\" does not fit parameter 1 of tune of type double");
    EXPECT_EQ(ztTryCall(&engine, "tun", 1).error(),
              "Engine has no method \"tun\" (did you mean \"tune\"?); it has attach, childAdded, "
              "childRemoved, destroyed, dynamicPropertyChanged, mix, run, swap, tune");
    EXPECT_EQ(engine.call, "");
}

TEST_F(Checked, DescriptorsOfAnotherClassAreRefused)
{
    const ZTMetaProperty& power = *engine.metaClass()->property("power");
    const ZTMetaInvokable& tune = *engine.metaClass()->invokable<void(int)>("tune");
    Wheel wheel;
    EXPECT_TRUE(ztTrySet(&engine, power, 3.0));
    EXPECT_TRUE(ztTryCall(&engine, tune, 3));
    EXPECT_EQ(ztTrySet(&wheel, power, 3.0).error(),
              "the property \"power\" is of another class than Wheel");
    EXPECT_EQ(ztTryGet(&wheel, power).error(),
              "the property \"power\" is of another class than Wheel");
    EXPECT_EQ(ztTryCall(&wheel, tune, 3).error(),
              "the method \"tune\" is of another class than Wheel");
}

TEST_F(Checked, AConverterThatEndsTheObjectStopsTheSet)
{
    static Engine* victim = nullptr;
    victim = new Engine;
    struct Bomb {};
    ztRegisterConverter([](const Bomb&) {
        delete victim;
        return 1.0;
    });
    EXPECT_EQ(ztTrySet(victim, "power", Bomb()).error(),
              "the object ended while the value was converted");
    victim = new Engine;
    EXPECT_EQ(ztTryCall(victim, "run", 1, Bomb()).error(),
              "the object ended while the arguments were converted");
}
} // namespace
