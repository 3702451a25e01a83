#pragma once

#include <zintar/zintar.h>

#include <map>
#include <string>

/// What stands in the greenhouse. None of it knows of threads or queues.

namespace workers
{
/// Measures the warmth of one bench, which rises while its heater would be on, and falls else.
class Sensor : public ZTBase
{
    ZT_OBJECT(Sensor, ZTBase)
public:
    explicit Sensor(std::string bench, double celsius)
        : m_bench(std::move(bench)), m_celsius(celsius)
    {}

    void measure();
    void measured(const std::string& bench, double celsius)
    {
        sendEvent<&Self::measured>(bench, celsius);
    }
    [[nodiscard]] int count() const { return m_count; }

private:
    static constexpr auto members()
    {
        return zt::members(zt::event<&Self::measured>().parameters("bench", "celsius"));
    }
    std::string m_bench;
    double m_celsius;
    bool m_rises = false;
    int m_count = 0;
};

/// Notes all that is measured.
class Journal : public ZTBase
{
    ZT_OBJECT(Journal, ZTBase)
public:
    struct Bench {
        int count = 0;
        double coldest = 0;
        double warmest = 0;
    };

    void note(const std::string& bench, double celsius);
    [[nodiscard]] const std::map<std::string, Bench>& benches() const { return m_benches; }

private:
    static constexpr auto members() { return zt::members(zt::method<&Self::note>()); }
    std::map<std::string, Bench> m_benches;
};

/// Heats one bench.
class Heater : public ZTBase
{
    ZT_OBJECT(Heater, ZTBase)
public:
    void follow(const std::string& bench, double celsius);
    [[nodiscard]] int switchCount() const { return m_switchCount; }

private:
    static constexpr auto members() { return zt::members(zt::method<&Self::follow>()); }
    bool m_isOn = false;
    int m_switchCount = 0;
};

/// A line of the terminal that shows what was measured last.
class ProgressLine : public ZTBase
{
    ZT_OBJECT(ProgressLine, ZTBase)
public:
    explicit ProgressLine(bool isTerminal) : m_isTerminal(isTerminal) {}

    void show(const std::string& bench, double celsius);
    void clear() const;
    [[nodiscard]] const std::string& text() const { return m_text; }

private:
    static constexpr auto members() { return zt::members(zt::method<&Self::show>()); }
    const bool m_isTerminal;
    std::map<std::string, double> m_last;
    std::string m_text;
};
} // namespace workers
