#pragma once

#include <zintar/zintar.h>

#include <string>
#include <string_view>

/// @file
/// The classes of the host: what stands in a greenhouse. They know nothing of the scene program,
/// which in turn sees them through their descriptors alone.
///
///     ZTBase
///       Room
///       Bed
///       Journal
///       Device
///         Heater
///         Thermostat
///         Sensor
///           MoistureSensor
///       ZTDynamicBase
///         Crop

/// A class whose saved objects get back what their properties can only tell.
class Restorable
{
public:
    virtual ~Restorable() = default;
    virtual void restore(std::string_view property, const ZTVariant& value) = 0;
};

class Room : public ZTBase
{
    ZT_OBJECT(Room, ZTBase)
public:
    enum class Purpose { Growing, Storage, Work };

    int occupants() const { return static_cast<int>(children().size()); }

    double area = 0;
    Purpose purpose = Purpose::Growing;

private:
    static constexpr auto members()
    {
        return zt::members(zt::info("category", "place"),
                           zt::enumeration<Purpose>(
                               zt::enumerators<Purpose::Growing, Purpose::Storage, Purpose::Work>),
                           zt::property<&Self::area>().info("unit", "square metre"),
                           zt::property<&Self::purpose>(), zt::method<&Self::occupants>());
    }
};

/// A crop. Each sort may be given a class of its own at run time, with what only that sort has.
class Crop : public ZTDynamicBase, public Restorable
{
    ZT_OBJECT(Crop, ZTDynamicBase)
public:
    enum class Stage { Seedling, Growing, Ripe };

    int daysToRipen = 60;
    int age() const { return m_age; }
    Stage stage() const;

    /// Whoever hears of `ripened` may delete the crop.
    Stage grow(int days);
    void restore(std::string_view property, const ZTVariant& value) override;

    void ripened(int age) { sendEvent<&Self::ripened>(age); }

private:
    int m_age = 0;

    static constexpr auto members()
    {
        return zt::members(
            zt::info("category", "plant"),
            zt::enumeration<Stage>(zt::enumerators<Stage::Seedling, Stage::Growing, Stage::Ripe>),
            zt::event<&Self::ripened>(), zt::property<&Self::daysToRipen>().info("unit", "day"),
            zt::property<&Self::age>().info("unit", "day"), zt::property<&Self::stage>(),
            zt::method<&Self::grow>().parameters("days").defaults(1));
    }
};

class Bed : public ZTBase
{
    ZT_OBJECT(Bed, ZTBase)
public:
    std::string soil;

    /// Takes the ripe crops out of the bed, which deletes them, and tells how many they were.
    int harvest();

    void harvested(int crops) { sendEvent<&Self::harvested>(crops); }

private:
    static constexpr auto members()
    {
        return zt::members(zt::info("category", "place"), zt::event<&Self::harvested>(),
                           zt::property<&Self::soil>(), zt::method<&Self::harvest>());
    }
};

class Device : public ZTBase
{
    ZT_OBJECT(Device, ZTBase)
public:
    bool on() const { return m_on; }
    void setOn(bool on);
    std::string maker;

    void turnOn() { setOn(true); }
    void turnOff() { setOn(false); }
    bool toggle();

    void switched(bool on) { sendEvent<&Self::switched>(on); }

private:
    bool m_on = false;

    static constexpr auto members()
    {
        return zt::members(zt::info("category", "device"), zt::event<&Self::switched>(),
                           zt::property<&Self::on, &Self::setOn>().notify<&Self::switched>(),
                           zt::property<&Self::maker>(), zt::method<&Self::turnOn>(),
                           zt::method<&Self::turnOff>(), zt::method<&Self::toggle>());
    }
};

class Heater : public Device
{
    ZT_OBJECT(Heater, Device)
public:
    static constexpr int highestLevel = 3;

    int level() const { return m_level; }
    /// Also turns the heater on or off.
    void setLevel(int level);
    double power() const { return on() ? 750.0 * m_level : 0; }

    void levelChanged(int level) { sendEvent<&Self::levelChanged>(level); }

private:
    int m_level = 0;

