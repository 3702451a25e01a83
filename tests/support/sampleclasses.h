#pragma once

#include <zintar/declare.h>

#include <string>

/// @file
/// Two classes with a member of each kind, for the tests of descriptors and builders. They are
/// defined here too: a test is a program of one file.

namespace sample
{
class Device : public ZTBase
{
    ZT_OBJECT(Device, ZTBase)
public:
    enum class State { Idle = 0, Busy = 1 };
    std::string label = "none", former;
    void renamed(const std::string& name) { sendEvent<&Self::renamed>(name); }

private:
    static constexpr auto members()
    {
        return zt::members(zt::info("vendor", "acme"),
                           zt::enumeration<State>(zt::enumerators<State::Idle, State::Busy>),
                           zt::event<&Self::renamed>(), zt::property<&Self::label>(),
                           zt::property<&Self::former>().as("level"));
    }
};

class Heater : public Device
{
    ZT_OBJECT(Heater, Device)
public:
    enum class Mode { Off = -1, Heat = 5 };
    int level() const { return m_level; }
    void setLevel(int level) { levelChanged(m_level = level); }
    int serial() const { return 77; }
    void levelChanged(int level) { sendEvent<&Self::levelChanged>(level); }
    double boost(int minutes, double factor) { return m_level += minutes, m_level * factor; }
    std::string describe() const { return "heater"; }

private:
    static constexpr auto members()
    {
        return zt::members(zt::info("vendor", "thermo"), zt::info("", ""),
                           zt::enumeration<Mode>(zt::enumerators<Mode::Off, Mode::Heat>),
                           zt::method<&Self::boost>(), zt::event<&Self::levelChanged>(),
                           zt::method<&Self::describe>().access(ZTAccessSpecifier::Protected),
                           zt::property<&Self::serial>(),
                           zt::property<&Self::level, &Self::setLevel>()
                               .notify<&Self::levelChanged>()
                               .info("unit", "watt")
                               .info("unit", "W"));
    }
    int m_level = 1;
};

ZT_CLASS(Device)
ZT_CLASS(Heater)
} // namespace sample
