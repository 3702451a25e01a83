#include "greenhouse.h"

#include <algorithm>
#include <iostream>

namespace workers
{
ZT_CLASS(Sensor)
ZT_CLASS(Journal)
ZT_CLASS(Heater)
ZT_CLASS(ProgressLine)

namespace
{
constexpr double tooCold = 17;
constexpr double warmEnough = 21;
} // namespace

void Sensor::measure()
{
    if (m_celsius <= tooCold || m_celsius >= warmEnough)
        m_rises = m_celsius <= tooCold;
    m_celsius += m_rises ? 0.5 : -0.25;
    ++m_count;
    measured(m_bench, m_celsius);
}

void Journal::note(const std::string& bench, double celsius)
{
    Bench& noted = m_benches.try_emplace(bench, Bench{0, celsius, celsius}).first->second;
    ++noted.count;
    noted.coldest = std::min(noted.coldest, celsius);
    noted.warmest = std::max(noted.warmest, celsius);
}

void Heater::follow(const std::string&, double celsius)
{
    const bool isToBeOn = m_isOn ? celsius < warmEnough : celsius <= tooCold;
    m_switchCount += isToBeOn != m_isOn;
    m_isOn = isToBeOn;
}

void ProgressLine::show(const std::string& bench, double celsius)
{
    m_last[bench] = celsius;
    m_text.clear();
    for (const auto& [name, last] : m_last)
        m_text += (m_text.empty() ? "" : "  ") + name + " " + std::to_string(last).substr(0, 5);
    if (m_isTerminal)
        std::cerr << "\r" << m_text << std::flush;
}

void ProgressLine::clear() const
{
    if (m_isTerminal)
        std::cerr << "\r" << std::string(m_text.size(), ' ') << "\r" << std::flush;
}
} // namespace workers
