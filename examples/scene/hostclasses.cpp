#include "hostclasses.h"

#include <algorithm>
#include <cmath>
#include <utility>

ZT_CLASS(Room)
ZT_CLASS(Bed)
ZT_CLASS(Crop)
ZT_CLASS(Device)
ZT_CLASS(Heater)
ZT_CLASS(Thermostat)
ZT_CLASS(Sensor)
ZT_CLASS(MoistureSensor)
ZT_CLASS(Journal)

Crop::Stage Crop::stage() const
{
    if (m_age >= daysToRipen)
        return Stage::Ripe;
    return m_age * 4 < daysToRipen ? Stage::Seedling : Stage::Growing;
}

Crop::Stage Crop::grow(int days)
{
    bool wasRipe = stage() == Stage::Ripe;
    m_age += std::clamp(days, 0, 1'000'000 - m_age);
    Stage now = stage();
    if (now == Stage::Ripe && !wasRipe)
        ripened(m_age);
    return now;
}

void Crop::restore(std::string_view property, const ZTVariant& value)
{
    if (property == "age")
        m_age = std::clamp(ztVariantValue<int>(value), 0, 1'000'000);
}

int Bed::harvest()
{
    auto isRipe = [](ZTBase* child) {
        auto* crop = dynamic_cast<Crop*>(child);
        return crop && crop->stage() == Crop::Stage::Ripe;
    };
    // Looked for anew each time: whoever hears of a crop's end may change the bed.
    int crops = 0;
    for (;; ++crops) {
        auto ripe = std::find_if(children().begin(), children().end(), isRipe);
        if (ripe == children().end())
            break;
        delete *ripe;
    }
    if (crops > 0)
        harvested(crops);
    return crops;
}

void Device::setOn(bool on)
{
    if (m_on == on)
        return;
    m_on = on;
    switched(on);
}

bool Device::toggle()
{
    bool on = !m_on;
    setOn(on);
    return on;
}

void Heater::setLevel(int level)
{
    level = std::clamp(level, 0, highestLevel);
    bool changes = std::exchange(m_level, level) != level;
    setOn(level > 0);
    if (changes)
        levelChanged(level);
}

void Thermostat::setTarget(double celsius)
{
    if (m_target == celsius)
        return;
    m_target = celsius;
    targetChanged(celsius);
}

void Thermostat::regulate(const std::string& quantity, double value)
{
    if (mode != Mode::Heat || quantity != "temperature")
        return;
    double missing = m_target - value;
    if (missing > tolerance)
        heatDemanded(static_cast<int>(std::clamp(std::ceil(missing / 2), 1.0, 3.0)));
    else
        satisfied();
}

bool Thermostat::program(Mode newMode, double celsius)
{
    if (celsius < 5 || celsius > 35)
        return false;
    mode = newMode;
    setTarget(celsius);
    return true;
}

double Sensor::measure(double raw)
{
    double value = raw + offset;
    m_reading = value;
    measured(quantity, value);
    return value;
}

void Sensor::restore(std::string_view property, const ZTVariant& value)
{
    if (property == "reading")
        m_reading = ztVariantValue<double>(value);
}

bool MoistureSensor::check(double raw)
{
    bool isDry = measure(raw) < dryBelow;
    if (isDry)
        dry();
    return isDry;
}

void Journal::note(const std::string& text)
{
    if (m_entries >= capacity)
        return;
    m_last = text;
    if (++m_entries == capacity)
        full();
}

namespace
{
std::string classOf(const ZTBase* object)
{
    return object ? ztShortName(*object->metaClass()) : "nobody";
}
} // namespace

void Journal::noteSwitch(bool on) { note(classOf(eventSender()) + (on ? " on" : " off")); }

void Journal::noteLevel(int level)
{
    note(classOf(eventSender()) + " at level " + std::to_string(level));
}

void Journal::noteReading(const std::string& quantity, double value)
{
    note(quantity + " " + std::to_string(std::lround(value)));
}

void Journal::noteArrival(ZTBase* newcomer) { note(classOf(newcomer) + " arrived"); }

int Journal::clear()
{
    m_last.clear();
    return std::exchange(m_entries, 0);
}

void Journal::restore(std::string_view property, const ZTVariant& value)
{
    if (property == "entries")
        m_entries = ztVariantValue<int>(value);
    else if (property == "last")
        m_last = ztVariantValue<std::string>(value);
}
