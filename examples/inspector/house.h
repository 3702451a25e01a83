#pragma once

#include <zintar/zintar.h>

#include <memory>
#include <string>

// The objects that the inspector looks at. It includes nothing of this but `makeHouse`.

struct Colour {
    int red = 255;
    int green = 255;
    int blue = 255;
};
ZT_RECORD(Colour, red, green, blue)

class Room : public ZTBase
{
    ZT_OBJECT(Room, ZTBase)
public:
    std::string name;
    double area = 0;

private:
    static constexpr auto members()
    {
        return zt::members(zt::property<&Self::name>(),
                           zt::property<&Self::area>().info("unit", "m2"));
    }
};

class Lamp : public ZTBase
{
    ZT_OBJECT(Lamp, ZTBase)
public:
    enum class Mode { Off, Warm, Cold };

    std::string name;
    double brightness = 0.5;
    Mode mode = Mode::Off;
    Colour colour;
    int hours() const { return m_hours; }

    void brightnessChanged(double level) { sendEvent<&Self::brightnessChanged>(level); }
    void modeChanged(Mode now) { sendEvent<&Self::modeChanged>(now); }
    /// Lets time pass.
    int burn(int byHours) { return m_hours += mode == Mode::Off ? 0 : byHours; }

private:
    static constexpr auto members()
    {
        return zt::members(
            zt::enumeration<Mode>(zt::enumerators<Mode::Off, Mode::Warm, Mode::Cold>),
            zt::event<&Self::brightnessChanged>(), zt::event<&Self::modeChanged>(),
            zt::property<&Self::name>(),
            zt::property<&Self::brightness>().notify<&Self::brightnessChanged>(),
            zt::property<&Self::mode>().notify<&Self::modeChanged>(), zt::property<&Self::colour>(),
            zt::property<&Self::hours>().info("unit", "h"),
            zt::method<&Self::burn>().parameters("hours").defaults(1));
    }
    int m_hours = 0;
};

/// A switch works a lamp that may be taken away.
class Switch : public ZTBase
{
    ZT_OBJECT(Switch, ZTBase)
public:
    std::string name;
    ZTRef<Lamp> lamp;
    void press()
    {
        if (lamp)
            lamp->setProperty("mode",
                              lamp->mode == Lamp::Mode::Off ? Lamp::Mode::Warm : Lamp::Mode::Off);
    }

private:
    static constexpr auto members()
    {
        return zt::members(zt::property<&Self::name>(), zt::property<&Self::lamp>(),
                           zt::method<&Self::press>());
    }
};

std::unique_ptr<ZTBase> makeHouse();