    static constexpr auto members()
    {
        return zt::members(
            zt::info("category", "climate"), zt::event<&Self::levelChanged>(),
            zt::property<&Self::level, &Self::setLevel>().notify<&Self::levelChanged>(),
            zt::property<&Self::power>().info("unit", "watt"), zt::method<&Self::setLevel>());
    }
};

class Thermostat : public Device
{
    ZT_OBJECT(Thermostat, Device)
public:
    enum class Mode { Off, Heat, Cool };

    double target() const { return m_target; }
    void setTarget(double celsius);
    double tolerance = 0.5;
    Mode mode = Mode::Off;

    /// Takes any measurement and heeds those of the temperature.
    void regulate(const std::string& quantity, double value);
    /// Sets mode and target together; refuses a target that would harm the plants.
    bool program(Mode newMode, double celsius);

    void targetChanged(double celsius) { sendEvent<&Self::targetChanged>(celsius); }
    void heatDemanded(int level) { sendEvent<&Self::heatDemanded>(level); }
    void satisfied() { sendEvent<&Self::satisfied>(); }

private:
    double m_target = 18;

    static constexpr auto members()
    {
        return zt::members(
            zt::info("category", "climate"),
            zt::enumeration<Mode>(zt::enumerators<Mode::Off, Mode::Heat, Mode::Cool>),
            zt::event<&Self::targetChanged>(), zt::event<&Self::heatDemanded>(),
            zt::event<&Self::satisfied>(),
            zt::property<&Self::target, &Self::setTarget>().notify<&Self::targetChanged>().info(
                "unit", "celsius"),
            zt::property<&Self::tolerance>().info("unit", "kelvin"), zt::property<&Self::mode>(),
            zt::method<&Self::regulate>(),
            zt::method<&Self::program>().parameters("mode", "celsius"));
    }
};

class Sensor : public Device, public Restorable
{
    ZT_OBJECT(Sensor, Device)
public:
    std::string quantity;
    double offset = 0;
    double reading() const { return m_reading; }

    /// Takes a raw value and gives the corrected one.
    double measure(double raw);
    void restore(std::string_view property, const ZTVariant& value) override;

    void measured(const std::string& what, double value)
    {
        sendEvent<&Self::measured>(what, value);
    }

private:
    double m_reading = 0;

    static constexpr auto members()
    {
        return zt::members(zt::info("category", "measurement"), zt::event<&Self::measured>(),
                           zt::property<&Self::quantity>(),
                           zt::property<&Self::offset>().info("meaning", "added to a raw value"),
                           zt::property<&Self::reading>().notify<&Self::measured>(),
                           zt::method<&Self::measure>());
    }
};

class MoistureSensor : public Sensor
{
    ZT_OBJECT(MoistureSensor, Sensor)
public:
    MoistureSensor() { quantity = "moisture"; }

    double dryBelow = 30;

    /// Measures and, where the soil is too dry, says so.
    bool check(double raw);

    void dry() { sendEvent<&Self::dry>(); }

private:
    static constexpr auto members()
    {
        return zt::members(zt::event<&Self::dry>(),
                           zt::property<&Self::dryBelow>().info("unit", "percent"),
                           zt::method<&Self::check>());
    }
};

/// Keeps what it is told, one line for each thing.
class Journal : public ZTBase, public Restorable
{
    ZT_OBJECT(Journal, ZTBase)
public:
    int capacity = 100;
    int entries() const { return m_entries; }
    std::string last() const { return m_last; }

    void note(const std::string& text);
    void noteSwitch(bool on);
    void noteLevel(int level);
    void noteReading(const std::string& quantity, double value);
    void noteArrival(ZTBase* newcomer);
    int clear();
    void restore(std::string_view property, const ZTVariant& value) override;

    void full() { sendEvent<&Self::full>(); }

private:
    int m_entries = 0;
    std::string m_last;

    static constexpr auto members()
    {
        return zt::members(zt::info("category", "record"), zt::event<&Self::full>(),
                           zt::property<&Self::capacity>().info("unit", "entry"),
                           zt::property<&Self::entries>(), zt::property<&Self::last>(),
                           zt::method<&Self::note>(), zt::method<&Self::noteSwitch>(),
                           zt::method<&Self::noteLevel>(), zt::method<&Self::noteReading>(),
                           zt::method<&Self::noteArrival>(), zt::method<&Self::clear>());
    }
};
