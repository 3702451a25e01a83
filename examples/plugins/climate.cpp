// A plugin: it knows nothing of the host, and the host nothing of it but the names of its classes.

#include <zintar/zintar.h>

#include <utility>

namespace climate
{
class Thermometer : public ZTBase
{
    ZT_OBJECT(Thermometer, ZTBase)
public:
    double celsius() const { return m_celsius; }
    void setCelsius(double celsius)
    {
        m_celsius = celsius;
        measured(celsius);
    }
    void measured(double celsius) { sendEvent<&Self::measured>(celsius); }

private:
    static constexpr auto members()
    {
        return zt::members(
            zt::event<&Self::measured>().parameters("celsius"),
            zt::property<&Self::celsius, &Self::setCelsius>().notify<&Self::measured>());
    }
    double m_celsius = 20;
};
ZT_CLASS(Thermometer)

class Heater : public ZTBase
{
    ZT_OBJECT(Heater, ZTBase)
public:
    enum class Mode { Off, Economy, Full };

    Heater() = default;
    explicit Heater(double target) : m_target(target) {}

    bool isOn() const { return m_isOn; }
    void follow(double celsius)
    {
        const double wanted = m_mode == Mode::Economy ? m_target - 2 : m_target;
        turn(m_mode != Mode::Off && celsius < wanted);
    }
    double boost(double degrees)
    {
        m_target += degrees;
        return m_target;
    }
    void switched(bool on) { sendEvent<&Self::switched>(on); }

private:
    void turn(bool on)
    {
        if (std::exchange(m_isOn, on) != on)
            switched(on);
    }

    static constexpr auto members()
    {
        return zt::members(
            zt::constructor<double>(),
            zt::enumeration<Mode>(zt::enumerators<Mode::Off, Mode::Economy, Mode::Full>),
            zt::event<&Self::switched>().parameters("on"),
            zt::property<&Self::m_target>().as("target").info("unit", "celsius"),
            zt::property<&Self::m_mode>().as("mode"), zt::property<&Self::isOn>().as("on"),
            zt::method<&Self::follow>().parameters("celsius"),
            zt::method<&Self::boost>().parameters("degrees").defaults(1.0));
    }
    double m_target = 21;
    Mode m_mode = Mode::Full;
    bool m_isOn = false;
};
ZT_CLASS(Heater)
} // namespace climate
