#pragma once

#include <zintar/eventmonitor.h>

#include <chrono>
#include <cstddef>

/// One delivery in the eyes of the monitors, from its begin on.
class ZTMonitoring
{
public:
    ZTMonitoring();

    [[nodiscard]] std::chrono::steady_clock::time_point start() const { return m_start; }
    /// Calls each monitor that lives, and was there at the begin.
    /// @param describe  gives what is told; asked for each, since one of them may end the sender
    template <class Describe>
    void tell(const Describe& describe) const
    {
        Telling telling(*this);
        while (ZTEventMonitorPrivate* monitor = telling.next())
            Telling::call(*monitor, describe());
    }

private:
    /// Holds the others back, and puts off the ends of monitors.
    class Telling
    {
    public:
        explicit Telling(const ZTMonitoring& monitoring);
        Telling(const Telling&) = delete;
        Telling& operator=(const Telling&) = delete;
        ~Telling();
        /// Null when there are no more.
        ZTEventMonitorPrivate* next();
        static void call(ZTEventMonitorPrivate& monitor, const ZTMonitoredDelivery& delivery);

    private:
        const ZTMonitoring& m_monitoring;
        std::size_t m_next = 0;
    };

    std::chrono::steady_clock::time_point m_start;
    /// The number of the last monitor that there was; 0 in a callback of one.
    unsigned long m_last;
};
